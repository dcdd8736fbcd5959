#include "mixer/TrackNameLabel.h"

#include <QFontMetrics>
#include <QPainter>
#include <QTextLayout>
#include <QTextOption>

namespace {

/// How many characters of `text` the first line takes.
qsizetype firstLineLength(const QString& text, const QFont& font, int width)
{
    QTextLayout layout(text, font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    if (!line.isValid()) {
        layout.endLayout();
        return 0;
    }
    line.setLineWidth(width);
    layout.endLayout();
    return line.textLength();
}

} // namespace

QStringList trackNameLines(const QString& name, const QFont& font, int width)
{
    const QString text = name.simplified();
    const qsizetype length = firstLineLength(text, font, width);
    if (length >= text.size())
        return { text };
    const QString rest = text.mid(length).trimmed();
    return { text.left(length).trimmed(), QFontMetrics(font).elidedText(rest, Qt::ElideRight, width) };
}

TrackNameLabel::TrackNameLabel(const QString& name, QWidget* parent) : QLabel(parent)
{
    // A name that looks like markup is still a name.
    setTextFormat(Qt::PlainText);
    setText(name);
    setAlignment(Qt::AlignCenter);
    setWordWrap(true);
}

TrackNameLabel::~TrackNameLabel() = default;

int TrackNameLabel::heightForWidth(int width) const
{
    ensurePolished();
    return static_cast<int>(trackNameLines(text(), font(), width).size()) * fontMetrics().lineSpacing();
}

QSize TrackNameLabel::sizeHint() const
{
    ensurePolished();
    return { fontMetrics().horizontalAdvance(text()), fontMetrics().lineSpacing() };
}

QSize TrackNameLabel::minimumSizeHint() const
{
    ensurePolished();
    return { 0, fontMetrics().lineSpacing() };
}

void TrackNameLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QStringList lines = trackNameLines(text(), font(), width());
    const int spacing = fontMetrics().lineSpacing();
    int top = (height() - static_cast<int>(lines.size()) * spacing) / 2;
    for (const QString& line : lines) {
        painter.drawText(QRect(0, top, width(), spacing), Qt::AlignCenter | Qt::TextSingleLine, line);
        top += spacing;
    }
}
