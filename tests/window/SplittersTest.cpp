#include "tests/window/WindowFixture.h"

#include <QGroupBox>
#include <QSplitter>
#include <QSplitterHandle>
#include <QTest>

#include <unistd.h>

#include <limits>

namespace {

int waitsForTheDisk = 0;

class Splitters : public WindowFixture {
protected:
    /// Shows a new window with just the room that the default sizes take, after its first turn of the event loop.
    void showFitting()
    {
        window = std::make_unique<MetadataManagerWindow>();
        window->show();
        QCoreApplication::processEvents();
        const QSize missing = QSize(3 * 360 + 2 * 6, 300 + 480 + 6) - files()->size();
        window->resize(window->size() + missing);
        QCoreApplication::processEvents();
        window->restoreSplitterSizes();
    }

    QSplitter* files() const { return widget<QSplitter>("filesSplitter"); }
    QSplitter* details() const { return widget<QSplitter>("detailSplitter"); }

    static void store(const std::string& pane, int size)
    {
        ConfigManager::getInstance().setInt("metadataManager.split." + pane, size);
    }

    static std::string settingsFile() { return readBytes(ConfigManager::getInstance().getConfigPath()); }
};

} // namespace

// Stands in front of the C library's.
extern "C" int fsync(int descriptor)
{
    ++waitsForTheDisk;
    return fdatasync(descriptor);
}

TEST_F(Splitters, haveThreePanesNamedInCapitals)
{
    ASSERT_EQ(details()->count(), 3);
    const char* const titles[] = { "GENERAL", "RECORDING INFO", "TRACK INFO" };
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(qobject_cast<QGroupBox*>(details()->widget(i))->title(), QLatin1String(titles[i]));
}

TEST_F(Splitters, haveTheirSettings)
{
    EXPECT_EQ(files()->orientation(), Qt::Vertical);
    EXPECT_EQ(details()->orientation(), Qt::Horizontal);
    for (const QSplitter* each : { files(), details() }) {
        EXPECT_FALSE(each->childrenCollapsible());
        EXPECT_EQ(each->handleWidth(), 6);
    }
    EXPECT_FALSE(files()->styleSheet().isEmpty());
    EXPECT_EQ(details()->styleSheet(), files()->styleSheet());
    EXPECT_EQ(files()->widget(0)->sizePolicy().verticalStretch(), 1);
    EXPECT_EQ(files()->widget(1)->sizePolicy().verticalStretch(), 2);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(details()->widget(i)->sizePolicy().horizontalStretch(), 1);
}

TEST_F(Splitters, getTheirDefaultsWithoutSettings)
{
    showFitting();
    EXPECT_EQ(files()->sizes(), (QList<int>{ 300, 480 }));
    EXPECT_EQ(details()->sizes(), (QList<int>{ 360, 360, 360 }));
}

TEST_F(Splitters, areRestoredByTheFirstTurnOfTheEventLoop)
{
    store("files", 480);
    store("details", 480);
    window = std::make_unique<MetadataManagerWindow>();
    window->show();
    QCoreApplication::processEvents();
    const QList<int> sizes = files()->sizes();
    EXPECT_NEAR(sizes.at(0), sizes.at(1), 1);
}

TEST_F(Splitters, oneBadPaneTakesAllPanesOfItsSplitterBackToTheirDefaults)
{
    store("files", 380);
    store("details", 400);
    store("general", 500);
    store("recording", 0);
    store("tracks", 220);
    showFitting();
    EXPECT_EQ(files()->sizes(), (QList<int>{ 380, 400 }));
    EXPECT_EQ(details()->sizes(), (QList<int>{ 360, 360, 360 }));
}

TEST_F(Splitters, storedSizesAreUsedIfAllAreAboveZero)
{
    store("general", 300);
    store("recording", 400);
    store("tracks", 380);
    showFitting();
    EXPECT_EQ(details()->sizes(), (QList<int>{ 300, 400, 380 }));
}

TEST_F(Splitters, eachMoveOfAHandleRewritesTheSettingsFile)
{
    showFitting();
    QSplitterHandle* handle = details()->handle(1);
    const QPoint start = handle->rect().center();
    QTest::mousePress(handle, Qt::LeftButton, {}, start);
    std::vector<std::string> generalLines;
    for (int step = 1; step <= 3; ++step) {
        // The handle moves along, so each step is as far from it as the first.
        QTest::mouseMove(handle, start - QPoint(5, 0));
        const std::string wanted = "metadataManager.split.general=" + std::to_string(details()->sizes().at(0)) + "\n";
        EXPECT_NE(settingsFile().find(wanted), std::string::npos) << wanted;
        generalLines.push_back(wanted);
    }
    QTest::mouseRelease(handle, Qt::LeftButton, {}, start);
    EXPECT_NE(generalLines.at(0), generalLines.at(2));
    EXPECT_LT(details()->sizes().at(0), 360);
    EXPECT_NE(settingsFile().find("metadataManager.split.files=300\n"), std::string::npos);
    EXPECT_NE(settingsFile().find("metadataManager.split.details=480\n"), std::string::npos);
}

TEST_F(Splitters, theDiskIsWaitedForOnceWhenAHandleIsLetGo)
{
    showFitting();
    for (QSplitter* splitter : { files(), details() }) {
        for (int i = 1; i < splitter->count(); ++i) {
            QSplitterHandle* handle = splitter->handle(i);
            const QPoint start = handle->rect().center();
            const std::string before = settingsFile();
            QTest::mousePress(handle, Qt::LeftButton, {}, start);
            waitsForTheDisk = 0;
            for (int step = 0; step < 3; ++step)
                QTest::mouseMove(handle, start - QPoint(5, 5));
            EXPECT_NE(settingsFile(), before);
            EXPECT_EQ(waitsForTheDisk, 0);
            QTest::mouseRelease(handle, Qt::LeftButton, {}, start);
            EXPECT_EQ(waitsForTheDisk, 1);
        }
    }
}

TEST_F(Splitters, movesOfTheOuterHandleAreKeptToo)
{
    showFitting();
    QSplitterHandle* handle = files()->handle(1);
    const QPoint start = handle->rect().center();
    QTest::mousePress(handle, Qt::LeftButton, {}, start);
    QTest::mouseMove(handle, start + QPoint(0, 20));
    QTest::mouseRelease(handle, Qt::LeftButton, {}, start);
    EXPECT_GT(files()->sizes().at(0), 300);
    for (int i = 0; i < 2; ++i) {
        const std::string key = i == 0 ? "files" : "details";
        const std::string wanted = "metadataManager.split." + key + "=" + std::to_string(files()->sizes().at(i)) + "\n";
        EXPECT_NE(settingsFile().find(wanted), std::string::npos) << wanted;
    }
}

TEST_F(Splitters, keptSizesComeBackInTheNextWindow)
{
    showFitting();
    files()->setSizes({ 320, 460 });
    details()->setSizes({ 400, 350, 330 });
    QMetaObject::invokeMethod(window.get(), "persistSplitterSizes");
    showFitting();
    EXPECT_EQ(files()->sizes(), (QList<int>{ 320, 460 }));
    EXPECT_EQ(details()->sizes(), (QList<int>{ 400, 350, 330 }));
}

TEST_F(Splitters, hugeSizesOfTheSettingsLeaveAllPanesInTheWindow)
{
    for (const char* pane : { "files", "details", "general", "recording", "tracks" })
        store(pane, std::numeric_limits<int>::max());
    window = std::make_unique<MetadataManagerWindow>();
    window->show();
    QCoreApplication::processEvents();
    for (const QSplitter* each : { files(), details() }) {
        for (const int size : each->sizes()) {
            EXPECT_GT(size, 50);
            EXPECT_LT(size, 1200);
        }
    }
}

TEST_F(Splitters, panesCannotBeDraggedToNothing)
{
    showFitting();
    QSplitterHandle* handle = details()->handle(1);
    QTest::mousePress(handle, Qt::LeftButton, {}, handle->rect().center());
    QTest::mouseMove(handle, handle->rect().center() - QPoint(2000, 0));
    QTest::mouseRelease(handle, Qt::LeftButton, {}, handle->rect().center());
    EXPECT_GT(details()->sizes().at(0), 50);
    EXPECT_TRUE(details()->widget(0)->isVisible());
}
