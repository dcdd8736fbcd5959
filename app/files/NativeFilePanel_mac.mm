#include "app/files/NativeFilePanel.h"

#include <QWidget>

#import <AppKit/AppKit.h>

namespace {

NSOpenPanel* preparedPanel(const QString& startDirectory, const QString& title)
{
    NSOpenPanel* panel = [NSOpenPanel openPanel];
    [panel setCanChooseFiles:YES];
    [panel setCanChooseDirectories:YES];
    [panel setAllowsMultipleSelection:YES];
    [panel setCanCreateDirectories:NO];
    [panel setResolvesAliases:YES];
    [panel setTitle:title.toNSString()];
    [panel setMessage:@"Select WAV files and/or folders. Folders add every WAV inside."];
    [panel setPrompt:@"Add"];
    if (!startDirectory.isEmpty()) {
        NSURL* start = [NSURL fileURLWithPath:startDirectory.toNSString() isDirectory:YES];
        if (start)
            [panel setDirectoryURL:start];
    }
    return panel;
}

} // namespace

QList<QString> macPickFilesOrFolders(QWidget* parent, const QString& startDirectory, const QString& title)
{
    QList<QString> picked;
    @autoreleasepool {
        NSOpenPanel* panel = preparedPanel(startDirectory, title);
        // Asked for so that the native window exists. The panel isn't attached to it: it runs on its own.
        if (parent)
            (void)parent->window()->winId();
        if ([panel runModal] == NSModalResponseOK) {
            for (NSURL* url in [panel URLs]) {
                if ([url isFileURL])
                    picked.append(QString::fromNSString([url path]));
            }
        }
    }
    return picked;
}

void setMacWindowSubtitle(QWidget* window, const char* subtitle)
{
    if (!window || !subtitle)
        return;
    NSView* view = reinterpret_cast<NSView*>(window->winId());
    if (!view)
        return;
    NSWindow* nativeWindow = [view window];
    if (!nativeWindow)
        return;
    [nativeWindow setSubtitle:[NSString stringWithUTF8String:subtitle]];
}
