#pragma once

#include <QDialog>
#include <QList>
#include <QString>

class FolderModel;
class QLabel;
class QLineEdit;
class QListWidget;
class QModelIndex;
class QPushButton;
class QToolButton;
class QTreeView;

/// The open panel where the system has none that takes files and folders together: one folder is shown, and any of
/// its entries can be selected with the mouse, Shift and Ctrl, or the keyboard.
/// A double click or Return goes into a folder and adds a file; Ctrl+Return adds whatever is selected, a folder
/// too; Backspace and Alt+Up go to the folder above. Links to folders are left behind when they are entered.
/// Thread: main only.
class FilePanel : public QDialog {
    Q_OBJECT

public:
    /// `parent` may be null. Shows `startDirectory` or the nearest folder above it that can be read; the home folder
    /// if it is empty.
    FilePanel(QWidget* parent, const QString& startDirectory, const QString& title);

    /// Absolute paths of what is selected, in the order of the rows, symbolic links resolved. What has vanished
    /// meanwhile and links that lead nowhere are left out.
    QList<QString> pickedPaths() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* buildLocationRow();
    QWidget* buildListing();
    QWidget* buildButtonRow();
    void addShortcuts();
    void fillPlaces();
    void showFirst(const QString& startDirectory);

    bool showFolder(const QString& path, const QString& nameToSelect = {});
    void goUp();
    void goToTypedPath();
    void openEntry(const QModelIndex& index);
    void openSelection();
    void addSelection();
    void selectionChanged();

    QLineEdit* locationEdit = nullptr;
    QToolButton* upButton = nullptr;
    QListWidget* placesList = nullptr;
    QTreeView* fileView = nullptr;
    FolderModel* folderModel = nullptr;
    QLabel* selectionLabel = nullptr;
    QPushButton* pickButton = nullptr;
};
