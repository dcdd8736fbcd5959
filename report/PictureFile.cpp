#include "report/PictureFile.h"

#include <QFileInfo>
#include <QtGlobal>

#include <fcntl.h>
#include <unistd.h>

namespace {

// The program prints nothing, so what the picture readers have to say about a damaged file is held back in both of its
// ways: Qt's own go through the message handler, under a dozen categories and some under none, while the PNG library
// writes straight to standard error. What the user learns is that there is no picture.
class HeldBackMessages {
public:
    HeldBackMessages()
        : previousHandler(qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {}))
        , standardError(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0))
    {
        const int nowhere = standardError < 0 ? -1 : open("/dev/null", O_WRONLY | O_CLOEXEC);
        if (nowhere < 0)
            return;
        dup2(nowhere, STDERR_FILENO);
        close(nowhere);
    }

    ~HeldBackMessages()
    {
        if (standardError >= 0) {
            dup2(standardError, STDERR_FILENO);
            close(standardError);
        }
        qInstallMessageHandler(previousHandler);
    }

    HeldBackMessages(const HeldBackMessages&) = delete;
    HeldBackMessages& operator=(const HeldBackMessages&) = delete;

private:
    QtMessageHandler previousHandler;
    int standardError; // A copy of the process's own; negative if it has none.
};

} // namespace

QImage loadPicture(const QString& path)
{
    if (!QFileInfo(path).isFile())
        return {}; // Opening a pipe would wait for somebody to write into it.
    const HeldBackMessages quiet;
    return QImage(path);
}
