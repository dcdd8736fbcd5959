// The mixer's costs: showing a long file, one turn of its timer, and painting.
// Run with QT_QPA_PLATFORM=offscreen.

#include "audio/WavFileReader.h"
#include "core/BwfMetadata.h"
#include "mixer/FilePlaybackMixerDialog.h"
#include "mixer/MeterWidget.h"
#include "mixer/WaveformWidget.h"
#include "tests/support/DrivenOutput.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <QApplication>
#include <QImage>
#include <QPushButton>
#include <QTimer>

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <fstream>
#include <memory>
#include <thread>
#include <vector>

namespace {

constexpr uint32_t kRate = 48000;
constexpr uint16_t kChannels = 8;
constexpr size_t kMinutes = 10;

/// Ten minutes of eight channels in 24 bits, 691 MB, made once and removed at the end.
const std::string& longFile()
{
    static const TempFolder folder;
    static const std::string path = [] {
        std::string made = folder.file("long.wav");
        const size_t second = size_t{ kRate } * kChannels * 3;
        const auto size = static_cast<uint32_t>(second * 60 * kMinutes);
        const std::string header = WavBuilder().fmt(kRate, kChannels, 24).data("").claimSize("data", size).bytes();
        std::string noise(second, '\0');
        uint32_t state = 1;
        for (char& byte : noise)
            byte = static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
        std::ofstream out(made, std::ios::binary);
        out << header;
        for (size_t i = 0; i < 60 * kMinutes; ++i)
            out << noise;
        return made;
    }();
    return path;
}

void plainRead(benchmark::State& state)
{
    std::vector<char> block(1 << 18);
    for (auto _ : state) {
        const int file = ::open(longFile().c_str(), O_RDONLY);
        while (::read(file, block.data(), block.size()) > 0)
            benchmark::DoNotOptimize(block.data());
        ::close(file);
    }
}

void waveformLoad(benchmark::State& state)
{
    WaveformWidget waveform;
    for (auto _ : state) {
        if (!waveform.loadFile(longFile()))
            state.SkipWithError("not loaded");
    }
}

/// What the load would cost if every channel were decoded in order to keep the first.
void decodeAllChannels(benchmark::State& state)
{
    std::vector<float> block(size_t{ 8192 } * kChannels);
    for (auto _ : state) {
        WavFileReader reader;
        if (!reader.open(longFile()))
            state.SkipWithError("not opened");
        std::vector<float> samples;
        samples.reserve(static_cast<size_t>(reader.getTotalFrames()));
        while (!reader.isAtEnd()) {
            const int32_t got = reader.readFrames(block.data(), 8192, kChannels);
            if (got < 1)
                break;
            for (int32_t frame = 0; frame < got; ++frame)
                samples.push_back(block[static_cast<size_t>(frame) * kChannels]);
        }
        benchmark::DoNotOptimize(samples.data());
    }
}

/// A second in steps of a tenth, each of another level, the same in all channels.
std::string steps(uint16_t channels)
{
    std::string bytes;
    bytes.reserve(size_t{ kRate } * channels * 2);
    for (uint32_t frame = 0; frame < kRate; ++frame) {
        const std::string sample = le16(static_cast<uint16_t>(frame / (kRate / 10) * 7 % 10 * 3000));
        for (uint16_t channel = 0; channel < channels; ++channel)
            bytes += sample;
    }
    return bytes;
}

std::unique_ptr<FilePlaybackMixerDialog> dialogOf(const TempFolder& folder, uint16_t channels)
{
    const std::string path = folder.file("poly.wav");
    WavBuilder().fmt(kRate, channels, 16).data(steps(channels)).write(path);
    DrivenOutput::reset();
    BwfMetadata metadata;
    metadata.frameRate = 25.0;
    auto dialog
        = std::make_unique<FilePlaybackMixerDialog>(QString::fromStdString(path), QList<QString>(), metadata, nullptr);
    dialog->setAttribute(Qt::WA_DeleteOnClose, false);
    return dialog;
}

void openDialog(benchmark::State& state)
{
    const TempFolder folder;
    for (auto _ : state) {
        auto dialog = dialogOf(folder, static_cast<uint16_t>(state.range(0)));
        dialog->show();
        benchmark::DoNotOptimize(dialog.get());
    }
}

void uiTick(benchmark::State& state)
{
    const TempFolder folder;
    auto dialog = dialogOf(folder, static_cast<uint16_t>(state.range(0)));
    dialog->show();
    for (auto _ : state)
        QMetaObject::invokeMethod(dialog.get(), "onUiTick", Qt::DirectConnection);
}

/// One turn while it plays: the read-outs and all meters move. `painted` adds the drawing of all that has changed.
void uiTickPlaying(benchmark::State& state, bool painted)
{
    const TempFolder folder;
    auto dialog = dialogOf(folder, static_cast<uint16_t>(state.range(0)));
    dialog->show();
    QCoreApplication::processEvents();
    dialog->findChild<QTimer*>("uiTimer")->stop();
    auto* play = dialog->findChild<QPushButton*>("playPauseButton");
    for (auto _ : state) {
        state.PauseTiming();
        if (play->text() == QLatin1String(" Play"))
            play->click();
        // What the device takes between two turns, and time for the mixer to follow.
        (void)DrivenOutput::pullStereo(kRate / 20);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        QCoreApplication::processEvents();
        state.ResumeTiming();
        QMetaObject::invokeMethod(dialog.get(), "onUiTick", Qt::DirectConnection);
        if (painted)
            QCoreApplication::processEvents();
    }
}

template <typename Widget> void paint(benchmark::State& state, Widget& widget)
{
    QImage image(widget.size(), QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state)
        widget.render(&image);
}

void paintWaveform(benchmark::State& state)
{
    WaveformWidget waveform;
    std::vector<float> samples(48000);
    for (size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<float>(i * 7919 % 2000) / 1000.0f - 1.0f;
    waveform.generatePeaks(samples, 0);
    waveform.setPlaybackPosition(0.5);
    waveform.resize(static_cast<int>(state.range(0)), 110);
    paint(state, waveform);
}

void paintMeter(benchmark::State& state)
{
    MeterWidget meter;
    meter.resize(74, 12);
    meter.setValue(900);
    paint(state, meter);
}

BENCHMARK(plainRead)->Unit(benchmark::kMillisecond);
BENCHMARK(waveformLoad)->Unit(benchmark::kMillisecond);
BENCHMARK(decodeAllChannels)->Unit(benchmark::kMillisecond);
BENCHMARK(openDialog)->Arg(2)->Arg(64)->Unit(benchmark::kMillisecond);
BENCHMARK(uiTick)->Arg(2)->Arg(64)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(uiTickPlaying, alone, false)->Arg(2)->Arg(64)->Iterations(400)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(uiTickPlaying, painted, true)->Arg(2)->Arg(64)->Iterations(400)->Unit(benchmark::kMicrosecond);
BENCHMARK(paintWaveform)->Arg(700)->Arg(3000)->Unit(benchmark::kMicrosecond);
BENCHMARK(paintMeter)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
