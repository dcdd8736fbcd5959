#include "mixer/WaveformWidget.h"

#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <QImage>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

namespace {

class OpenWaveform : public WaveformWidget {
public:
    using WaveformWidget::duration;
    using WaveformWidget::peaks;
    using WaveformWidget::playbackPosition;
    using WaveformWidget::sampleRate;
    using WaveformWidget::totalFrames;

    int paints = 0;

protected:
    void paintEvent(QPaintEvent* event) override
    {
        ++paints;
        WaveformWidget::paintEvent(event);
    }
};

const QColor kGround(26, 26, 26);
const QColor kGrey(60, 60, 60);
const QColor kPlayhead(0, 255, 100);

std::string samples16(const std::vector<int>& values)
{
    std::string bytes;
    for (const int value : values)
        bytes += le16(static_cast<uint16_t>(value));
    return bytes;
}

class WaveformFile : public testing::Test {
protected:
    std::string write(const WavBuilder& builder)
    {
        const std::string path = folder.file("take.wav");
        builder.write(path);
        return path;
    }

    std::string writeMono(const std::vector<int>& values, uint32_t rate = 48000)
    {
        return write(WavBuilder().fmt(rate, 1, 16).data(samples16(values)));
    }

    void showMono(const std::vector<int>& values)
    {
        ASSERT_TRUE(waveform.loadFile(writeMono(values)));
        waveform.resize(200, 100);
    }

    QImage picture() { return waveform.grab().toImage(); }

    TempFolder folder;
    OpenWaveform waveform;
};

} // namespace

TEST_F(WaveformFile, theWidgetHasItsSizesAndCursor)
{
    EXPECT_EQ(waveform.minimumHeight(), 80);
    EXPECT_EQ(waveform.maximumHeight(), 120);
    EXPECT_EQ(waveform.sizePolicy().horizontalPolicy(), QSizePolicy::Expanding);
    EXPECT_EQ(waveform.sizePolicy().verticalPolicy(), QSizePolicy::Fixed);
    EXPECT_EQ(waveform.cursor().shape(), Qt::PointingHandCursor);
    EXPECT_EQ(waveform.sampleRate, 48000);
}

TEST_F(WaveformFile, takesRateLengthAndDurationFromTheFile)
{
    ASSERT_TRUE(waveform.loadFile(writeMono(std::vector<int>(22050, 100), 44100)));
    EXPECT_EQ(waveform.sampleRate, 44100);
    EXPECT_EQ(waveform.totalFrames, 22050);
    EXPECT_DOUBLE_EQ(waveform.duration, 0.5);
}

TEST_F(WaveformFile, of500FramesHas500Bars)
{
    ASSERT_TRUE(waveform.loadFile(writeMono(std::vector<int>(500, 100))));
    EXPECT_EQ(waveform.peaks.size(), 500u);
}

TEST_F(WaveformFile, of1999FramesHasAThousandBarsOfOneSample)
{
    std::vector<int> values(1999, 8192);
    values[1500] = -32768;
    ASSERT_TRUE(waveform.loadFile(writeMono(values)));
    ASSERT_EQ(waveform.peaks.size(), 1000u);
    EXPECT_EQ(waveform.peaks[999], WaveformPeak(0.0f, 1.0f)) << "the sample left over would have set the scale";
}

TEST_F(WaveformFile, onlyTheFirstChannelIsShown)
{
    // Two channels: a quarter in the first, full scale in the second.
    std::string frames;
    for (int i = 0; i < 20000; ++i)
        frames += le16(static_cast<uint16_t>(i == 19999 ? 8192 : 4096)) + le16(0x8000);
    ASSERT_TRUE(waveform.loadFile(write(WavBuilder().fmt(48000, 2, 16).data(frames))));
    ASSERT_EQ(waveform.peaks.size(), 1000u);
    EXPECT_EQ(waveform.peaks[0], WaveformPeak(0.0f, 0.5f));
    EXPECT_EQ(waveform.peaks[999], WaveformPeak(0.0f, 1.0f)) << "read to the very end";
}

TEST_F(WaveformFile, silenceStaysUnscaled)
{
    ASSERT_TRUE(waveform.loadFile(writeMono(std::vector<int>(3000, 0))));
    for (const WaveformPeak& peak : waveform.peaks)
        EXPECT_EQ(peak, WaveformPeak(0.0f, 0.0f));
}

TEST_F(WaveformFile, aFileShorterThanItsHeaderClaimsShowsWhatIsThere)
{
    const std::string path = write(
        WavBuilder().fmt(48000, 1, 16).data(samples16(std::vector<int>(700, 100))).claimSize("data", 0xFFFFFFF0));
    ASSERT_TRUE(waveform.loadFile(path));
    EXPECT_EQ(waveform.peaks.size(), 700u);
    EXPECT_EQ(waveform.totalFrames, 0x7FFFFFF8);
}

TEST_F(WaveformFile, anRf64FileOfClaimedExabytesTakesNoMoreMemoryThanItHolds)
{
    const std::string path = write(WavBuilder::rf64()
                                       .ds64(UINT64_MAX)
                                       .fmt(1, 1, 16)
                                       .data(samples16(std::vector<int>(700, 100)))
                                       .claimSize("data", 0xFFFFFFFF));
    ASSERT_TRUE(waveform.loadFile(path));
    EXPECT_EQ(waveform.peaks.size(), 700u);
}

TEST_F(WaveformFile, aFileWithoutFramesIsRefused)
{
    EXPECT_FALSE(waveform.loadFile(writeMono({})));
    EXPECT_TRUE(waveform.peaks.empty());
}

TEST_F(WaveformFile, aFileThatIsNoWavIsRefusedAndTheOldOneIsGone)
{
    ASSERT_TRUE(waveform.loadFile(writeMono(std::vector<int>(500, 100))));
    waveform.setPlaybackPosition(0.5);
    writeBytes(folder.file("text.wav"), "no sound");
    EXPECT_FALSE(waveform.loadFile(folder.file("text.wav")));
    EXPECT_TRUE(waveform.peaks.empty());
    EXPECT_EQ(waveform.duration, 0.0);
    EXPECT_EQ(waveform.totalFrames, 0);
    EXPECT_EQ(waveform.playbackPosition, 0.0);
    EXPECT_FALSE(waveform.loadFile(folder.file("missing.wav")));
}

TEST_F(WaveformFile, aPathWithOtherLettersLoads)
{
    const std::string path = folder.file("Szene \xC3\xBC.wav");
    WavBuilder().fmt(48000, 1, 16).data(samples16({ 1, 2, 3 })).write(path);
    EXPECT_TRUE(waveform.loadFile(path));
}

TEST_F(WaveformFile, clearShowsNothing)
{
    showMono(std::vector<int>(500, 100));
    waveform.setPlaybackPosition(0.5);
    waveform.clear();
    EXPECT_TRUE(waveform.peaks.empty());
    EXPECT_EQ(waveform.playbackPosition, 0.0);
    EXPECT_EQ(waveform.duration, 0.0);
    EXPECT_EQ(waveform.totalFrames, 0);
}

TEST_F(WaveformFile, theNumberBesideTheSamplesHasNoEffect)
{
    waveform.generatePeaks(std::vector<float>(500, 0.5f), 3);
    EXPECT_EQ(waveform.peaks.size(), 500u);
}

TEST_F(WaveformFile, thePlayheadIsClamped)
{
    waveform.setPlaybackPosition(2.0);
    EXPECT_EQ(waveform.playbackPosition, 1.0);
    waveform.setPlaybackPosition(-1.0);
    EXPECT_EQ(waveform.playbackPosition, 0.0);
}

TEST_F(WaveformFile, smallMovesOfThePlayheadAreNotStored)
{
    waveform.setPlaybackPosition(0.001);
    EXPECT_EQ(waveform.playbackPosition, 0.0);
    waveform.setPlaybackPosition(0.0011);
    EXPECT_EQ(waveform.playbackPosition, 0.0011);
    waveform.setPlaybackPosition(-1.0);
    EXPECT_EQ(waveform.playbackPosition, 0.0);
    waveform.setPlaybackPosition(0.0009);
    waveform.setPlaybackPosition(-1.0);
    EXPECT_EQ(waveform.playbackPosition, 0.0);
}

TEST_F(WaveformFile, aPositionThatIsNotANumberIsNotStored)
{
    waveform.setPlaybackPosition(0.5);
    waveform.setPlaybackPosition(std::nan(""));
    EXPECT_EQ(waveform.playbackPosition, 0.5);
}

TEST_F(WaveformFile, aSmallMoveIsNotPainted)
{
    showMono(std::vector<int>(500, 100));
    waveform.show();
    QCoreApplication::processEvents();
    const int before = waveform.paints;
    waveform.setPlaybackPosition(0.0005);
    QCoreApplication::processEvents();
    EXPECT_EQ(waveform.paints, before);
    waveform.setPlaybackPosition(0.5);
    QCoreApplication::processEvents();
    EXPECT_EQ(waveform.paints, before + 1);
}

TEST_F(WaveformFile, aLeftClickAsksForASeek)
{
    showMono(std::vector<int>(500, 100));
    const QSignalSpy seeks(&waveform, &WaveformWidget::seekRequested);
    QTest::mousePress(&waveform, Qt::LeftButton, {}, QPoint(50, 10));
    ASSERT_EQ(seeks.size(), 1);
    EXPECT_DOUBLE_EQ(seeks.at(0).at(0).toDouble(), 0.25);
}

TEST_F(WaveformFile, draggingIsNotFollowed)
{
    showMono(std::vector<int>(500, 100));
    const QSignalSpy seeks(&waveform, &WaveformWidget::seekRequested);
    QTest::mousePress(&waveform, Qt::LeftButton, {}, QPoint(50, 10));
    QTest::mouseMove(&waveform, QPoint(100, 10));
    QTest::mouseRelease(&waveform, Qt::LeftButton, {}, QPoint(100, 10));
    EXPECT_EQ(seeks.size(), 1);
}

TEST_F(WaveformFile, aRightClickAsksForNothing)
{
    showMono(std::vector<int>(500, 100));
    const QSignalSpy seeks(&waveform, &WaveformWidget::seekRequested);
    QTest::mouseClick(&waveform, Qt::RightButton);
    EXPECT_EQ(seeks.size(), 0);
}

TEST_F(WaveformFile, aClickOnAnEmptyWidgetAsksForNothing)
{
    waveform.resize(200, 100);
    const QSignalSpy seeks(&waveform, &WaveformWidget::seekRequested);
    QTest::mouseClick(&waveform, Qt::LeftButton);
    EXPECT_EQ(seeks.size(), 0);
}

TEST_F(WaveformFile, aClickOnAFileWithoutDurationAsksForNothing)
{
    ASSERT_TRUE(waveform.loadFile(writeMono(std::vector<int>(500, 100), 0)));
    ASSERT_FALSE(waveform.peaks.empty());
    const QSignalSpy seeks(&waveform, &WaveformWidget::seekRequested);
    QTest::mouseClick(&waveform, Qt::LeftButton);
    EXPECT_EQ(seeks.size(), 0);
}

TEST_F(WaveformFile, emptyShowsATextInTheMiddle)
{
    waveform.resize(300, 100);
    const QImage drawn = picture();
    EXPECT_EQ(drawn.pixelColor(0, 0), kGround);
    int lit = 0;
    for (int x = 0; x < 300; ++x) {
        for (int y = 40; y < 60; ++y)
            lit += drawn.pixelColor(x, y) != kGround;
    }
    EXPECT_GT(lit, 100);
    for (int x = 0; x < 300; ++x)
        EXPECT_EQ(drawn.pixelColor(x, 20), kGround);
}

TEST_F(WaveformFile, silenceIsALineOfTwoPixelsUnderTheCentreLine)
{
    showMono(std::vector<int>(100, 0));
    const QImage drawn = picture();
    // Bars cover rows 49 and 50; the centre line lies over row 50 or beside it.
    EXPECT_NE(drawn.pixelColor(100, 49), kGround);
    EXPECT_EQ(drawn.pixelColor(100, 46), kGround);
    EXPECT_EQ(drawn.pixelColor(100, 53), kGround);
}

TEST_F(WaveformFile, aSingleSidedSignalStandsOnTheZeroLine)
{
    showMono(std::vector<int>(10, 16000));
    const QImage drawn = picture();
    EXPECT_NE(drawn.pixelColor(10, 6), kGround);
    EXPECT_EQ(drawn.pixelColor(10, 3), kGround);
    EXPECT_EQ(drawn.pixelColor(10, 54), kGround);
}

TEST_F(WaveformFile, barsAreColouredByTheirHeightInTheWidget)
{
    std::vector<int> values{ 32767, -32768 };
    showMono(values);
    const QImage drawn = picture();
    const QColor top = drawn.pixelColor(20, 8);
    const QColor middle = drawn.pixelColor(20, 46);
    EXPECT_LT(std::abs(top.green() - 186), 4) << top.name().toStdString();
    EXPECT_LT(std::abs(top.blue() - 214), 4);
    EXPECT_LT(std::abs(middle.green() - 217), 4) << middle.name().toStdString();
    EXPECT_EQ(drawn.pixelColor(150, 30), kGround) << "the second bar hangs below the line";
    EXPECT_NE(drawn.pixelColor(150, 80), kGround);
}

TEST_F(WaveformFile, thereIsNoPlayheadAtTheStart)
{
    showMono(std::vector<int>(100, 0));
    const QImage drawn = picture();
    for (int x = 0; x < 200; ++x)
        EXPECT_NE(drawn.pixelColor(x, 20), kPlayhead) << x;
}

TEST_F(WaveformFile, thePlayheadStandsAtItsPartOfTheWidth)
{
    showMono(std::vector<int>(100, 0));
    waveform.setPlaybackPosition(0.5);
    const QImage drawn = picture();
    EXPECT_EQ(drawn.pixelColor(100, 20), kPlayhead);
    EXPECT_EQ(drawn.pixelColor(99, 20), kPlayhead);
    EXPECT_EQ(drawn.pixelColor(97, 20), kGround);
    EXPECT_EQ(drawn.pixelColor(102, 20), kGround);
}

TEST_F(WaveformFile, aFrameRunsAround)
{
    showMono(std::vector<int>(100, 0));
    const QImage drawn = picture();
    // Drawn with antialiasing on whole coordinates, so that it spreads over two pixels.
    EXPECT_GT(drawn.pixelColor(100, 0).red(), kGround.red());
    EXPECT_GT(drawn.pixelColor(0, 20).red(), kGround.red());
    EXPECT_GT(drawn.pixelColor(199, 20).red(), kGround.red());
    EXPECT_GT(drawn.pixelColor(100, 99).red(), kGround.red());
    EXPECT_LE(drawn.pixelColor(100, 0).red(), kGrey.red());
}

TEST_F(WaveformFile, aResizePaintsTheSameBarsAtTheNewPitch)
{
    const std::string path = writeMono({ 32767, 0 });
    ASSERT_TRUE(waveform.loadFile(path));
    waveform.resize(200, 100);
    EXPECT_NE(picture().pixelColor(80, 20), kGround);
    const auto before = waveform.peaks;
    std::remove(path.c_str());
    waveform.resize(400, 100);
    EXPECT_EQ(waveform.peaks, before);
    EXPECT_NE(picture().pixelColor(180, 20), kGround);
    EXPECT_EQ(picture().pixelColor(220, 20), kGround);
}

TEST_F(WaveformFile, newBarsOfTheSameSizeArePaintedAnew)
{
    showMono(std::vector<int>(100, 16000));
    ASSERT_NE(picture().pixelColor(100, 20), kGround);
    waveform.generatePeaks(std::vector<float>(100, 0.0f), 0);
    EXPECT_EQ(picture().pixelColor(100, 20), kGround);
    showMono(std::vector<int>(100, 16000));
    EXPECT_NE(picture().pixelColor(100, 20), kGround);
}

TEST_F(WaveformFile, thePlayheadLeavesNoTrace)
{
    showMono(std::vector<int>(100, 0));
    const QImage before = picture();
    waveform.setPlaybackPosition(0.5);
    (void)picture();
    waveform.setPlaybackPosition(0.0);
    EXPECT_EQ(picture(), before);
}

TEST_F(WaveformFile, infiniteFloatsAreFlatAndHarmless)
{
    std::string frames;
    for (int i = 0; i < 100; ++i)
        frames += le32(i % 2 ? 0x7F800000 : 0x3F000000);
    ASSERT_TRUE(waveform.loadFile(write(WavBuilder().fmt(48000, 1, 32, 3).data(frames))));
    waveform.resize(200, 100);
    EXPECT_EQ(picture().pixelColor(100, 20), kGround);
}
