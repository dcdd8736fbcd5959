#include "app/MainMenu.h"
#include "app/TagwellApplication.h"
#include "app/files/NativeFilePanel.h"
#include "app/files/WavArguments.h"
#include "app/look/FocusMark.h"
#include "app/look/Theme.h"
#include "app/settings/ConfigManager.h"
#include "window/MetadataManagerWindow.h"

#include <QIcon>

namespace {

// Qt speaks up about things in the session that aren't ours to mend, such as a runtime folder that isn't set. The
// program has no console output of any kind.
void keepQuiet()
{
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
}

void setIdentity()
{
    QCoreApplication::setApplicationName(QStringLiteral("Tagwell"));
    QCoreApplication::setApplicationVersion(QStringLiteral(TAGWELL_VERSION));
    QCoreApplication::setOrganizationName(QStringLiteral("Brindle Audio"));
    QCoreApplication::setOrganizationDomain(QStringLiteral("brindleaudio.com"));
    QGuiApplication::setQuitOnLastWindowClosed(true);
    QGuiApplication::setDesktopFileName(QStringLiteral("com.brindleaudio.tagwell"));
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/tagwell.png")));
}

void loadSettings()
{
    // Without a readable file the defaults stand.
    (void)ConfigManager::getInstance().loadConfig({});
}

void openArguments(MetadataManagerWindow& window)
{
    const QList<QString> files = wavArguments(QCoreApplication::arguments());
    if (!files.isEmpty())
        window.openFiles(files);
}

void showWindow(MetadataManagerWindow& window)
{
    window.show();
    // Only a window that is shown has the native title bar that the subtitle goes to.
    setMacWindowSubtitle(&window, "By Brindle Audio Works, LLC");
}

} // namespace

int main(int argc, char** argv)
{
    keepQuiet();
    TagwellApplication application(argc, argv);
    const FocusMark focusMark(application);
    setIdentity();
    loadSettings();

    MetadataManagerWindow window(nullptr);
    window.setWindowTitle(QStringLiteral("Tagwell"));
    window.setStyleSheet(Theme::filledMainStyleSheet());
    buildMenuBar(&window);
    application.mainWindow = &window;

    openArguments(window);
    showWindow(window);
    return QApplication::exec();
}
