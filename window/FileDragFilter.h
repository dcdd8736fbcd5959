#pragma once

#include <QDragEnterEvent>
#include <QMimeData>
#include <QObject>

/// Installed on editors: lets dragged files pass to the window around them, which adds them to the list. The editors
/// would take the paths as text. Dragged text still goes into the editors.
class FileDragFilter : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::DragEnter || !static_cast<QDragEnterEvent*>(event)->mimeData()->hasUrls())
            return QObject::eventFilter(watched, event);
        // Qt offers what is not accepted here to the parents in turn.
        event->ignore();
        return true;
    }
};
