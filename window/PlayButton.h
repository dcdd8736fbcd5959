#pragma once

#include <QIcon>

class QAbstractButton;
class QWidget;

/// The green triangle of the play buttons, for usual and for dense screens. Needs the application; main thread only.
QIcon drawPlayIcon();

/// A button that plays a row's file, with nothing connected yet. `parent` owns it. Main thread only.
QAbstractButton* makePlayButton(const QIcon& icon, QWidget* parent);
