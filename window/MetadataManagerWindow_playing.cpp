#include "window/MetadataManagerWindow.h"

#include "app/look/Theme.h"
#include "mixer/FilePlaybackMixerDialog.h"
#include "window/FileTableColumns.h"
#include "window/TrackNames.h"

#include <QCoreApplication>
#include <QEvent>
#include <QIcon>
#include <QPainter>
#include <QPixmap>
#include <QPointer>
#include <QTableWidget>
#include <QToolButton>

#include <algorithm>
#include <array>

namespace {

constexpr int kIconSize = 18;
constexpr QSize kPlayButtonSize(28, 24);
constexpr char kPlayColour[] = "#1a7f37";
constexpr std::array kTriangle{ QPoint(5, 3), QPoint(5, 15), QPoint(15, 9) };

/// The triangle at `density` pixels to the unit.
QPixmap playPicture(int density)
{
    QPixmap pixmap(kIconSize * density, kIconSize * density);
    pixmap.setDevicePixelRatio(density);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(QLatin1String(kPlayColour)));
    painter.drawPolygon(kTriangle.data(), static_cast<int>(kTriangle.size()));
    painter.end();
    return pixmap;
}

QIcon drawPlayIcon()
{
    QIcon icon(playPicture(1));
    icon.addPixmap(playPicture(2)); // Blown up from one pixel to the unit it would be blurred on a dense screen.
    return icon;
}

QToolButton* makePlayButton(const QIcon& icon, QWidget* parent)
{
    auto* button = new QToolButton(parent);
    button->setObjectName(QStringLiteral("playButton"));
    button->setIcon(icon);
    button->setIconSize(QSize(kIconSize, kIconSize));
    button->setText(QString());
    button->setToolTip(QStringLiteral("Play this file with a track mixer"));
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::NoFocus);
    button->setCursor(Qt::PointingHandCursor);
    button->setAccessibleName(QStringLiteral("Play"));
    button->setFixedSize(kPlayButtonSize);
    button->setStyleSheet(Theme::playButtonStyleSheet());
    return button;
}

} // namespace

void MetadataManagerWindow::attachPlayButton(int row)
{
    if (playIcon.isNull())
        playIcon = drawPlayIcon();
    // In its place within the table from the start: a new parent would make it work out its style sheet again.
    QToolButton* const button = makePlayButton(playIcon, fileTable->viewport());
    // The button is looked up at each click, since its row number changes when rows above it go.
    connect(button, &QToolButton::clicked, this, [this, button] {
        for (int each = 0; each < fileTable->rowCount(); ++each) {
            if (fileTable->cellWidget(each, indexOf(FileColumn::Play)) == button) {
                onPlayFile(each);
                return;
            }
        }
    });
    // The button goes to its place before the table shows it. Shown in the corner first, each of thousands would be due
    // for painting, and each paint looks through all the others. (visualRect would lay the table out for each one.)
    const int column = indexOf(FileColumn::Play);
    button->move(fileTable->columnViewportPosition(column), fileTable->rowViewportPosition(row));
    fileTable->setCellWidget(row, column, button);
}

void MetadataManagerWindow::onPlayFile(int row)
{
    if (!files.contains(row))
        return;
    const QString path = files.path(row);
    if (!playbackOverlay || playbackOverlay->filePath != path) {
        // Only one file plays at a time.
        closePlaybackOverlay();
        openPlaybackOverlay(row);
    }
    playbackOverlay->show();
    playbackOverlay->raise();
    playbackOverlay->activateWindow();
}

void MetadataManagerWindow::openPlaybackOverlay(int row)
{
    // By value: the dialog may wait in a warning box, and files may be opened meanwhile.
    const BwfMetadata record = files.record(row);
    auto* const dialog = new FilePlaybackMixerDialog(files.path(row), trackNamesForRow(row), record, this);
    playbackOverlay = dialog;
    connect(dialog, &QObject::destroyed, this, [this, dialog] {
        // An old dialog may go when a new one stands already.
        if (playbackOverlay == dialog)
            playbackOverlay = nullptr;
    });
}

QList<QString> MetadataManagerWindow::trackNamesForRow(int row) const
{
    return files.contains(row) ? mixerTrackNames(files.record(row)) : QList<QString>();
}

void MetadataManagerWindow::closePlaybackOverlay()
{
    if (!playbackOverlay)
        return;
    const QPointer<FilePlaybackMixerDialog> dialog = playbackOverlay;
    playbackOverlay = nullptr;
    dialog->close();
    // It would delete itself with the next turn of the event loop only, and sound on while the next file is read.
    if (dialog)
        QCoreApplication::sendPostedEvents(dialog, QEvent::DeferredDelete);
}

void MetadataManagerWindow::closePlaybackOverlayOfRows(const QList<int>& rows)
{
    if (!playbackOverlay)
        return;
    const auto plays = [this](int row) { return files.contains(row) && files.path(row) == playbackOverlay->filePath; };
    if (std::any_of(rows.begin(), rows.end(), plays))
        closePlaybackOverlay();
}
