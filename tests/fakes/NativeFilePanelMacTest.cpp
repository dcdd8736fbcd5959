#include "app/files/NativeFilePanel.h"

#include "tests/fakes/CocoaRuntime.h"

#include <QWidget>

#include <gtest/gtest.h>

#include <algorithm>

using CocoaRuntime::Object;
using Lines = std::vector<std::string>;

namespace {

constexpr long kOk = 1;

Lines texts(const QList<QString>& list)
{
    Lines result;
    for (const QString& each : list.elements)
        result.push_back(each.text);
    return result;
}

Lines setUpCalls()
{
    return { "objc_autoreleasePoolPush", "+[NSOpenPanel openPanel]", "-[NSOpenPanel setCanChooseFiles:] 1",
        "-[NSOpenPanel setCanChooseDirectories:] 1", "-[NSOpenPanel setAllowsMultipleSelection:] 1",
        "-[NSOpenPanel setCanCreateDirectories:] 0", "-[NSOpenPanel setResolvesAliases:] 1",
        "-[NSOpenPanel setTitle:] Add WAV Files or Folders",
        "-[NSOpenPanel setMessage:] Select WAV files and/or folders. Folders add every WAV inside.",
        "-[NSOpenPanel setPrompt:] Add" };
}

QList<QString> pick(const CocoaRuntime::Script& script, const std::string& start = {}, QWidget* parent = nullptr)
{
    CocoaRuntime::begin(script);
    return macPickFilesOrFolders(parent, QString(start), QString("Add WAV Files or Folders"));
}

} // namespace

TEST(NativeFilePanelMac, setsThePanelUpInOrderInsideOnePool)
{
    pick({});
    Lines expected = setUpCalls();
    expected.insert(expected.end(), { "-[NSOpenPanel runModal]", "objc_autoreleasePoolPop" });
    EXPECT_EQ(CocoaRuntime::calls, expected);
}

TEST(NativeFilePanelMac, handsTheStartFolderOnAsItStands)
{
    pick({}, "/no/such/folder");
    Lines expected = setUpCalls();
    expected.insert(expected.end(),
        { "+[NSURL fileURLWithPath:isDirectory:] /no/such/folder 1", "-[NSOpenPanel setDirectoryURL:] /no/such/folder",
            "-[NSOpenPanel runModal]", "objc_autoreleasePoolPop" });
    EXPECT_EQ(CocoaRuntime::calls, expected);
}

TEST(NativeFilePanelMac, setsNoFolderWhenNoUrlComesOfIt)
{
    CocoaRuntime::Script script;
    script.makesUrls = false;
    pick(script, "/somewhere");
    Lines expected = setUpCalls();
    expected.insert(expected.end(),
        { "+[NSURL fileURLWithPath:isDirectory:] /somewhere 1", "-[NSOpenPanel runModal]", "objc_autoreleasePoolPop" });
    EXPECT_EQ(CocoaRuntime::calls, expected);
}

TEST(NativeFilePanelMac, makesTheParentsWindowNativeBeforeItRuns)
{
    QWidget window;
    QWidget child;
    child.top = &window;
    pick({}, {}, &child);
    Lines expected = setUpCalls();
    expected.insert(expected.end(), { "winId", "-[NSOpenPanel runModal]", "objc_autoreleasePoolPop" });
    EXPECT_EQ(CocoaRuntime::calls, expected);
}

TEST(NativeFilePanelMac, givesTheFileUrlsInThePanelsOrder)
{
    CocoaRuntime::Script script;
    script.modalResponse = kOk;
    Object* web = CocoaRuntime::make("NSURL", "https://example.invalid/x.wav");
    web->isFile = false;
    script.urls = { CocoaRuntime::make("NSURL", "/b.wav"), web, CocoaRuntime::make("NSURL", "/a.wav"),
        CocoaRuntime::make("NSURL", "/Ordner für Ton") };
    EXPECT_EQ(texts(pick(script)), (Lines{ "/b.wav", "/a.wav", "/Ordner für Ton" }));
    Lines expected = setUpCalls();
    expected.insert(expected.end(),
        { "-[NSOpenPanel runModal]", "-[NSOpenPanel URLs]", "-[NSURL isFileURL]", "-[NSURL path]", "-[NSURL isFileURL]",
            "-[NSURL isFileURL]", "-[NSURL path]", "-[NSURL isFileURL]", "-[NSURL path]", "objc_autoreleasePoolPop" });
    EXPECT_EQ(CocoaRuntime::calls, expected);
}

TEST(NativeFilePanelMac, tellsTheRuntimeWhenTheListChangesUnderTheWalk)
{
    CocoaRuntime::Script script;
    script.modalResponse = kOk;
    script.changesWhileEnumerating = true;
    script.urls = { CocoaRuntime::make("NSURL", "/1.wav"), CocoaRuntime::make("NSURL", "/2.wav"),
        CocoaRuntime::make("NSURL", "/3.wav") };
    pick(script);
    EXPECT_EQ(std::count(CocoaRuntime::calls.begin(), CocoaRuntime::calls.end(), "objc_enumerationMutation"), 1);
}

TEST(NativeFilePanelMac, cancelGivesAnEmptyListAndAsksForNoUrls)
{
    for (long response : { 0L, 1000L, -1L }) {
        CocoaRuntime::Script script;
        script.modalResponse = response;
        script.urls = { CocoaRuntime::make("NSURL", "/a.wav") };
        EXPECT_TRUE(pick(script).elements.empty());
        EXPECT_EQ(CocoaRuntime::calls.back(), "objc_autoreleasePoolPop");
        EXPECT_EQ(std::count(CocoaRuntime::calls.begin(), CocoaRuntime::calls.end(), "-[NSOpenPanel URLs]"), 0);
    }
}

TEST(WindowSubtitleMac, goesToTheNativeWindowOfTheView)
{
    Object* view = CocoaRuntime::make("NSView");
    view->window = CocoaRuntime::make("NSWindow");
    QWidget window;
    window.native = reinterpret_cast<WId>(view);
    CocoaRuntime::begin({});
    setMacWindowSubtitle(&window, "By Ünit");
    EXPECT_EQ(CocoaRuntime::calls,
        (Lines{ "winId", "-[NSView window]", "+[NSString stringWithUTF8String:] By Ünit",
            "-[NSWindow setSubtitle:] By Ünit" }));
}

TEST(WindowSubtitleMac, doesNothingWithoutANativeId)
{
    QWidget window;
    CocoaRuntime::begin({});
    setMacWindowSubtitle(&window, "x");
    EXPECT_EQ(CocoaRuntime::calls, Lines{ "winId" });
}

TEST(WindowSubtitleMac, doesNothingForAViewOutsideAWindow)
{
    QWidget window;
    window.native = reinterpret_cast<WId>(CocoaRuntime::make("NSView"));
    CocoaRuntime::begin({});
    setMacWindowSubtitle(&window, "x");
    EXPECT_EQ(CocoaRuntime::calls, (Lines{ "winId", "-[NSView window]" }));
}

TEST(WindowSubtitleMac, nullPointersAreIgnored)
{
    QWidget window;
    CocoaRuntime::begin({});
    setMacWindowSubtitle(nullptr, "x");
    setMacWindowSubtitle(&window, nullptr);
    EXPECT_TRUE(CocoaRuntime::calls.empty());
}
