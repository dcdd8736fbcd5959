// The main function of every widget test: a QApplication without a display, a home folder of its own, and no
// tolerance for Qt's warnings.

#include "tests/support/TestApplication.h"

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstring>

namespace {

/// What the offscreen platform says about itself whenever a window of fixed or least size is shown or raised.
constexpr char kOffscreenNotice[] = "This plugin does not support ";

void failOnWarning(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    if (type == QtDebugMsg || type == QtInfoMsg || message.startsWith(QLatin1String(kOffscreenNotice)))
        return;
    ADD_FAILURE() << "Qt said: " << message.toStdString();
}

bool onlyLists(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--gtest_list_tests") == 0)
            return true;
    }
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    // The list must print the same whatever the machine has, so it needs no application.
    const bool listing = onlyLists(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    if (listing)
        return RUN_ALL_TESTS();

    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("LC_ALL", "C.UTF-8"); // Qt warns about every other kind of locale.
    QTemporaryDir home;
    qputenv("HOME", home.path().toUtf8());
    qputenv("XDG_RUNTIME_DIR", home.path().toUtf8());
    qInstallMessageHandler(failOnWarning);
    const std::unique_ptr<QApplication> application = makeTestApplication(argc, argv);
    return RUN_ALL_TESTS();
}
