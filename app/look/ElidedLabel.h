#pragma once

#include <QLabel>
#include <QString>
#include <QStringList>

class QFont;

/// `text` as it fits into `width` pixels and `mostLines` lines, which are at least 1: broken at line feeds, at a blank
/// where there is one and anywhere else where there is none, the last line cut with "…". One empty line without a text.
QStringList elidedLines(const QString& text, const QFont& font, int width, int mostLines);

/// A label for a text out of a file, which may be of any length and in any script: it asks for room within bounds, and
/// draws what fits into the room that it has. `text` stays whole, and is the tool tip unless another one is set.
/// Neither is ever taken for markup.
/// Thread: main only.
class ElidedLabel : public QLabel {
    Q_OBJECT

public:
    /// In at most `mostLines` lines, at least 1. In a single line white space, line feeds among it, shows as one blank.
    explicit ElidedLabel(const QString& text, int mostLines = 1, QWidget* parent = nullptr);
    ~ElidedLabel() override;

    /// Height in pixels of the lines that the text has at `width` pixels.
    int heightForWidth(int width) const override;
    /// One line of the text, up to some forty letters of it.
    QSize sizeHint() const override;
    /// One line of the text, up to some ten letters of it: what is short is never cut.
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString drawnText() const;
    QStringList linesAt(int width) const;
    QSize hintOf(int letters) const;

    const int mostLines;
};
