#include "app/look/ElidedLabel.h"

#include "app/look/PlainToolTip.h"

#include <QCoreApplication>
#include <QFontMetrics>
#include <QHelpEvent>
#include <QImage>
#include <QTextDocument>
#include <QToolTip>

#include <gtest/gtest.h>

namespace {

int widthOf(const QString& text)
{
    return QFontMetrics(QFont()).horizontalAdvance(text) + 1;
}

QStringList linesAt(const QString& name, const QString& asWideAs)
{
    return elidedLines(name, QFont(), widthOf(asWideAs), 2);
}

/// Rows in which something is drawn.
int drawnRows(QWidget& widget)
{
    const QImage picture = widget.grab().toImage();
    int rows = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.pixel(x, y) != picture.pixel(0, 0)) {
                ++rows;
                break;
            }
        }
    }
    return rows;
}

} // namespace

TEST(ElidedLines, aNameThatFitsIsOneLine)
{
    EXPECT_EQ(linesAt("Boom", "Boom"), QStringList({ "Boom" }));
    EXPECT_EQ(linesAt("Lav Anna", "Lav Anna"), QStringList({ "Lav Anna" }));
}

TEST(ElidedLines, aLongerOneBreaksAtABlank)
{
    EXPECT_EQ(linesAt("Car Interior Plant", "Car Interior"), QStringList({ "Car Interior", "Plant" }));
}

TEST(ElidedLines, aLongWordBreaksWhereItMust)
{
    EXPECT_EQ(linesAt("Wireless_07", "Wireless"), QStringList({ "Wireless", "_07" }));
}

TEST(ElidedLines, whatDoesNotFitIntoTwoIsCutWithDots)
{
    const QStringList lines = linesAt("Car Interior Plant Backup Transmitter", "Car Interior");
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0], "Car Interior");
    EXPECT_TRUE(lines[1].startsWith("Plant"));
    EXPECT_TRUE(lines[1].endsWith(u'\u2026'));
    EXPECT_LE(widthOf(lines[1]), widthOf("Car Interior"));
}

TEST(ElidedLines, whiteSpaceWithinALineIsOneBlank)
{
    EXPECT_EQ(linesAt("Lav \t\r Anna", "Lav Anna"), QStringList({ "Lav Anna" }));
}

TEST(ElidedLines, aLineFeedBreaksAndTooManyEndInDots)
{
    EXPECT_EQ(linesAt("Boom\nLav", "Wireless"), QStringList({ "Boom", "Lav" }));
    const QStringList cut = elidedLines("one\ntwo\nthree", QFont(), 500, 2);
    ASSERT_EQ(cut.size(), 2);
    EXPECT_EQ(cut[0], "one");
    EXPECT_TRUE(cut[1].startsWith("two"));
}

TEST(ElidedLines, nothingIsOneEmptyLineAndNoWidthIsHarmless)
{
    EXPECT_EQ(linesAt("", "Boom"), QStringList({ "" }));
    EXPECT_LE(elidedLines("Boom", QFont(), 0, 2).size(), 2);
    EXPECT_LE(elidedLines("Boom", QFont(), -5, 2).size(), 2);
}

TEST(ElidedLabel, keepsTheWholeNameAndIsAtMostTwoLinesHigh)
{
    const QString name = QStringLiteral("Wireless Lavalier ").repeated(50);
    const ElidedLabel label(name, 2);
    const int spacing = label.fontMetrics().lineSpacing();
    EXPECT_EQ(label.text(), name);
    EXPECT_EQ(label.heightForWidth(74), 2 * spacing);
    EXPECT_EQ(ElidedLabel("Boom", 2).heightForWidth(widthOf("Boom")), spacing);
}

TEST(ElidedLabel, drawsItsLinesInTheColourOfItsStyle)
{
    ElidedLabel label("Anna Backup", 2);
    label.setStyleSheet("color: #ff0000; background: #000000;");
    const int spacing = label.fontMetrics().lineSpacing();
    label.resize(widthOf("Backup"), 2 * spacing);
    EXPECT_GT(drawnRows(label), spacing) << "both lines";
    const QImage picture = label.grab().toImage();
    int red = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            red += qRed(picture.pixel(x, y)) > 200 && qGreen(picture.pixel(x, y)) < 60;
    }
    EXPECT_GT(red, 10);
}

TEST(ElidedLabel, markupIsAName)
{
    EXPECT_EQ(ElidedLabel("<b>Boom").textFormat(), Qt::PlainText);
    ElidedLabel label("&Boom");
    EXPECT_EQ(elidedLines(label.text(), label.font(), 500, 2), QStringList({ "&Boom" }));
}

namespace {

/// Names as no sane recorder writes them: endless, on two lines, from right to left, and all of it at once.
const QStringList kHardNames{ QString(10000, u'W'), QStringLiteral("first\nsecond"),
    QString::fromUtf8("\u0634\u0631\u064a\u0637").repeated(2000),
    QStringLiteral("<img src=x>").repeated(900) + "\n.wav" };

/// What the label says while the pointer rests on it; empty for nothing.
QString toolTipOver(ElidedLabel& label)
{
    QToolTip::hideText();
    QHelpEvent help(QEvent::ToolTip, QPoint(1, 1), label.mapToGlobal(QPoint(1, 1)));
    QCoreApplication::sendEvent(&label, &help);
    return QToolTip::isVisible() ? QToolTip::text() : QString();
}

} // namespace

TEST(ElidedLabel, noTextAsksForMoreRoomThanFortyLetters)
{
    for (const QString& name : kHardNames) {
        const ElidedLabel label(name);
        EXPECT_EQ(label.text(), name);
        EXPECT_LE(label.sizeHint().width(), 40 * label.fontMetrics().averageCharWidth());
        EXPECT_LE(label.minimumSizeHint().width(), 10 * label.fontMetrics().averageCharWidth());
        EXPECT_EQ(label.sizeHint().height(), label.fontMetrics().lineSpacing());
    }
}

TEST(ElidedLabel, aShortTextIsNeverCut)
{
    const ElidedLabel label("48000 Hz");
    EXPECT_EQ(elidedLines(label.text(), label.font(), label.minimumSizeHint().width(), 1), QStringList({ "48000 Hz" }));
}

TEST(ElidedLabel, aLineFeedInASingleLineIsABlank)
{
    ElidedLabel label("a\nb");
    ElidedLabel same("a b");
    label.resize(100, 40);
    same.resize(100, 40);
    EXPECT_EQ(label.grab().toImage(), same.grab().toImage());
}

TEST(ElidedLabel, aTextThatIsCutEndsInDotsWithinTheLabel)
{
    for (const QString& name : kHardNames.mid(0, 1) + kHardNames.mid(2, 1)) {
        const QStringList lines = elidedLines(name, QFont(), 200, 1);
        ASSERT_EQ(lines.size(), 1);
        EXPECT_TRUE(lines[0].contains(u'\u2026'));
        EXPECT_LE(QFontMetrics(QFont()).horizontalAdvance(lines[0]), 200);
    }
}

TEST(ElidedLabel, theWholeTextIsTheToolTipWhereItIsCut)
{
    for (const QString& name : kHardNames) {
        ElidedLabel label(name);
        label.resize(60, 20);
        label.show();
        const QString shown = toolTipOver(label);
        EXPECT_EQ(shown, plainToolTip(name)) << name.left(20).toStdString();
    }
    ElidedLabel shortOne("Boom");
    shortOne.resize(300, 20);
    shortOne.show();
    EXPECT_EQ(toolTipOver(shortOne), QString());
}

TEST(ElidedLabel, aToolTipOfItsOwnStays)
{
    ElidedLabel label(QString(500, u'W'));
    label.setToolTip("another");
    label.resize(60, 20);
    label.show();
    EXPECT_EQ(toolTipOver(label), "another");
    EXPECT_EQ(label.toolTip(), "another");
}
