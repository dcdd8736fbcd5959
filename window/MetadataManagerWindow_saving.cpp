#include "window/MetadataManagerWindow.h"

#include "core/BwfMetadataWriter.h"
#include "window/DetailPanes.h"
#include "window/FileTable.h"

#include <QFileInfo>
#include <QMessageBox>

void MetadataManagerWindow::writeRow(int row)
{
    const BwfMetadata update = detailSplitter->wanted(files.record(row));
    const QString path = files.path(row);
    if (!BwfMetadataWriter::writeMetadata(path.toStdString(), update))
        QMessageBox::warning(this, "Error", QString("Failed to save metadata to:\n%1").arg(path));
}

void MetadataManagerWindow::readBackRow(int row)
{
    const QString& path = files.path(row);
    files.readAgain(row);
    fileTable->refreshRow(row, files.record(row), QFileInfo(path));
}

void MetadataManagerWindow::onSaveChanges()
{
    const QList<int> rows = fileTable->selectedRows();
    if (rows.isEmpty())
        return;

    // One after the other, and nothing is undone: a file that fails has its warning, and the batch goes on. All files
    // are read back, those that failed too: the file is the truth.
    for (const int row : rows) {
        if (files.contains(row))
            writeRow(row);
    }
    for (const int row : rows) {
        if (files.contains(row))
            readBackRow(row);
    }

    dirty = false;
    updateMetadataDisplay();
    // The number of files that were selected, whether they could be written or not.
    QMessageBox::information(this, "Success", QString("Metadata saved to %1 file(s)").arg(rows.size()));
}
