// Finding the WAV files of a big tree, against a bare walk over the same tree.

#include "bench/window/BenchApplication.h"
#include "tests/support/TempFolder.h"
#include "window/MetadataManagerWindow.h"

#include <filesystem>
#include <string>

namespace {

/// 100,000 empty files in 1,000 folders, nine of ten of them WAV files.
class BigTree {
public:
    BigTree()
    {
        constexpr int kFolders = 1000;
        constexpr int kFilesPerFolder = 100;
        for (int i = 0; i < kFolders; ++i) {
            const std::string sub = folder.file("day" + std::to_string(i % 10) + "/roll" + std::to_string(i));
            std::filesystem::create_directories(sub);
            for (int j = 0; j < kFilesPerFolder; ++j)
                writeBytes(sub + "/take" + std::to_string(j) + (j % 10 == 0 ? ".txt" : ".WAV"), "");
        }
    }

    std::string path() const { return folder.path().string(); }

private:
    TempFolder folder;
};

const BigTree& bigTree()
{
    static const BigTree tree;
    return tree;
}

void walkBarely(benchmark::State& state)
{
    const std::string root = bigTree().path();
    for (auto _ : state) {
        size_t files = 0;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(root))
            files += entry.is_regular_file() ? 1u : 0u;
        benchmark::DoNotOptimize(files);
    }
}

void collectWavFiles(benchmark::State& state)
{
    const QString root = QString::fromStdString(bigTree().path());
    const MetadataManagerWindow window;
    for (auto _ : state)
        benchmark::DoNotOptimize(window.collectWavFilesInDirectory(root));
}

BENCHMARK(walkBarely)->Unit(benchmark::kMillisecond);
BENCHMARK(collectWavFiles)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    return runWidgetBenchmarks(argc, argv);
}
