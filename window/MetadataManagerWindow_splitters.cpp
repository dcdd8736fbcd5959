#include "window/MetadataManagerWindow.h"

#include "app/settings/ConfigManager.h"
#include "window/DetailPanes.h"

#include <QEvent>
#include <QSplitter>
#include <QSplitterHandle>

#include <algorithm>
#include <array>
#include <span>

namespace {

/// Where one pane's size in pixels is kept, and what it is when nothing usable is.
struct PaneSize {
    const char* key;
    int defaultSize;
};

constexpr std::array kFilesPaneSizes{
    PaneSize{ "metadataManager.split.files", 300 },
    PaneSize{ "metadataManager.split.details", 480 },
};

constexpr std::array kDetailPaneSizes{
    PaneSize{ "metadataManager.split.general", 360 },
    PaneSize{ "metadataManager.split.recording", 360 },
    PaneSize{ "metadataManager.split.tracks", 360 },
};

void storeSizes(const QSplitter* splitter, std::span<const PaneSize> panes)
{
    if (splitter == nullptr)
        return;
    const QList<int> sizes = splitter->sizes();
    if (sizes.size() < static_cast<qsizetype>(panes.size()))
        return;
    for (size_t i = 0; i < panes.size(); ++i)
        ConfigManager::getInstance().setInt(panes[i].key, sizes.at(static_cast<qsizetype>(i)));
}

/// Stored and default sizes of one splitter are never mixed: one bad value takes all of them back to the defaults.
void applyStoredSizes(QSplitter* splitter, std::span<const PaneSize> panes)
{
    if (splitter == nullptr)
        return;
    QList<int> stored;
    QList<int> defaults;
    for (const PaneSize& pane : panes) {
        stored.append(ConfigManager::getInstance().getInt(pane.key, -1));
        defaults.append(pane.defaultSize);
    }
    const bool allUsable = std::all_of(stored.cbegin(), stored.cend(), [](int size) { return size > 0; });
    splitter->setSizes(allUsable ? stored : defaults);
}

/// Installed on a splitter's handle: when it is let go, the sizes that its moves have saved go to the disk.
class HandleReleaseFilter : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::MouseButtonRelease)
            (void)ConfigManager::getInstance().flushConfig();
        return QObject::eventFilter(watched, event);
    }
};

} // namespace

void MetadataManagerWindow::persistSplitterSizes()
{
    storeSizes(filesSplitter, kFilesPaneSizes);
    storeSizes(detailSplitter, kDetailPaneSizes);
    // Every move of a handle comes here, as often as the mouse reports. Another program may look at the file at any
    // moment, so each move is written, but the disk is waited for only when the handle is let go: on a slow one the
    // handle would stutter behind the mouse. Sizes that are forgotten at the next start are not worth a message.
    (void)ConfigManager::getInstance().saveConfigUnflushed();
}

void MetadataManagerWindow::keepSizesOf(QSplitter* splitter)
{
    connect(splitter, &QSplitter::splitterMoved, this, &MetadataManagerWindow::persistSplitterSizes);
    auto* const filter = new HandleReleaseFilter(splitter);
    for (int i = 1; i < splitter->count(); ++i)
        splitter->handle(i)->installEventFilter(filter);
}

void MetadataManagerWindow::restoreSplitterSizes()
{
    applyStoredSizes(filesSplitter, kFilesPaneSizes);
    applyStoredSizes(detailSplitter, kDetailPaneSizes);
}
