#include "cli/PdfReport.h"

#include "cli/FileRun.h"
#include "cli/pdf/PdfModule.h"

#include <dlfcn.h>

#include <filesystem>

namespace {

constexpr char kModule[] = "tagwell-pdf.so";

// Beside the program, or where it is installed. No other place: a library that is loaded runs as the program does.
std::filesystem::path modulePath()
{
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    for (const std::filesystem::path& place : { folder, folder / TAGWELL_HOME_FROM_BIN }) {
        if (!folder.empty() && std::filesystem::exists(place / kModule, error))
            return place / kModule;
    }
    return {};
}

// It stays loaded until the process ends: Qt's graphical half can't be taken out again.
PrintPdf loadPrinting()
{
    const std::filesystem::path path = modulePath();
    void* const module = path.empty() ? nullptr : dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    return module ? reinterpret_cast<PrintPdf>(dlsym(module, kPrintPdfName)) : nullptr;
}

} // namespace

std::string printPdfReport(const std::string& target, const std::vector<TakeInfo>& takes,
    const ReportSettings& settings, const QString& soundRoll)
{
    const PrintPdf print = loadPrinting();
    if (!print)
        throw RunError{ target, "the part of the program that prints, " + std::string(kModule) + ", can't be loaded" };
    PdfOrder order{ .version = TAGWELL_VERSION, .takes = &takes, .settings = &settings, .soundRoll = &soundRoll };
    print(order);
    if (!order.complaint.empty())
        throw RunError{ target, order.complaint };
    return std::move(order.bytes);
}
