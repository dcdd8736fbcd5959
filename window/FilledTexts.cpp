#include "window/FilledTexts.h"

#include <QLineEdit>
#include <QTextDocument>
#include <QTextEdit>

void FilledTexts::fill(QLineEdit* edit, const QString& text)
{
    edit->setText(text);
    shown[edit] = edit->text();
}

// As QLineEdit::setText fills a line edit: QTextEdit reports even an equal text as a change, which would count as a
// touch of the editors.
void FilledTexts::fill(QTextEdit* edit, const QString& text)
{
    // Compared as documents: what the edit gives back has lost the kinds of blanks and line ends.
    QTextDocument wanted;
    wanted.setPlainText(text);
    const QString raw = wanted.toRawText();
    if (edit->document()->toRawText() != raw)
        edit->setPlainText(text);
    shown[edit] = raw;
}

bool FilledTexts::isAsFilled(const QLineEdit* edit) const
{
    return shown.value(edit) == edit->text();
}

bool FilledTexts::isAsFilled(const QTextEdit* edit) const
{
    return shown.value(edit) == edit->document()->toRawText();
}
