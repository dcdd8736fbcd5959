#include "window/MetadataManagerWindow.h"

void MetadataManagerWindow::onSoundReport() { }
