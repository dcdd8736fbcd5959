#pragma once

#include <QApplication>

class MetadataManagerWindow;

/// The application object. Takes the operating system's file-open events for the main window.
/// Thread: main only.
class TagwellApplication : public QApplication {
    Q_OBJECT

public:
    using QApplication::QApplication;
    ~TagwellApplication() override;
    TagwellApplication(const TagwellApplication&) = delete;
    TagwellApplication& operator=(const TagwellApplication&) = delete;

    /// True if the event names a WAV file to open and there is a window: the file is then in its list and the window
    /// in front, also if the file was listed before. Everything else is answered by QApplication.
    /// Whether the file exists is not asked here.
    bool event(QEvent* event) override;

    /// The window that takes opened files. Not owned; null until its menus stand, and nothing can be opened before.
    MetadataManagerWindow* mainWindow = nullptr;
};
