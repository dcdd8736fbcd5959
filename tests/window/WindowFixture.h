#pragma once

#include "app/settings/ConfigManager.h"
#include "tests/support/Recording.h"
#include "tests/support/TempFolder.h"
#include "window/FileTableColumns.h"
#include "window/MetadataManagerWindow.h"

#include <QApplication>
#include <QItemSelectionModel>
#include <QPushButton>
#include <QTableWidget>

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// A window on an empty list, with no settings, and the hands of its user.
class WindowFixture : public testing::Test {
protected:
    WindowFixture()
    {
        // Tests of one executable may share the process and so the settings.
        for (const char* key : { "metadataManager.lastDir", "lastRecording.folderPath" })
            ConfigManager::getInstance().setString(key, {});
        for (const char* pane : { "files", "details", "general", "recording", "tracks" })
            ConfigManager::getInstance().setInt(std::string("metadataManager.split.") + pane, -1);
        window = std::make_unique<MetadataManagerWindow>();
    }

    template <typename Widget> Widget* widget(const char* name) const
    {
        auto* found = window->findChild<Widget*>(QString::fromLatin1(name));
        EXPECT_TRUE(found) << name;
        return found;
    }

    QTableWidget* table() const { return widget<QTableWidget>("fileTable"); }
    QTableWidget* tracks() const { return widget<QTableWidget>("trackTable"); }
    bool enabled(const char* button) const { return widget<QPushButton>(button)->isEnabled(); }

    /// The text that a label, line edit or button shows.
    std::string text(const char* name) const
    {
        return widget<QWidget>(name)->property("text").toString().toStdString();
    }

    std::string cell(int row, FileColumn column) const
    {
        const QTableWidgetItem* item = table()->item(row, indexOf(column));
        return item != nullptr ? item->text().toStdString() : std::string("(no item)");
    }

    std::string trackCell(int row, TrackColumn column) const
    {
        return tracks()->item(row, indexOf(column))->text().toStdString();
    }

    /// The column's texts from top to bottom.
    std::vector<std::string> column(FileColumn which) const
    {
        std::vector<std::string> texts;
        for (int row = 0; row < table()->rowCount(); ++row)
            texts.push_back(cell(row, which));
        return texts;
    }

    QString path(const std::string& name) const { return QString::fromStdString(folder.file(name)); }

    QString write(const std::string& name, const Recording& recording)
    {
        recording.file().write(folder.file(name));
        return path(name);
    }

    void add(const std::string& name, const Recording& recording) { window->addFiles({ write(name, recording) }); }

    void select(const std::vector<int>& rows) const
    {
        QItemSelection selection;
        for (const int row : rows)
            selection.select(table()->model()->index(row, 0), table()->model()->index(row, kFileColumnCount - 1));
        table()->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    }

    void press(const char* button) const { widget<QPushButton>(button)->click(); }

    TempFolder folder;
    std::unique_ptr<MetadataManagerWindow> window;
};

inline const std::string kMark = "\u2014";
