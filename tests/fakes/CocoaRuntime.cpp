#include "tests/fakes/CocoaRuntime.h"

#include <QString>
#include <QWidget>

#include <algorithm>
#include <cstring>
#include <memory>

namespace CocoaRuntime {

std::vector<std::string> calls;

namespace {

Script script;
std::vector<std::unique_ptr<Object>> objects;
Object array{ "NSArray", {}, false, nullptr };
unsigned long mutations = 0;
int poolDepth = 0;

// The layout that the compiler gives to @"..." literals.
struct Literal {
    void* isa;
    int32_t flags;
    const char* bytes;
    long length;
};

struct EnumerationState {
    unsigned long state;
    Object** items;
    unsigned long* mutations;
    unsigned long extra[5];
};

} // namespace

void begin(const Script& answers)
{
    calls.clear();
    script = answers;
    mutations = 0;
    poolDepth = 0;
}

Object* make(const std::string& className, const std::string& text)
{
    objects.push_back(std::make_unique<Object>(Object{ className, text, true, nullptr }));
    return objects.back().get();
}

} // namespace CocoaRuntime

using namespace CocoaRuntime;

// The class objects that compiled code refers to; only their addresses count.
extern "C" {
extern char classOpenPanel asm("OBJC_CLASS_$_NSOpenPanel");
extern char classUrl asm("OBJC_CLASS_$_NSURL");
extern char classString asm("OBJC_CLASS_$_NSString");
extern char classLiteral asm("__CFConstantStringClassReference");
char classOpenPanel;
char classUrl;
char classString;
char classLiteral;
}

namespace {

std::string textOf(uintptr_t argument)
{
    if (argument == 0)
        return "nil";
    const auto* literal = reinterpret_cast<const Literal*>(argument);
    if (literal->isa == &classLiteral)
        return { literal->bytes, static_cast<size_t>(literal->length) };
    return reinterpret_cast<const Object*>(argument)->text;
}

unsigned long enumerate(EnumerationState* state)
{
    constexpr unsigned long kStep = 2; // Small, so that the loop has to come back for more.
    if (state->state > 0 && script.changesWhileEnumerating)
        ++mutations;
    const unsigned long from = std::min<unsigned long>(state->state, script.urls.size());
    const unsigned long count = std::min<unsigned long>(kStep, script.urls.size() - from);
    state->items = script.urls.data() + from;
    state->mutations = &mutations;
    state->state = from + count;
    return count;
}

// Messages to class objects.
uintptr_t sendToClass(const void* receiver, const std::string& selector, uintptr_t first, uintptr_t second)
{
    if (receiver == &classOpenPanel && selector == "openPanel") {
        calls.push_back("+[NSOpenPanel openPanel]");
        return reinterpret_cast<uintptr_t>(make("NSOpenPanel"));
    }
    if (receiver == &classUrl && selector == "fileURLWithPath:isDirectory:") {
        calls.push_back("+[NSURL fileURLWithPath:isDirectory:] " + textOf(first) + " " + std::to_string(second & 0xFF));
        return script.makesUrls ? reinterpret_cast<uintptr_t>(make("NSURL", textOf(first))) : 0;
    }
    if (receiver == &classString && selector == "stringWithUTF8String:") {
        const char* text = reinterpret_cast<const char*>(first);
        calls.push_back(std::string("+[NSString stringWithUTF8String:] ") + text);
        return reinterpret_cast<uintptr_t>(make("NSString", text));
    }
    calls.push_back("unknown class message " + selector);
    return 0;
}

bool takesFlag(const std::string& selector)
{
    return selector.starts_with("setCan") || selector == "setAllowsMultipleSelection:"
        || selector == "setResolvesAliases:";
}

uintptr_t sendToObject(Object* receiver, const std::string& selector, uintptr_t first)
{
    std::string line = "-[" + receiver->className + " " + selector + "]";
    if (takesFlag(selector))
        line += " " + std::to_string(first & 0xFF);
    else if (selector.ends_with(":"))
        line += " " + textOf(first);
    calls.push_back(line);
    if (selector == "runModal")
        return static_cast<uintptr_t>(script.modalResponse);
    if (selector == "URLs")
        return reinterpret_cast<uintptr_t>(&array);
    if (selector == "isFileURL")
        return receiver->isFile ? 1 : 0;
    if (selector == "path")
        return reinterpret_cast<uintptr_t>(make("NSString", receiver->text));
    if (selector == "window")
        return reinterpret_cast<uintptr_t>(receiver->window);
    return 0;
}

bool isClass(const void* receiver)
{
    return receiver == &classOpenPanel || receiver == &classUrl || receiver == &classString;
}

} // namespace

extern "C" {

// A message to nil answers nil, as the real runtime does.
uintptr_t objc_msgSend(void* receiver, const char* selector, uintptr_t first, uintptr_t second, uintptr_t)
{
    if (!receiver)
        return 0;
    if (isClass(receiver))
        return sendToClass(receiver, selector, first, second);
    if (std::strcmp(selector, "countByEnumeratingWithState:objects:count:") == 0)
        return enumerate(reinterpret_cast<EnumerationState*>(first));
    return sendToObject(static_cast<Object*>(receiver), selector, first);
}

void* objc_autoreleasePoolPush()
{
    calls.push_back("objc_autoreleasePoolPush");
    ++poolDepth;
    return &poolDepth;
}

void objc_autoreleasePoolPop(void* pool)
{
    calls.push_back(pool == &poolDepth && poolDepth == 1 ? "objc_autoreleasePoolPop" : "unbalanced pool");
    --poolDepth;
}

void objc_enumerationMutation(void* collection)
{
    calls.push_back(collection == &array ? "objc_enumerationMutation" : "mutation of something else");
}

} // extern "C"

NSString* QString::toNSString() const
{
    return reinterpret_cast<NSString*>(make("NSString", text));
}

QString QString::fromNSString(const NSString* string)
{
    return textOf(reinterpret_cast<uintptr_t>(string));
}

WId QWidget::winId() const
{
    calls.push_back("winId");
    return native;
}
