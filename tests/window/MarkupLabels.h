#pragma once

#include <QLabel>
#include <QList>
#include <QString>
#include <QStringList>
#include <QWidget>

/// The labels of `window`, and of the dialogs that are its children, whose text holds a tag.
inline QList<const QLabel*> labelsWithTags(const QWidget& window)
{
    QList<const QLabel*> labels;
    for (const QLabel* label : window.findChildren<QLabel*>()) {
        if (label->text().contains(u'<'))
            labels.append(label);
    }
    return labels;
}

/// The names of the labels of `window` that would take their text for markup, and show it as something else.
inline QStringList labelsThatTakeMarkup(const QWidget& window)
{
    QStringList names;
    for (const QLabel* label : labelsWithTags(window)) {
        const bool guesses = label->textFormat() == Qt::AutoText;
        if (label->textFormat() != Qt::PlainText && (!guesses || Qt::mightBeRichText(label->text())))
            names.append(label->objectName() + QLatin1String(": ") + label->text());
    }
    return names;
}
