#include "app/look/FocusMark.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QFocusEvent>
#include <QFocusFrame>
#include <QMenuBar>
#include <QPainter>

namespace {

/// Qt's own frame for the focus is the one kind of widget that assistive tools pass by. Only the place and the
/// picture are ours: the frame would not follow what a view scrolls, and its picture is the desktop style's.
class FocusRing : public QFocusFrame {
public:
    using QFocusFrame::QFocusFrame;

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        paintRing(painter, rect(), FocusMark::kLight);
        constexpr int inset = FocusMark::kRingWidth;
        paintRing(painter, rect().adjusted(inset, inset, -inset, -inset), FocusMark::kDark);
    }

private:
    static void paintRing(QPainter& painter, const QRect& outer, const char* colour)
    {
        constexpr int width = FocusMark::kRingWidth;
        const QRegion inner(outer.adjusted(width, width, -width, -width));
        for (const QRect& part : QRegion(outer) - inner)
            painter.fillRect(part, QColor(QLatin1String(colour)));
    }
};

/// The widget that the ring is a child of: nothing hides more of `widget` than the edge of a scrolled area or of the
/// window.
QWidget* groundOf(const QWidget* widget)
{
    QWidget* ground = widget->parentWidget();
    while (!ground->isWindow()) {
        const auto* area = qobject_cast<const QAbstractScrollArea*>(ground->parentWidget());
        if (area != nullptr && area->viewport() == ground)
            break;
        ground = ground->parentWidget();
    }
    return ground;
}

/// Windows by themselves, what pops up, and the bar that marks its entries itself have no ring.
bool canBeMarked(const QWidget* widget)
{
    return !widget->isWindow() && widget->window()->windowType() != Qt::Popup
        && qobject_cast<const QMenuBar*>(widget) == nullptr;
}

bool comesByKey(Qt::FocusReason reason)
{
    return reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason || reason == Qt::ShortcutFocusReason;
}

} // namespace

FocusMark::FocusMark(QApplication& application)
{
    application.installEventFilter(this);
}

FocusMark::~FocusMark()
{
    delete ring;
}

bool FocusMark::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::KeyPress:
        keyboardLast = true;
        break;
    case QEvent::MouseButtonPress:
        keyboardLast = false;
        hide();
        break;
    case QEvent::FocusIn:
        if (watched->isWidgetType())
            followFocus(static_cast<QWidget*>(watched), *static_cast<QFocusEvent*>(event));
        break;
    case QEvent::FocusOut:
        // A widget on its way out is not known any more.
        if (!marked || watched == marked)
            hide();
        break;
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::Show:
    case QEvent::Hide:
    case QEvent::ZOrderChange:
        // A view that scrolls moves the ring along with the widget, in whichever order.
        if (marked && (watched == ring || isAround(watched)))
            place();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void FocusMark::followFocus(QWidget* widget, const QFocusEvent& event)
{
    if (event.reason() == Qt::MouseFocusReason)
        keyboardLast = false;
    const bool byKeyboard = keyboardLast || comesByKey(event.reason());
    if (byKeyboard && canBeMarked(widget))
        show(widget);
    else
        hide();
}

void FocusMark::show(QWidget* widget)
{
    marked = widget;
    QWidget* const ground = groundOf(widget);
    if (!ring || ring->parentWidget() != ground) {
        delete ring;
        ring = new FocusRing(ground);
    }
    place();
}

void FocusMark::hide()
{
    marked = nullptr;
    if (ring)
        ring->hide();
}

void FocusMark::place()
{
    QWidget* const ground = ring ? ring->parentWidget() : nullptr;
    // A widget that moved to another window, or one of a window that is about to go.
    if (ground == nullptr || !ground->isAncestorOf(marked)) {
        hide();
        return;
    }
    const QRect around = QRect(marked->mapTo(ground, QPoint()), marked->size())
                             .adjusted(-kRingWidth, -kRingWidth, kRingWidth, kRingWidth)
                             .intersected(ground->rect());
    ring->setGeometry(around);
    ring->setVisible(!around.isEmpty() && marked->isVisible());
    ring->raise();
}

bool FocusMark::isAround(const QObject* object) const
{
    for (const QWidget* each = marked; each != nullptr; each = each->parentWidget()) {
        if (each == object)
            return true;
        if (ring && each == ring->parentWidget())
            break;
    }
    return false;
}
