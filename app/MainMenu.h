#pragma once

class MetadataManagerWindow;

/// Fills the window's menu bar. All menus and entries are children of the window.
void buildMenuBar(MetadataManagerWindow* window);
