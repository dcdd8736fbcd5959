#include "cli/pdf/PdfModule.h"

#include "report/SoundReportDocument.h"

#include <QGuiApplication>
#include <QString>
#include <QtGlobal>

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <optional>

namespace {

/// A file in memory that Qt can be given a path of: what the printer can't write it drops without a word, and here
/// there is no disk that could be full.
class MemoryFile {
public:
    MemoryFile() : descriptor(memfd_create("report", MFD_CLOEXEC)) { }
    ~MemoryFile()
    {
        if (descriptor >= 0)
            close(descriptor);
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    bool isOpen() const { return descriptor >= 0; }
    QString path() const { return QStringLiteral("/proc/self/fd/%1").arg(descriptor); }

    /// Fewer than there are if they can't be read.
    std::string bytes() const
    {
        std::ifstream stream(path().toStdString(), std::ios::binary);
        return { std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>() };
    }

private:
    int descriptor;
};

/// The application object that fonts need. An option goes before what the environment says of the platform; what it
/// says of its looks is of no use on paper, and could load what wants a display.
class PrintingApplication {
public:
    PrintingApplication()
    {
        for (const char* const name : { "QT_QPA_PLATFORMTHEME", "QT_FONT_DPI", "QT_SCALE_FACTOR" })
            qunsetenv(name);
        previousHandler = qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
        application.emplace(count, arguments.data());
    }
    ~PrintingApplication()
    {
        application.reset();
        qInstallMessageHandler(previousHandler);
    }
    PrintingApplication(const PrintingApplication&) = delete;
    PrintingApplication& operator=(const PrintingApplication&) = delete;

private:
    std::array<char, 12> program{ "tagwell-cli" };
    std::array<char, 10> option{ "-platform" };
    std::array<char, 10> platform{ "offscreen" };
    std::array<char*, 4> arguments{ program.data(), option.data(), platform.data(), nullptr };
    int count = 3;
    QtMessageHandler previousHandler = nullptr;
    std::optional<QGuiApplication> application;
};

} // namespace

extern "C" Q_DECL_EXPORT void tagwellPrintPdf(PdfOrder& order)
{
    if (order.version != TAGWELL_VERSION) {
        order.complaint = "the part that prints is of version " TAGWELL_VERSION;
        return;
    }
    const MemoryFile file;
    if (!file.isOpen()) {
        order.complaint = std::strerror(errno);
        return;
    }
    const PrintingApplication application;
    (void)writePdfReport(file.path(), *order.takes, *order.settings, *order.soundRoll); // Looked at below.
    order.bytes = file.bytes();
    if (order.bytes.find("%%EOF", order.bytes.size() - std::min<size_t>(order.bytes.size(), 16)) == std::string::npos)
        order.complaint = "the report can't be printed";
}
