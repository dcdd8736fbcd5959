#pragma once

#include <QStringList>

class QWidget;

/// What a user of the keyboard and of assistive tools meets in a window. Failing checks are added to the running test.
namespace KeyboardWalk {

/// The object names of the controls that Tab goes through, from the one that has the keyboard until it comes round to
/// it again, each once; with `backwards` Shift+Tab. `window` is shown and active. Fails the test if the walk does not
/// come back, or comes through a control twice.
QStringList round(QWidget& window, bool backwards = false);

/// Whether Tab and Shift+Tab go through the same controls, in opposite order, and through every one that takes the
/// keyboard by Tab.
void expectRoundBothWays(QWidget& window);

/// Class and object name of each control in `window` that can have the keyboard and has no accessible name.
QStringList namelessControls(QWidget& window);

} // namespace KeyboardWalk
