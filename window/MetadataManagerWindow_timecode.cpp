#include "window/MetadataManagerWindow.h"

void MetadataManagerWindow::onTimecodeClicked() { }
