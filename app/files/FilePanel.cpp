#include "app/files/FilePanel.h"

#include "app/files/FolderModel.h"
#include "app/look/Named.h"
#include "app/look/PlainToolTip.h"
#include "app/look/TableKeys.h"
#include "app/look/Theme.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QStandardPaths>
#include <QStyle>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr char kMessage[] = "Select WAV files and/or folders. Folders add every WAV inside.";
constexpr QSize kPanelSize(860, 540);
constexpr int kPlacesWidth = 170;
constexpr QSize kPlaceIconSize(16, 16);
constexpr int kNameWidth = 380;
constexpr int kSizeWidth = 100;

/// Folders under which the system shows the volumes that were plugged in, cards and disks among them.
QStringList volumeFolders()
{
    const QString user = QDir::home().dirName();
    QStringList volumes;
    for (const QString& root : { "/media/" + user, "/run/media/" + user, QString("/mnt") }) {
        const QFileInfoList inside = QDir(root).entryInfoList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name);
        for (const QFileInfo& volume : inside)
            volumes.append(volume.absoluteFilePath());
    }
    return volumes;
}

bool isReturn(int key)
{
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

QString expandHome(const QString& typed)
{
    if (typed == "~" || typed.startsWith("~/"))
        return QDir::homePath() + typed.mid(1);
    return typed;
}

QString countText(qsizetype count)
{
    if (count == 0)
        return QStringLiteral("Nothing selected");
    return count == 1 ? QStringLiteral("1 item selected") : QStringLiteral("%1 items selected").arg(count);
}

} // namespace

FilePanel::FilePanel(QWidget* parent, const QString& startDirectory, const QString& title) : QDialog(parent)
{
    named("filePanel", this);
    setWindowTitle(title);
    setModal(true);
    setStyleSheet(Theme::filledMainStyleSheet()); // There may be no parent to take it from.
    resize(kPanelSize);

    auto* message = named("messageLabel", new QLabel(QString::fromLatin1(kMessage), this));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(message);
    layout->addWidget(buildLocationRow());
    layout->addWidget(buildListing(), 1);
    layout->addWidget(buildButtonRow());

    addShortcuts();
    fillPlaces();
    showFirst(startDirectory);
    fileView->setFocus();
}

QWidget* FilePanel::buildLocationRow()
{
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);

    auto* label = new QLabel("F&older:", row);
    locationEdit = named("locationEdit", new QLineEdit(row));
    locationEdit->installEventFilter(this);
    label->setBuddy(locationEdit);

    upButton = named("upButton", new QToolButton(row));
    upButton->setIcon(style()->standardIcon(QStyle::SP_FileDialogToParent));
    upButton->setToolTip("Go to the folder above (Alt+Up)");
    upButton->setAccessibleName("Go to the folder above");
    upButton->setShortcut(Qt::ALT | Qt::Key_Up);
    connect(upButton, &QToolButton::clicked, this, &FilePanel::goUp);

    layout->addWidget(label);
    layout->addWidget(locationEdit, 1);
    layout->addWidget(upButton);
    return row;
}

QWidget* FilePanel::buildListing()
{
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);

    placesList = named("placesList", new QListWidget(row));
    placesList->setAccessibleName("Places");
    placesList->setFixedWidth(kPlacesWidth);
    placesList->setIconSize(kPlaceIconSize); // The styles' icons differ in size, and the names would not line up.
    placesList->installEventFilter(this);
    beginAtFirstRow(*placesList);
    connect(placesList, &QListWidget::itemClicked, this,
        [this](QListWidgetItem* item) { showFolder(item->data(Qt::UserRole).toString()); });

    folderModel = new FolderModel(this);
    fileView = named("fileView", new QTreeView(row));
    fileView->setAccessibleName("Files and folders");
    fileView->setModel(folderModel);
    fileView->setSelectionMode(QAbstractItemView::ExtendedSelection);
    fileView->setSelectionBehavior(QAbstractItemView::SelectRows);
    fileView->setEditTriggers(QAbstractItemView::NoEditTriggers);
    fileView->setRootIsDecorated(false);
    fileView->setItemsExpandable(false);
    fileView->setUniformRowHeights(true);
    fileView->setAllColumnsShowFocus(true);
    fileView->setSortingEnabled(true);
    fileView->sortByColumn(FolderModel::NameColumn, Qt::AscendingOrder);
    fileView->header()->resizeSection(FolderModel::NameColumn, kNameWidth);
    fileView->header()->resizeSection(FolderModel::SizeColumn, kSizeWidth);
    fileView->installEventFilter(this);
    beginAtFirstRow(*fileView);
    // Not `activated`: some desktops send that on a single click, and then no folder could be selected.
    connect(fileView, &QTreeView::doubleClicked, this, &FilePanel::openEntry);
    connect(fileView->selectionModel(), &QItemSelectionModel::selectionChanged, this, &FilePanel::selectionChanged);

    layout->addWidget(placesList);
    layout->addWidget(fileView, 1);
    return row;
}

QWidget* FilePanel::buildButtonRow()
{
    auto* row = new QWidget(this);
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);

    selectionLabel = named("selectionLabel", new QLabel(row));
    selectionLabel->setTextFormat(Qt::PlainText);

    auto* buttons = new QDialogButtonBox(row);
    named("cancelButton", buttons->addButton(QDialogButtonBox::Cancel));
    pickButton = named("pickButton", buttons->addButton("Add", QDialogButtonBox::AcceptRole));
    pickButton->setToolTip("Add what is selected, folders too (Ctrl+Return)");
    pickButton->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &FilePanel::addSelection);
    connect(buttons, &QDialogButtonBox::rejected, this, &FilePanel::reject);

    layout->addWidget(selectionLabel, 1);
    layout->addWidget(buttons);
    return row;
}

void FilePanel::addShortcuts()
{
    const auto add = [this](const QKeySequence& keys, auto&& action) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, action);
    };
    add(Qt::CTRL | Qt::Key_Return, [this] { addSelection(); });
    add(Qt::CTRL | Qt::Key_Enter, [this] { addSelection(); });
    add(Qt::CTRL | Qt::Key_L, [this] {
        locationEdit->setFocus();
        locationEdit->selectAll();
    });
    add(Qt::Key_F5, [this] { showFolder(folderModel->folder()); });
}

void FilePanel::fillPlaces()
{
    const auto add = [this](const QString& name, const QString& path, QStyle::StandardPixmap icon) {
        auto* item = new QListWidgetItem(style()->standardIcon(icon), name, placesList);
        item->setData(Qt::UserRole, path);
        item->setToolTip(plainToolTip(path));
    };
    add("Home", QDir::homePath(), QStyle::SP_DirHomeIcon);
    const QString desktop = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
    if (desktop != QDir::homePath() && QFileInfo(desktop).isDir())
        add("Desktop", desktop, QStyle::SP_DesktopIcon);
    add("Computer", QDir::rootPath(), QStyle::SP_ComputerIcon);
    const QStringList volumes = volumeFolders();
    for (const QString& volume : volumes)
        add(QFileInfo(volume).fileName(), volume, QStyle::SP_DriveHDIcon);
}

void FilePanel::showFirst(const QString& startDirectory)
{
    QString path = startDirectory.isEmpty() ? QDir::homePath() : QDir::cleanPath(QDir(startDirectory).absolutePath());
    while (!showFolder(path)) {
        const QString above = QFileInfo(path).path();
        if (above == path)
            break;
        path = above;
    }
    selectionChanged();
}

/// Lists another folder and puts the keyboard on the entry called `nameToSelect`, else on the first one, which is
/// not selected. False if the folder can't be read: the old one stays, and the user is told.
bool FilePanel::showFolder(const QString& path, const QString& nameToSelect)
{
    if (!folderModel->showFolder(path)) {
        selectionLabel->setText("This folder can't be opened");
        return false;
    }
    locationEdit->setText(folderModel->folder());
    upButton->setEnabled(!QDir(folderModel->folder()).isRoot());
    const int row = nameToSelect.isEmpty() ? -1 : folderModel->rowOf(nameToSelect);
    const QModelIndex current = folderModel->index(std::max(row, 0), FolderModel::NameColumn);
    fileView->selectionModel()->setCurrentIndex(current,
        row < 0 ? QItemSelectionModel::NoUpdate : QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    fileView->scrollTo(current);
    selectionChanged();
    return true;
}

void FilePanel::goUp()
{
    const QFileInfo left(folderModel->folder());
    if (!QDir(folderModel->folder()).isRoot())
        showFolder(left.path(), left.fileName());
}

void FilePanel::goToTypedPath()
{
    const QFileInfo typed(QDir(folderModel->folder()).absoluteFilePath(expandHome(locationEdit->text())));
    if (!typed.exists()) {
        selectionLabel->setText("There is no such file or folder");
        return;
    }
    if (typed.isDir() ? showFolder(typed.absoluteFilePath()) : showFolder(typed.absolutePath(), typed.fileName()))
        fileView->setFocus();
}

void FilePanel::openEntry(const QModelIndex& index)
{
    const QFileInfo entry = folderModel->entry(index.row());
    if (entry.isDir())
        showFolder(entry.canonicalFilePath());
    else
        addSelection();
}

void FilePanel::openSelection()
{
    const QModelIndexList rows = fileView->selectionModel()->selectedRows();
    if (rows.size() == 1)
        openEntry(rows.first());
    else
        addSelection();
}

void FilePanel::addSelection()
{
    if (fileView->selectionModel()->hasSelection())
        accept();
}

void FilePanel::selectionChanged()
{
    const qsizetype count = fileView->selectionModel()->selectedRows().size();
    selectionLabel->setText(countText(count));
    pickButton->setEnabled(count > 0);
}

QList<QString> FilePanel::pickedPaths() const
{
    QModelIndexList rows = fileView->selectionModel()->selectedRows();
    std::ranges::sort(rows, {}, &QModelIndex::row);
    QList<QString> paths;
    for (const QModelIndex& index : rows) {
        const QString path = QFileInfo(folderModel->entry(index.row()).filePath()).canonicalFilePath();
        if (!path.isEmpty())
            paths.append(path);
    }
    return paths;
}

bool FilePanel::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return QDialog::eventFilter(watched, event);
    // Return would otherwise reach the default button from everywhere.
    const auto* pressed = static_cast<QKeyEvent*>(event);
    const bool plainReturn = isReturn(pressed->key()) && !(pressed->modifiers() & Qt::ControlModifier);
    if (watched == fileView && pressed->key() == Qt::Key_Backspace) {
        goUp();
        return true;
    }
    if (!plainReturn)
        return QDialog::eventFilter(watched, event);
    if (watched == fileView)
        openSelection();
    else if (watched == locationEdit)
        goToTypedPath();
    else if (const QListWidgetItem* place = placesList->currentItem())
        showFolder(place->data(Qt::UserRole).toString());
    return true;
}
