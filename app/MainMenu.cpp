#include "app/MainMenu.h"

#include "app/look/Named.h"
#include "window/MetadataManagerWindow.h"

#include <QAction>
#include <QCoreApplication>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>

namespace {

QMenu* addMenu(MetadataManagerWindow* window, const QString& title, const char* name)
{
    return named(name, window->menuBar()->addMenu(title));
}

QAction* addEntry(QMenu* menu, const QString& text, const char* name)
{
    return named(name, menu->addAction(text));
}

} // namespace

void buildMenuBar(MetadataManagerWindow* window)
{
    QMenu* fileMenu = addMenu(window, QStringLiteral("&File"), "fileMenu");
    QAction* open = addEntry(fileMenu, QStringLiteral("&Open\u2026"), "openAction");
    open->setShortcut(QKeySequence(QKeySequence::Open));
    QObject::connect(open, &QAction::triggered, window, &MetadataManagerWindow::openFileDialog);
    fileMenu->addSeparator();
    QAction* quit = addEntry(fileMenu, QStringLiteral("&Quit"), "quitAction");
    quit->setShortcut(QKeySequence(QKeySequence::Quit));
    QObject::connect(quit, &QAction::triggered, QCoreApplication::instance(), &QCoreApplication::quit);

    QMenu* toolsMenu = addMenu(window, QStringLiteral("&Tools"), "toolsMenu");
    QAction* soundReport = addEntry(toolsMenu, QStringLiteral("&Sound Report\u2026"), "soundReportAction");
    QObject::connect(soundReport, &QAction::triggered, window, &MetadataManagerWindow::onSoundReport);
}
