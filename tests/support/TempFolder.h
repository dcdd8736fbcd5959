#pragma once

#include <filesystem>
#include <string>

/// A fresh folder under the system's temporary folder, removed with all it holds when the object goes.
/// Any thread; one object belongs to one test.
class TempFolder {
public:
    /// Makes the folder. Throws std::filesystem::filesystem_error when the temporary folder can't be written.
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    /// The folder itself, absolute.
    const std::filesystem::path& path() const { return root; }

    /// Absolute path of `name` inside the folder, as UTF-8 bytes. Nothing is created.
    std::string file(const std::string& name) const { return (root / name).string(); }

private:
    std::filesystem::path root;
};

/// The whole file as bytes; empty when it can't be read.
std::string readBytes(const std::string& path);

/// Replaces the file by `bytes`. Throws std::runtime_error when it can't be written.
void writeBytes(const std::string& path, const std::string& bytes);
