#include "app/look/ElidedLabel.h"

#include "app/look/PlainToolTip.h"

#include <QEvent>
#include <QFontMetrics>
#include <QPainter>
#include <QTextLayout>
#include <QTextOption>

#include <algorithm>

namespace {

constexpr int kWishedLetters = 40;
constexpr int kLeastLetters = 10;

// More than any label of ours can show. A text of megabytes would be laid out anew for each painting.
constexpr qsizetype kMostLetters = 4096;

void layOut(QTextLayout& layout, const QString& text, int width, int lines)
{
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    option.setTextDirection(text.isRightToLeft() ? Qt::RightToLeft : Qt::LeftToRight);
    layout.setTextOption(option);
    layout.beginLayout();
    for (int i = 0; i < lines; ++i) {
        QTextLine line = layout.createLine();
        if (!line.isValid())
            break;
        line.setLineWidth(width);
    }
    layout.endLayout();
}

} // namespace

QStringList elidedLines(const QString& text, const QFont& font, int width, int mostLines)
{
    QStringList paragraphs = text.left(kMostLetters).split(QLatin1Char('\n'));
    for (QString& paragraph : paragraphs)
        paragraph = paragraph.simplified();
    const QString drawn = paragraphs.join(QChar::LineSeparator);
    QTextLayout layout(drawn, font);
    layOut(layout, drawn, width, mostLines);

    QStringList lines;
    for (int i = 0; i < layout.lineCount(); ++i)
        lines.append(drawn.mid(layout.lineAt(i).textStart(), layout.lineAt(i).textLength()).trimmed());
    if (lines.isEmpty())
        return { QString() };
    const QTextLine last = layout.lineAt(layout.lineCount() - 1);
    if (last.textStart() + last.textLength() < drawn.size() || text.size() > kMostLetters) {
        const QString rest = drawn.mid(last.textStart()).simplified();
        lines.last() = QFontMetrics(font).elidedText(rest, Qt::ElideRight, width);
    }
    return lines;
}

ElidedLabel::ElidedLabel(const QString& text, int lines, QWidget* parent)
    : QLabel(parent), mostLines(std::max(lines, 1))
{
    setTextFormat(Qt::PlainText);
    setText(text);
    setWordWrap(mostLines > 1);
}

ElidedLabel::~ElidedLabel() = default;

QString ElidedLabel::drawnText() const
{
    const QString start = text().left(kMostLetters);
    return mostLines > 1 ? start : start.simplified();
}

QStringList ElidedLabel::linesAt(int width) const
{
    const int room = std::max(width - 2 * margin(), 0);
    return elidedLines(drawnText(), font(), room, mostLines);
}

int ElidedLabel::heightForWidth(int width) const
{
    ensurePolished();
    return static_cast<int>(linesAt(width).size()) * fontMetrics().lineSpacing() + 2 * margin();
}

QSize ElidedLabel::hintOf(int letters) const
{
    ensurePolished();
    const QFontMetrics metrics = fontMetrics();
    // One more pixel: what is as wide as its room to a fraction of a pixel would be cut.
    const int width = std::min(metrics.horizontalAdvance(drawnText()) + 1, letters * metrics.averageCharWidth());
    return QSize(width, metrics.lineSpacing()).grownBy({ margin(), margin(), margin(), margin() });
}

QSize ElidedLabel::sizeHint() const
{
    return hintOf(kWishedLetters).expandedTo(minimumSize());
}

QSize ElidedLabel::minimumSizeHint() const
{
    return hintOf(kLeastLetters);
}

bool ElidedLabel::event(QEvent* event)
{
    const bool whole
        = event->type() == QEvent::ToolTip && toolTip().isEmpty() && text() != linesAt(width()).join(QChar());
    if (!whole)
        return QLabel::event(event);
    setToolTip(plainToolTip(text()));
    const bool handled = QLabel::event(event);
    setToolTip(QString());
    return handled;
}

void ElidedLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QStringList lines = linesAt(width());
    const int spacing = fontMetrics().lineSpacing();
    const QRect room = contentsRect().adjusted(margin(), margin(), -margin(), -margin());
    int top = room.top() + std::max(room.height() - static_cast<int>(lines.size()) * spacing, 0) / 2;
    const int across = static_cast<int>(alignment() & Qt::AlignHorizontal_Mask);
    for (const QString& line : lines) {
        painter.drawText(
            QRect(room.left(), top, room.width(), spacing), across | Qt::AlignVCenter | Qt::TextSingleLine, line);
        top += spacing;
    }
}
