#include "window/MetadataManagerWindow.h"

void MetadataManagerWindow::attachPlayButton(int) { }

void MetadataManagerWindow::onPlayFile(int) { }

QList<QString> MetadataManagerWindow::trackNamesForRow(int) const { return {}; }

void MetadataManagerWindow::closePlaybackOverlay() { }

void MetadataManagerWindow::closePlaybackOverlayOfRows(const QList<int>&) { }
