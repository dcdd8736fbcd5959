#pragma once

#include <QObject>
#include <QPointer>

class QApplication;
class QFocusEvent;
class QFocusFrame;
class QWidget;

/// Shows which widget has the keyboard, in every window of the application: a ring around it, light outside and dark
/// inside, two pixels each, so that one of the two stands out from every ground. It comes with the keyboard and goes
/// with the first press of a mouse button. Neither style sheets nor sizes nor the order of focus change, and assistive
/// tools don't see it.
/// Thread: main only.
class FocusMark : public QObject {
    Q_OBJECT

public:
    /// Watches all widgets from here on. `application` owns nothing here, and must outlive the mark.
    explicit FocusMark(QApplication& application);
    ~FocusMark() override;
    FocusMark(const FocusMark&) = delete;
    FocusMark& operator=(const FocusMark&) = delete;

    static constexpr int kRingWidth = 2; ///< Pixels of the light and of the dark ring, each.
    static constexpr char kLight[] = "#ffffff";
    static constexpr char kDark[] = "#111111";

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void followFocus(QWidget* widget, const QFocusEvent& event);
    void show(QWidget* widget);
    void hide();
    void place();
    bool isAround(const QObject* object) const;

    QPointer<QWidget> marked; // The widget with the ring; null while there is none.
    QPointer<QFocusFrame> ring; // Child of the window, or of the scrolled area, that shows the widget; goes with it.
    bool keyboardLast = false; // The user's last act was a key.
};
