#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// A fake of the system's object runtime underneath the file panel: the compiler's own calls (message sends,
/// autorelease pool, enumeration) land here and are written down. One thread.
namespace CocoaRuntime {

/// Any object. What it is decides which fields count.
struct Object {
    std::string className;
    std::string text; ///< A string's text, a URL's path.
    bool isFile = true; ///< A URL's scheme is that of files.
    Object* window = nullptr; ///< A view's window.
};

/// What the next calls will answer.
struct Script {
    long modalResponse = 0; ///< Answer of runModal.
    bool makesUrls = true; ///< fileURLWithPath:isDirectory: gives a URL, else nil.
    std::vector<Object*> urls; ///< What URLs gives, by enumeration in steps of at most two.
    bool changesWhileEnumerating = false; ///< The list says after its first step that it was changed.
};

/// Everything that was called since `begin`, in order, one line each: "+[NSOpenPanel openPanel]",
/// "-[NSOpenPanel setCanChooseFiles:] 1", "objc_autoreleasePoolPush", "winId", ...
extern std::vector<std::string> calls;

/// Forgets the calls and takes the answers from `script`.
void begin(const Script& script);

/// An object that lives until the next `begin`.
Object* make(const std::string& className, const std::string& text = {});

} // namespace CocoaRuntime
