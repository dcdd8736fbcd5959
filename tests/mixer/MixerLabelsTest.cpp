#include "tests/mixer/MixerDialogFixture.h"

TEST_F(MixerDialog, tellsFileFormatAndLength)
{
    openQuarters(atOneOClock());
    EXPECT_EQ(text("titleLabel"), "take.wav");
    EXPECT_EQ(text("infoLabel"), QStringLiteral(u"1 ch \u00b7 48000 Hz \u00b7 16-bit PCM \u00b7 00:08 \u00b7 25"));
    EXPECT_EQ(text("timeLabel"), "00:00 / 00:08");
    EXPECT_EQ(text("frameRateBadge"), "25");
}

TEST_F(MixerDialog, tellsFloatAndLeavesOutAnUnknownRate)
{
    open(write("float.wav", WavBuilder().fmt(44100, 2, 32, 3).data(std::string(8 * 44100, '\0'))));
    EXPECT_EQ(text("infoLabel"), QStringLiteral(u"2 ch \u00b7 44100 Hz \u00b7 32-bit IEEE float \u00b7 00:01"));
}

TEST_F(MixerDialog, aFileNameThatLooksLikeMarkupIsShownAsItIs)
{
    open(write("<b>bold<i>.wav", WavBuilder().fmt(48000, 1, 16).data(steady({ 0.1f }, 100))),
        { QStringLiteral("<h1>Boom") });
    EXPECT_EQ(text("titleLabel"), "<b>bold<i>.wav");
    EXPECT_EQ(find<QLabel>("titleLabel")->textFormat(), Qt::PlainText);
    EXPECT_EQ(text("nameLabel0"), "<h1>Boom");
    EXPECT_EQ(find<QLabel>("nameLabel0")->textFormat(), Qt::PlainText);
}

TEST_F(MixerDialog, aNameThatLooksLikeMarkupIsShownAsItIsInItsToolTip)
{
    const QString name = QStringLiteral("<img src='/dev/zero'> & <b>Boom");
    openSteady({ 0.1f, 0.1f }, 100, { name, QStringLiteral("Tom & Jerry") });
    // A tool tip takes what looks like markup for markup, and reads the files that it names.
    QTextDocument shown;
    shown.setHtml(find("nameLabel0")->toolTip());
    EXPECT_EQ(shown.toPlainText(), name);
    EXPECT_EQ(find("nameLabel1")->toolTip(), "Tom & Jerry");
}

TEST_F(MixerDialog, withoutTimecodeShowsDashes)
{
    openQuarters();
    EXPECT_EQ(text("timecodeLabel"), "--:--:--:--");
    EXPECT_EQ(text("frameRateBadge"), "--");
    clickWaveform(0.5);
    tick();
    EXPECT_EQ(text("timecodeLabel"), "--:--:--:--");
}

TEST_F(MixerDialog, aNegativeFrameRateIsNoTimecode)
{
    BwfMetadata metadata = atOneOClock();
    metadata.frameRate = -25.0;
    openQuarters(metadata);
    EXPECT_EQ(text("timecodeLabel"), "--:--:--:--");
    EXPECT_EQ(text("frameRateBadge"), "--");
}

TEST_F(MixerDialog, startsAtTheFilesTimecode)
{
    openQuarters(atOneOClock());
    EXPECT_EQ(text("timecodeLabel"), "01:00:00:00");
}

TEST_F(MixerDialog, theTimestampRateCountsBeforeTheSampleRate)
{
    BwfMetadata metadata = atOneOClock();
    metadata.timestampSampleRate = 96000;
    openQuarters(metadata);
    EXPECT_EQ(text("timecodeLabel"), "00:30:00:00");
}

TEST_F(MixerDialog, dropFrameShowsInReadOutAndBadge)
{
    BwfMetadata metadata = atOneOClock();
    metadata.frameRate = 29.97;
    metadata.dropFrame = true;
    openQuarters(metadata);
    EXPECT_EQ(text("frameRateBadge"), "29.97 DF");
    EXPECT_TRUE(text("timecodeLabel").contains(QLatin1Char(';')));
}

TEST_F(MixerDialog, channelsBeyondTheNamesAreNumbered)
{
    openSteady({ 0.1f, 0.1f, 0.1f, 0.1f, 0.1f }, 100,
        { QStringLiteral(" Boom "), QStringLiteral("Lav"), QStringLiteral("  \t"), QString() });
    EXPECT_EQ(text("nameLabel0"), "Boom");
    EXPECT_EQ(text("nameLabel1"), "Lav");
    EXPECT_EQ(text("nameLabel2"), "Track 3") << "blanks are no name";
    EXPECT_EQ(text("nameLabel3"), "Track 4");
    EXPECT_EQ(text("nameLabel4"), "Track 5");
    EXPECT_EQ(find("nameLabel0")->toolTip(), "Boom");
}

TEST_F(MixerDialog, namesOfAnyLengthLeaveTheStripsInLine)
{
    const QString endless = QStringLiteral("Wireless_Lavalier_07 ").repeated(20);
    openSteady({ 0.1f, 0.1f, 0.1f }, 100, { QStringLiteral("Boom"), QStringLiteral("Anna Lav Backup"), endless });
    QCoreApplication::processEvents();
    EXPECT_EQ(text("nameLabel2"), endless.trimmed());
    for (const char* part : { "meter", "fader", "muteButton" }) {
        const int y = find(QLatin1String(part) + QLatin1String("0"))->y();
        EXPECT_EQ(find(QLatin1String(part) + QLatin1String("1"))->y(), y) << part;
        EXPECT_EQ(find(QLatin1String(part) + QLatin1String("2"))->y(), y) << part;
    }
    EXPECT_LE(find("nameLabel2")->height(), 2 * find("nameLabel2")->fontMetrics().lineSpacing() + 1);
}

TEST_F(MixerDialog, namesBeyondTheChannelsAreNotShown)
{
    openSteady({ 0.1f }, 100, { QStringLiteral("Boom"), QStringLiteral("Lav") });
    EXPECT_EQ(dialog->findChild<QWidget*>("strip1"), nullptr);
    EXPECT_EQ(text("nameLabel0"), "Boom");
}

TEST_F(MixerDialog, withoutNamesTracksAreNumbered)
{
    openSteady({ 0.1f, 0.1f }, 100);
    EXPECT_EQ(text("nameLabel0"), "Track 1");
    EXPECT_EQ(text("nameLabel1"), "Track 2");
}

TEST_F(MixerDialog, sixtyFourStripsStandSideBySideAndScroll)
{
    openSteady(std::vector<float>(64, 0.01f), 4800);
    EXPECT_NE(dialog->findChild<QWidget*>("strip63"), nullptr);
    EXPECT_EQ(dialog->findChild<QWidget*>("strip64"), nullptr);
    EXPECT_EQ(text("nameLabel63"), "Track 64");
    auto* scroll = find<QScrollArea>("stripScroll");
    EXPECT_GT(scroll->horizontalScrollBar()->maximum(), 60 * 78);
    EXPECT_EQ(scroll->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    EXPECT_EQ(find("strip1")->x() - find("strip0")->x(), 78 + 8);
}
