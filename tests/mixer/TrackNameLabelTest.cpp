#include "mixer/TrackNameLabel.h"

#include <QFontMetrics>
#include <QImage>

#include <gtest/gtest.h>

namespace {

int widthOf(const QString& text)
{
    return QFontMetrics(QFont()).horizontalAdvance(text) + 1;
}

QStringList linesAt(const QString& name, const QString& asWideAs)
{
    return trackNameLines(name, QFont(), widthOf(asWideAs));
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

TEST(TrackNameLines, aNameThatFitsIsOneLine)
{
    EXPECT_EQ(linesAt("Boom", "Boom"), QStringList({ "Boom" }));
    EXPECT_EQ(linesAt("Lav Anna", "Lav Anna"), QStringList({ "Lav Anna" }));
}

TEST(TrackNameLines, aLongerOneBreaksAtABlank)
{
    EXPECT_EQ(linesAt("Car Interior Plant", "Car Interior"), QStringList({ "Car Interior", "Plant" }));
}

TEST(TrackNameLines, aLongWordBreaksWhereItMust)
{
    EXPECT_EQ(linesAt("Wireless_07", "Wireless"), QStringList({ "Wireless", "_07" }));
}

TEST(TrackNameLines, whatDoesNotFitIntoTwoIsCutWithDots)
{
    const QStringList lines = linesAt("Car Interior Plant Backup Transmitter", "Car Interior");
    ASSERT_EQ(lines.size(), 2);
    EXPECT_EQ(lines[0], "Car Interior");
    EXPECT_TRUE(lines[1].startsWith("Plant"));
    EXPECT_TRUE(lines[1].endsWith(u'\u2026'));
    EXPECT_LE(widthOf(lines[1]), widthOf("Car Interior"));
}

TEST(TrackNameLines, whiteSpaceOfAnyKindIsABlank)
{
    EXPECT_EQ(linesAt("Lav\n\t Anna", "Lav Anna"), QStringList({ "Lav Anna" }));
}

TEST(TrackNameLines, nothingIsOneEmptyLineAndNoWidthIsHarmless)
{
    EXPECT_EQ(linesAt("", "Boom"), QStringList({ "" }));
    EXPECT_LE(trackNameLines("Boom", QFont(), 0).size(), 2);
    EXPECT_LE(trackNameLines("Boom", QFont(), -5).size(), 2);
}

TEST(TrackNameLabel, keepsTheWholeNameAndIsAtMostTwoLinesHigh)
{
    const QString name = QStringLiteral("Wireless Lavalier ").repeated(50);
    const TrackNameLabel label(name);
    const int spacing = label.fontMetrics().lineSpacing();
    EXPECT_EQ(label.text(), name);
    EXPECT_EQ(label.heightForWidth(74), 2 * spacing);
    EXPECT_EQ(TrackNameLabel("Boom").heightForWidth(widthOf("Boom")), spacing);
}

TEST(TrackNameLabel, drawsItsLinesInTheColourOfItsStyle)
{
    TrackNameLabel label("Anna Backup");
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

TEST(TrackNameLabel, markupIsAName)
{
    EXPECT_EQ(TrackNameLabel("<b>Boom").textFormat(), Qt::PlainText);
    TrackNameLabel label("&Boom");
    EXPECT_EQ(trackNameLines(label.text(), label.font(), 500), QStringList({ "&Boom" }));
}
