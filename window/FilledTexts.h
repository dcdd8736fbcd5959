#pragma once

#include <QHash>
#include <QString>

class QLineEdit;
class QTextEdit;
class QWidget;

/// Fills text editors and knows what each of them then showed, so that a text which nobody changed can be told from
/// one that looks like it. An editor reports a change only if the text differs from the one that it held.
/// Editors are known by their addresses and have to outlive this. Thread: main only.
class FilledTexts {
public:
    void fill(QLineEdit* edit, const QString& text);
    void fill(QTextEdit* edit, const QString& text);

    /// The editor shows what it was filled with, be it that it was not touched or that all was taken back.
    bool isAsFilled(const QLineEdit* edit) const;
    bool isAsFilled(const QTextEdit* edit) const;

private:
    QHash<const QWidget*, QString> shown; ///< By editor: its text when it had just been filled.
};
