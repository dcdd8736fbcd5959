#include "app/look/Theme.h"

namespace {

// One rule after the other with nothing between them. A check box has no image: a plain fill shows that it is
// checked.
constexpr char kMainRules[]
    = "QMainWindow { background-color: %1; color: %2; }"
      "QWidget { background-color: %1; color: %2; }"
      "QPushButton { background-color: #3a3a3a; color: %2; border: 1px solid %3;   border-radius: 6px; "
      "padding: 5px 10px; }"
      "QPushButton:hover { background-color: #4a4a4a; border-color: #666; }"
      "QPushButton:pressed { background-color: #2a2a2a; }"
      "QPushButton:disabled { background-color: #1a1a1a; color: #666; }"
      "QLabel { color: %2; }"
      "QLineEdit { background-color: #2d2d2d; color: %2; border: 1px solid %3;   border-radius: 4px; "
      "padding: 4px 6px; min-height: 24px; }"
      "QLineEdit:focus { border: 1px solid %4; }"
      "QLineEdit:read-only { background-color: #333333; }"
      "QCheckBox { color: %2; }"
      "QCheckBox::indicator { width: 16px; height: 16px; border-radius: 3px; }"
      "QCheckBox::indicator:unchecked { background-color: #2d2d2d; border: 1px solid %3; }"
      "QCheckBox::indicator:checked { background-color: %5; border: 1px solid %6; }"
      "QMenuBar { background-color: #252526; color: %2; padding: 2px 0px; }"
      "QMenuBar::item { background-color: transparent; padding: 6px 12px; margin: 2px 2px; }"
      "QMenuBar::item:selected { background-color: #2d2d2d; }"
      "QMenu { background-color: #252526; color: %2; border: 1px solid %3; padding: 4px 0px; }"
      "QMenu::item { padding: 8px 20px; margin: 2px 4px; }"
      "QMenu::item:selected { background-color: #2d2d2d; }"
      "QMenu::separator { height: 1px; background: %3; margin: 4px 10px; }"
      "QGroupBox { color: %2; border: 2px solid %3; border-radius: 8px;   margin-top: 12px; padding-top: 15px; "
      "font-weight: bold; }"
      "QGroupBox::title { subcontrol-origin: margin; left: 12px; padding: 0 8px;   background: %7; }"
      "QScrollArea { border: none; }"
      "QSlider::groove:vertical { background: #2d2d2d; width: 8px; border-radius: 4px; }"
      "QSlider::handle:vertical { background: %4; height: 20px; margin: 0 -4px; border-radius: 4px; }"
      "QSpinBox, QDoubleSpinBox { background-color: #2d2d2d; color: %2;   border: 1px solid %3; "
      "border-radius: 4px; padding: 3px 6px; }"
      "QSpinBox:focus, QDoubleSpinBox:focus { border: 1px solid %4; }"
      "QSpinBox:disabled, QDoubleSpinBox:disabled { background-color: #1a1a1a; color: #666; }"
      "QSpinBox::up-button, QDoubleSpinBox::up-button, QSpinBox::down-button, QDoubleSpinBox::down-button { "
      "  background-color: #3a3a3a; border: 1px solid %3; width: 16px; }"
      "QSpinBox::up-button:hover, QDoubleSpinBox::up-button:hover, QSpinBox::down-button:hover, "
      "QDoubleSpinBox::down-button:hover { background-color: #4a4a4a; }"
      "QSpinBox::up-arrow, QDoubleSpinBox::up-arrow {   width: 0; height: 0; border-left: 4px solid transparent; "
      "  border-right: 4px solid transparent; border-bottom: 5px solid %2; }"
      "QSpinBox::down-arrow, QDoubleSpinBox::down-arrow {   width: 0; height: 0; "
      "border-left: 4px solid transparent;   border-right: 4px solid transparent; border-top: 5px solid %2; }"
      "QComboBox { background-color: #2d2d2d; color: %2; border: 1px solid %3;   border-radius: 4px; "
      "padding: 4px 8px; min-height: 22px; }"
      "QComboBox:hover { border-color: #666; }"
      "QComboBox:focus { border: 1px solid %4; }"
      "QComboBox:disabled { background-color: #1a1a1a; color: #666; }"
      "QComboBox::drop-down { border: none; width: 20px; }"
      "QComboBox::down-arrow { width: 0; height: 0;   border-left: 5px solid transparent; "
      "border-right: 5px solid transparent;   border-top: 6px solid %2; margin-right: 6px; }"
      "QComboBox QAbstractItemView { background-color: #2d2d2d; color: %2;   border: 1px solid %3; "
      "selection-background-color: #3d3d3d; selection-color: %2; }"
      "QTextEdit, QPlainTextEdit { background-color: #2d2d2d; color: %2;   border: 1px solid %3; "
      "border-radius: 4px; }"
      "QListWidget, QListView, QTreeView { background-color: #2d2d2d; color: %2;   border: 1px solid %3; }"
      "QTableWidget, QTableView { background-color: #2d2d2d; color: %2;   gridline-color: %3; }"
      "QHeaderView::section { background-color: #3a3a3a; color: %2;   padding: 4px; border: 1px solid %3; }"
      "QDateEdit, QTimeEdit, QDateTimeEdit { background-color: #2d2d2d; color: %2;   border: 1px solid %3; "
      "border-radius: 4px; padding: 3px 6px; }";

constexpr char kFileTableRules[]
    = "QTableWidget {  background-color: #ffffff;  color: #111111;  alternate-background-color: #f2f2f2; "
      " gridline-color: #d0d0d0;  selection-background-color: #9B59B6;  selection-color: #ffffff; "
      " border: 1px solid #555555;}"
      "QTableWidget::item {  color: #111111;  padding: 2px 4px;}"
      "QTableWidget::item:selected {  background-color: #9B59B6;  color: #ffffff;}"
      "QHeaderView::section {  background-color: #e8e8e8;  color: #111111;  padding: 4px 6px; "
      " border: 1px solid #c8c8c8;  font-weight: bold;}"
      "QTableCornerButton::section {  background-color: #e8e8e8;  border: 1px solid #c8c8c8;}";

constexpr char kSplitterRules[] = "QSplitter::handle { background-color: #2a2a2a; }"
                                  "QSplitter::handle:hover { background-color: #3a3a3a; }";

constexpr char kTimecodeRules[]
    = "QPushButton { text-align: left; padding: 2px; } QPushButton:hover { background-color: #3a3a3a; }";

constexpr char kPlayRules[] = "QToolButton {  background: transparent;  border: none;  padding: 0px;}"
                              "QToolButton:hover {  background: rgba(26, 127, 55, 40);  border-radius: 4px;}"
                              "QToolButton:pressed {  background: rgba(26, 127, 55, 80);}";

} // namespace

QString Theme::mainStyleSheet()
{
    return QString::fromLatin1(kMainRules);
}

QString Theme::filledMainStyleSheet()
{
    // One call for all places, so that nothing that is put in can be taken for a place again.
    return mainStyleSheet().arg(QLatin1String(kBgWindow), QLatin1String(kTextPrimary), QLatin1String(kBorder),
        QLatin1String(kAccent), QLatin1String(kAccentTeal), QLatin1String(kAccentTealHi), QLatin1String(kBgSurface));
}

QString Theme::fileTableStyleSheet()
{
    return QString::fromLatin1(kFileTableRules);
}

QString Theme::splitterHandleStyleSheet()
{
    return QString::fromLatin1(kSplitterRules);
}

QString Theme::timecodeButtonStyleSheet()
{
    return QString::fromLatin1(kTimecodeRules);
}

QString Theme::playButtonStyleSheet()
{
    return QString::fromLatin1(kPlayRules);
}
