#include "report/PictureFile.h"

#include "system/SilentErrors.h"

#include <QFileInfo>
#include <QtGlobal>

namespace {

// The program prints nothing, so what the picture readers have to say about a damaged file is held back in both of its
// ways: Qt's own go through the message handler, under a dozen categories and some under none, while the PNG library
// writes straight to standard error. What the user learns is that there is no picture.
class HeldBackMessages {
public:
    HeldBackMessages()
        : previousHandler(qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {}))
    {
    }
    ~HeldBackMessages() { qInstallMessageHandler(previousHandler); }

    HeldBackMessages(const HeldBackMessages&) = delete;
    HeldBackMessages& operator=(const HeldBackMessages&) = delete;

private:
    const SilentErrors noErrors;
    QtMessageHandler previousHandler;
};

} // namespace

QImage loadPicture(const QString& path)
{
    if (!QFileInfo(path).isFile())
        return {}; // Opening a pipe would wait for somebody to write into it.
    const HeldBackMessages quiet;
    return QImage(path);
}
