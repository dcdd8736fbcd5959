#include "window/MetadataManagerWindow.h"

void MetadataManagerWindow::onSaveChanges() { }
