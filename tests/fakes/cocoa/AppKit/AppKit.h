#pragma once

// Stand-in for the system's header: only the names that the file panel uses, in the system's spelling and types.

typedef signed char BOOL;
typedef long NSInteger;
typedef unsigned long NSUInteger;
typedef NSInteger NSModalResponse;
enum : NSModalResponse { NSModalResponseOK = 1 };
#define YES ((BOOL)1)
#define NO ((BOOL)0)

typedef struct {
    unsigned long state;
    __unsafe_unretained id* itemsPtr;
    unsigned long* mutationsPtr;
    unsigned long extra[5];
} NSFastEnumerationState;

@class NSString;

__attribute__((objc_root_class))
@interface NSObject
@end

@interface NSString : NSObject
+ (NSString*)stringWithUTF8String:(const char*)text;
@end

// What the compiler makes of @"..." literals.
@interface NSConstantString : NSString
@end

@interface NSURL : NSObject
+ (NSURL*)fileURLWithPath:(NSString*)path isDirectory:(BOOL)isDirectory;
- (BOOL)isFileURL;
- (NSString*)path;
@end

@interface NSArray<Element> : NSObject
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(__unsafe_unretained id*)buffer
                                    count:(NSUInteger)length;
@end

@interface NSWindow : NSObject
- (void)setSubtitle:(NSString*)subtitle;
@end

@interface NSView : NSObject
- (NSWindow*)window;
@end

@interface NSOpenPanel : NSWindow
+ (NSOpenPanel*)openPanel;
- (void)setCanChooseFiles:(BOOL)on;
- (void)setCanChooseDirectories:(BOOL)on;
- (void)setAllowsMultipleSelection:(BOOL)on;
- (void)setCanCreateDirectories:(BOOL)on;
- (void)setResolvesAliases:(BOOL)on;
- (void)setTitle:(NSString*)title;
- (void)setMessage:(NSString*)message;
- (void)setPrompt:(NSString*)prompt;
- (void)setDirectoryURL:(NSURL*)url;
- (NSModalResponse)runModal;
- (NSArray<NSURL*>*)URLs;
@end
