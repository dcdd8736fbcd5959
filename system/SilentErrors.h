#pragma once

/// Points the process's error output to nowhere while it lives. For libraries that comment there on what they find in a
/// user's files and offer no way to be silent; the program itself prints nothing.
///
/// The error output is a descriptor of the whole process, so there is one redirection at a time: objects that overlap,
/// in whatever order they end, share it, and the last one restores what the first one found. If each saved and restored
/// for itself, the second would save the first's nowhere and leave the process with it. What other threads print in
/// the meantime is lost; only libraries do.
/// Thread: any. Never waits for the life of another one. Where the descriptor can't be saved or redirected (the process
/// has no error output, or no descriptor is left), nothing happens.
class SilentErrors {
public:
    SilentErrors();
    ~SilentErrors();
    SilentErrors(const SilentErrors&) = delete;
    SilentErrors& operator=(const SilentErrors&) = delete;
};
