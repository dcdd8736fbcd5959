#include "mixer/MeterWidget.h"

#include <QImage>
#include <QTest>

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

/// A meter whose state and repaints can be looked at.
class OpenMeter : public MeterWidget {
public:
    using MeterWidget::armed;
    using MeterWidget::clipped;
    using MeterWidget::clipTicks;
    using MeterWidget::peakHold;
    using MeterWidget::peakHoldTicks;
    using MeterWidget::smoothed;
    using MeterWidget::value;
    using MeterWidget::visibleSegments;

    int paints = 0;

protected:
    void paintEvent(QPaintEvent* event) override
    {
        ++paints;
        MeterWidget::paintEvent(event);
    }
};

/// Notes the presses that a child has left to it.
class PressCatcher : public QWidget {
public:
    int presses = 0;

protected:
    void mousePressEvent(QMouseEvent*) override { ++presses; }
};

QImage pictureOf(QWidget& widget)
{
    return widget.grab().toImage();
}

OpenMeter& sized(OpenMeter& meter)
{
    meter.resize(102, 12);
    return meter;
}

/// True if every channel is at most `slack` off.
bool near(const QColor& left, const QColor& right, int slack = 3)
{
    return std::abs(left.red() - right.red()) <= slack && std::abs(left.green() - right.green()) <= slack
        && std::abs(left.blue() - right.blue()) <= slack;
}

/// Paints what is due and tells how often the meter asked for it.
int repaintsAfter(OpenMeter& meter, int reading)
{
    QCoreApplication::processEvents();
    const int before = meter.paints;
    meter.setValue(reading);
    QCoreApplication::processEvents();
    return meter.paints - before;
}

const QColor kBorder(18, 18, 22);
const QColor kGround(24, 24, 30);

} // namespace

TEST(MeterWidget, startsEmptyLiveAndWithItsToolTip)
{
    const OpenMeter meter;
    EXPECT_EQ(meter.minimumHeight(), 12);
    EXPECT_EQ(meter.minimumWidth(), 100);
    EXPECT_EQ(meter.toolTip(), QStringLiteral(u"Clip indicator \u2014 clears after 10s, on new take, or click"));
    EXPECT_TRUE(meter.armed);
    EXPECT_EQ(meter.visibleSegments, 20);
    EXPECT_EQ(meter.value, 0);
}

TEST(MeterWidget, aReadingAboveFullScaleShowsFullScaleAndClips)
{
    OpenMeter meter;
    meter.setValue(2000);
    EXPECT_EQ(meter.value, 1000);
    EXPECT_EQ(meter.smoothed, 1000.0f);
    EXPECT_EQ(meter.peakHold, 1000);
    EXPECT_TRUE(meter.clipped);
    EXPECT_EQ(meter.clipTicks, 200);
}

TEST(MeterWidget, aNegativeReadingIsSilence)
{
    OpenMeter meter;
    meter.setValue(-5);
    EXPECT_EQ(meter.value, 0);
    EXPECT_FALSE(meter.clipped);
}

TEST(MeterWidget, clipsFrom867)
{
    OpenMeter meter;
    meter.setValue(866);
    EXPECT_FALSE(meter.clipped);
    meter.setValue(867);
    EXPECT_TRUE(meter.clipped);
}

TEST(MeterWidget, twoHundredQuietCallsClearTheClip)
{
    OpenMeter meter;
    meter.setValue(1000);
    for (int call = 0; call < 199; ++call)
        meter.setValue(866);
    EXPECT_TRUE(meter.clipped);
    meter.setValue(866);
    EXPECT_FALSE(meter.clipped);
}

TEST(MeterWidget, aLeftClickClearsTheClip)
{
    PressCatcher parent;
    OpenMeter meter;
    meter.setParent(&parent);
    meter.setValue(1000);
    QTest::mouseClick(&meter, Qt::LeftButton);
    EXPECT_FALSE(meter.clipped);
    EXPECT_EQ(meter.clipTicks, 0);
    EXPECT_EQ(parent.presses, 0) << "the press is used up";
    meter.setParent(nullptr);
}

TEST(MeterWidget, aClickWithoutClipIsLeftToTheParent)
{
    PressCatcher parent;
    OpenMeter meter;
    meter.setParent(&parent);
    QTest::mouseClick(&meter, Qt::LeftButton);
    EXPECT_EQ(parent.presses, 1);
    meter.setParent(nullptr);
}

TEST(MeterWidget, aRightClickLeavesTheClip)
{
    PressCatcher parent;
    OpenMeter meter;
    meter.setParent(&parent);
    meter.setValue(1000);
    QTest::mouseClick(&meter, Qt::RightButton);
    EXPECT_TRUE(meter.clipped);
    EXPECT_EQ(parent.presses, 1);
    meter.setParent(nullptr);
}

TEST(MeterWidget, clearClipClearsItToo)
{
    OpenMeter meter;
    meter.setValue(1000);
    meter.clearClip();
    EXPECT_FALSE(meter.clipped);
    EXPECT_EQ(meter.clipTicks, 0);
    EXPECT_EQ(meter.peakHold, 1000) << "nothing else moves";
}

TEST(MeterWidget, afterOnePeakTheLineStandsThirtyCallsThenFalls)
{
    OpenMeter meter;
    meter.setValue(800);
    for (int call = 0; call < 30; ++call)
        meter.setValue(0);
    EXPECT_EQ(meter.peakHold, 800);
    meter.setValue(0);
    EXPECT_EQ(meter.peakHold, 788);
    for (int call = 0; call < 65; ++call)
        meter.setValue(0);
    EXPECT_EQ(meter.peakHold, 8);
    meter.setValue(0);
    EXPECT_EQ(meter.peakHold, 0);
}

TEST(MeterWidget, aFallingLevelSnaps)
{
    OpenMeter meter;
    meter.setValue(101);
    for (int call = 0; call < 5; ++call)
        meter.setValue(100);
    EXPECT_GT(meter.smoothed, 100.5f);
    meter.setValue(100);
    EXPECT_EQ(meter.smoothed, 100.0f);
}

TEST(MeterWidget, segmentsAreClampedAndKept)
{
    OpenMeter meter;
    meter.setVisibleSegments(0);
    EXPECT_EQ(meter.visibleSegments, 1);
    meter.setVisibleSegments(25);
    EXPECT_EQ(meter.visibleSegments, 20);
    meter.setVisibleSegments(7);
    EXPECT_EQ(meter.visibleSegments, 7);
}

TEST(MeterWidget, segmentsDoNotChangeThePicture)
{
    OpenMeter meter;
    sized(meter).setValue(700);
    const QImage before = pictureOf(meter);
    meter.setVisibleSegments(3);
    EXPECT_EQ(pictureOf(meter), before);
}

TEST(MeterWidget, anUnchangedPictureIsNotPaintedAgain)
{
    OpenMeter meter;
    sized(meter).show();
    EXPECT_EQ(repaintsAfter(meter, 500), 1);
    EXPECT_EQ(repaintsAfter(meter, 500), 0);
    EXPECT_EQ(repaintsAfter(meter, 499), 1);
    EXPECT_EQ(repaintsAfter(meter, 499), 0) << "a fall within one thousandth shows nothing new";
    EXPECT_EQ(repaintsAfter(meter, 400), 1);
}

TEST(MeterPicture, emptyIsGroundWithinABorder)
{
    OpenMeter meter;
    const QImage picture = pictureOf(sized(meter));
    EXPECT_EQ(picture.pixelColor(0, 0), kBorder);
    EXPECT_EQ(picture.pixelColor(101, 11), kBorder);
    EXPECT_EQ(picture.pixelColor(1, 1), kGround);
    EXPECT_EQ(picture.pixelColor(100, 10), kGround);
}

TEST(MeterPicture, theBarEndsAtTheLevel)
{
    OpenMeter meter;
    sized(meter).setValue(500);
    const QImage picture = pictureOf(meter);
    EXPECT_NE(picture.pixelColor(49, 6), kGround);
    EXPECT_EQ(picture.pixelColor(60, 6), kGround);
    EXPECT_EQ(picture.pixelColor(0, 6), kBorder);
}

TEST(MeterPicture, coloursStandStillAsTheBarMoves)
{
    OpenMeter meter;
    sized(meter).setValue(200);
    const QColor low = pictureOf(meter).pixelColor(10, 6);
    meter.setValue(860);
    EXPECT_EQ(pictureOf(meter).pixelColor(10, 6), low);
}

TEST(MeterPicture, theBarGoesFromGreenToRed)
{
    OpenMeter meter;
    sized(meter).setValue(1000);
    meter.clearClip();
    // Row 5 lies at 4.5 of 10 in the gloss, where it is all but clear.
    const QImage picture = pictureOf(meter);
    EXPECT_TRUE(near(picture.pixelColor(2, 5), QColor(0, 190, 77), 8)) << picture.pixelColor(2, 5).name().toStdString();
    EXPECT_TRUE(near(picture.pixelColor(41, 5), QColor(82, 218, 0), 8))
        << picture.pixelColor(41, 5).name().toStdString();
    EXPECT_TRUE(near(picture.pixelColor(56, 5), QColor(230, 208, 0), 8))
        << picture.pixelColor(56, 5).name().toStdString();
    EXPECT_TRUE(near(picture.pixelColor(90, 5), QColor(255, 42, 20), 12))
        << picture.pixelColor(90, 5).name().toStdString();
}

TEST(MeterPicture, theGlossIsBrightAboveAndDarkBelow)
{
    OpenMeter meter;
    sized(meter).setValue(860);
    const QImage picture = pictureOf(meter);
    EXPECT_GT(picture.pixelColor(20, 1).blue(), picture.pixelColor(20, 5).blue() + 20);
    EXPECT_LT(picture.pixelColor(20, 10).green(), picture.pixelColor(20, 5).green() - 8);
}

TEST(MeterPicture, thePeakLineStaysWhereTheLevelWas)
{
    OpenMeter meter;
    sized(meter).setValue(500);
    for (int call = 0; call < 20; ++call)
        meter.setValue(0);
    const QImage picture = pictureOf(meter);
    // Two pixels wide, yellow, around column 51.
    EXPECT_TRUE(near(picture.pixelColor(50, 6), QColor(223, 211, 56), 12))
        << picture.pixelColor(50, 6).name().toStdString();
    EXPECT_EQ(picture.pixelColor(48, 6), kGround);
    EXPECT_EQ(picture.pixelColor(54, 6), kGround);
}

TEST(MeterPicture, aClipShowsABlockAndAFrame)
{
    OpenMeter meter;
    sized(meter).setValue(867);
    const QImage picture = pictureOf(meter);
    EXPECT_EQ(picture.pixelColor(98, 6), QColor(255, 30, 30));
    EXPECT_EQ(picture.pixelColor(97, 1), QColor(255, 30, 30));
    EXPECT_EQ(picture.pixelColor(96, 6), kGround);
    EXPECT_EQ(picture.pixelColor(0, 0), QColor(255, 80, 80));
    EXPECT_EQ(picture.pixelColor(101, 11), QColor(255, 80, 80));
    EXPECT_EQ(picture.pixelColor(50, 11), QColor(255, 80, 80));
}

TEST(MeterPicture, unarmedIsGreyWithoutLineAndClipButKeepsThem)
{
    OpenMeter meter;
    sized(meter).setValue(1000);
    meter.setArmed(false);
    const QImage picture = pictureOf(meter);
    EXPECT_TRUE(near(picture.pixelColor(2, 6), QColor(42, 42, 48)));
    EXPECT_TRUE(near(picture.pixelColor(51, 6), QColor(38, 38, 44)));
    EXPECT_TRUE(near(picture.pixelColor(99, 6), QColor(32, 32, 38)));
    EXPECT_EQ(picture.pixelColor(0, 0), kBorder);
    EXPECT_TRUE(meter.clipped);
    EXPECT_EQ(meter.peakHold, 1000);
    meter.setArmed(true);
    EXPECT_EQ(pictureOf(meter).pixelColor(98, 6), QColor(255, 30, 30));
}

TEST(MeterPicture, anyTinySizeCanBePainted)
{
    OpenMeter meter;
    meter.setMinimumSize(0, 0);
    meter.setValue(1000);
    for (const QSize size : { QSize(1, 1), QSize(2, 2), QSize(3, 1), QSize(5, 12) }) {
        meter.resize(size);
        EXPECT_EQ(pictureOf(meter).size(), size);
    }
}
