#pragma once

#include "report/SoundReportDialog.h"
#include "tests/report/ReportFixture.h"
#include "tests/support/WavBuilder.h"

#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QString>
#include <QStringList>
#include <QTableWidget>
#include <QtTest>

#include <functional>
#include <string>

/// The labels of the pane that shows one take.
inline const char* const kDetailLabels[]
    = { "fileNumberLabel", "filenameLabel", "sceneLabel", "takeLabel", "projectLabel", "soundRollLabel",
          "timecodeInLabel", "timecodeOutLabel", "durationLabel", "tracksLabel", "notesLabel", "fileDateLabel" };

inline bool createEnabled(const SoundReportDialog& dialog)
{
    return childOf<QPushButton>(dialog, "createReportButton").isEnabled();
}

inline QString folderText(const SoundReportDialog& dialog)
{
    return childOf<QLineEdit>(dialog, "folderEdit").text();
}

/// Clicks into the second column of the row.
inline void clickRow(SoundReportDialog& dialog, int row)
{
    auto& table = childOf<QTableWidget>(dialog, "takeTable");
    QTest::mouseClick(
        table.viewport(), Qt::LeftButton, Qt::NoModifier, table.visualItemRect(table.item(row, 1)).center());
}

/// What a person does with the report dialog.
class ReportDialog : public ReportFixture {
protected:
    QString subfolder(const std::string& name)
    {
        QDir(path("")).mkpath(QString::fromStdString(name));
        return path(name);
    }

    /// A target that the file dialog takes and nobody can open.
    QString linkIntoNowhere()
    {
        QFile::link(path("missing/report"), path("link"));
        return path("link");
    }

    /// Presses "Create Sound Report", cancels the file dialog and returns the path that it proposed.
    static QString proposal(SoundReportDialog& dialog)
    {
        QString proposed;
        whenModal<QFileDialog>([&proposed](QFileDialog& chooser) {
            proposed = chooser.directory().filePath(proposedName(chooser));
            cancelChooser(chooser);
        });
        click(dialog, "createReportButton");
        return proposed;
    }

    /// Presses "Create Sound Report" and saves under `target`.
    static void createReport(SoundReportDialog& dialog, const QString& target)
    {
        whenModal<QFileDialog>([target](QFileDialog& chooser) { pickPath(chooser, target); });
        click(dialog, "createReportButton");
    }

    static QString toastText(const SoundReportDialog& dialog)
    {
        const QLabel* toast = dialog.findChild<QLabel*>("toast");
        return toast ? toast->text() : QString();
    }

    /// Runs `act`, which ends in a message box; returns title and text of the box.
    static QStringList boxAfter(const std::function<void()>& act)
    {
        QStringList seen;
        whenModal<QMessageBox>([&seen](QMessageBox& box) {
            seen << box.windowTitle() << box.text();
            EXPECT_EQ(box.icon(), QMessageBox::NoIcon);
            QTest::keyClick(&box, Qt::Key_Return);
        });
        act();
        return seen;
    }
};
