#include "window/DetailPanes.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTextEdit>

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

const QString kMark = QStringLiteral("\u2014");
constexpr std::array kLabels{ "currentFileLabel", "channelsLabel", "sampleRateLabel", "tcSampleRateLabel",
    "frameRateLabel", "lengthLabel", "samplesSinceMidnightLabel", "userBitsLabel", "bitDepthLabel" };

BwfMetadata full()
{
    BwfMetadata record;
    record.fileName = "take1.wav";
    record.scene = "12A";
    record.take = "3";
    record.project = "Harbour";
    record.tape = "R01";
    record.note = "plane";
    record.ubits = "00112233";
    record.circled = true;
    record.wildTrack = true;
    record.channels = 2;
    record.sampleRate = 48000;
    record.bitsPerSample = 24;
    record.frameRate = 25.0;
    record.timeReference = 172800000;
    record.duration = 61.0;
    record.tracks.resize(2);
    record.tracks[0].channelIndex = 1;
    record.tracks[0].name = "Boom";
    record.tracks[0].function = "M";
    record.tracks[1].channelIndex = 5;
    record.tracks[1].name = "Lav";
    return record;
}

/// The panes by themselves, with records that no file holds.
class DetailPanesTest : public testing::Test {
protected:
    template <typename Widget> Widget& widget(const char* name) const
    {
        auto* found = panes.findChild<Widget*>(QString::fromLatin1(name));
        if (found == nullptr)
            throw std::runtime_error(std::string("no widget called ") + name);
        return *found;
    }

    QLineEdit& line(const char* name) const { return widget<QLineEdit>(name); }
    QString label(const char* name) const { return widget<QLabel>(name).text(); }
    QString notes() const { return widget<QTextEdit>("notesEdit").toPlainText(); }
    QTableWidget& tracks() const { return widget<QTableWidget>("trackTable"); }

    void show(const std::vector<BwfMetadata>& records)
    {
        std::vector<const BwfMetadata*> shown;
        for (const BwfMetadata& record : records)
            shown.push_back(&record);
        panes.showRecords(shown);
    }

    void expectNothingShown() const
    {
        for (const char* name : kLabels)
            EXPECT_EQ(label(name), kMark) << name;
        EXPECT_EQ(panes.startText(), kMark);
        for (const char* name : { "sceneEdit", "takeEdit", "projectEdit", "tapeIdEdit" })
            EXPECT_EQ(line(name).text(), QString()) << name;
        EXPECT_EQ(notes(), QString());
        EXPECT_FALSE(widget<QCheckBox>("circledCheck").isChecked());
        EXPECT_FALSE(widget<QCheckBox>("wildTrackCheck").isChecked());
        EXPECT_EQ(tracks().rowCount(), 0);
    }

    DetailPanes panes;
};

TEST_F(DetailPanesTest, startEmptyAsWithNoRecord)
{
    EXPECT_EQ(panes.orientation(), Qt::Horizontal);
    EXPECT_EQ(panes.count(), 3);
    expectNothingShown();
    show({});
    expectNothingShown();
}

TEST_F(DetailPanesTest, noRecordEmptiesThemAgain)
{
    show({ full() });
    EXPECT_EQ(tracks().rowCount(), 2);
    show({});
    expectNothingShown();
}

TEST_F(DetailPanesTest, oneRecordIsShownInFull)
{
    show({ full() });
    const std::array wanted{ "take1.wav", "2", "48000 Hz", "48000 Hz", "25 fps", "00:01:01", "172800000", "00112233",
        "24 bit" };
    for (size_t i = 0; i < kLabels.size(); ++i)
        EXPECT_EQ(label(kLabels[i]), wanted[i]) << kLabels[i];
    EXPECT_EQ(panes.startText(), "01:00:00:00");
    EXPECT_EQ(line("sceneEdit").text(), "12A");
    EXPECT_EQ(line("takeEdit").text(), "3");
    EXPECT_TRUE(line("takeEdit").isEnabled());
    EXPECT_EQ(line("projectEdit").text(), "Harbour");
    EXPECT_EQ(line("tapeIdEdit").text(), "R01");
    EXPECT_EQ(notes(), "plane");
    EXPECT_TRUE(widget<QCheckBox>("circledCheck").isChecked());
    EXPECT_TRUE(widget<QCheckBox>("wildTrackCheck").isChecked());
    EXPECT_EQ(tracks().item(1, 1)->text(), "5");
}

TEST_F(DetailPanesTest, severalRecordsShowWhatTheyShareAndTheMarkElsewhere)
{
    BwfMetadata other = full();
    other.scene = "13";
    other.circled = false;
    other.channels = 4;
    show({ full(), other, full() });
    EXPECT_EQ(label("currentFileLabel"), "3 files selected");
    EXPECT_EQ(line("sceneEdit").text(), kMark);
    EXPECT_EQ(line("projectEdit").text(), "Harbour");
    EXPECT_EQ(label("channelsLabel"), kMark);
    EXPECT_EQ(label("sampleRateLabel"), "48000 Hz");
    EXPECT_EQ(label("tcSampleRateLabel"), kMark);
    EXPECT_FALSE(widget<QCheckBox>("circledCheck").isChecked());
    EXPECT_TRUE(widget<QCheckBox>("wildTrackCheck").isChecked());
    EXPECT_EQ(line("takeEdit").text(), kMark);
    EXPECT_FALSE(line("takeEdit").isEnabled());
    EXPECT_EQ(panes.startText(), kMark);
    EXPECT_EQ(label("lengthLabel"), kMark);
    EXPECT_EQ(tracks().rowCount(), 0);
}

TEST_F(DetailPanesTest, untouchedEditorsWantTheRecordsOwnBytes)
{
    BwfMetadata record = full();
    record.scene = "Caf\xE9";
    record.note = "a\xC2\xA0z\r\nb";
    record.tracks[0].name = "Lav\xE9";
    show({ record });
    const BwfMetadata wanted = panes.wanted(record);
    EXPECT_EQ(wanted.scene, record.scene);
    EXPECT_EQ(wanted.take, record.take);
    EXPECT_EQ(wanted.project, record.project);
    EXPECT_EQ(wanted.tape, record.tape);
    EXPECT_EQ(wanted.note, record.note);
    EXPECT_TRUE(wanted.circled);
    EXPECT_TRUE(wanted.wildTrack);
    ASSERT_EQ(wanted.tracks.size(), 2u);
    EXPECT_EQ(wanted.tracks[0].name, "Lav\xE9");
    EXPECT_EQ(wanted.tracks[0].function, "M");
    EXPECT_EQ(wanted.tracks[1].channelIndex, 5);
    EXPECT_EQ(wanted.timeReference, 0u);
    EXPECT_EQ(wanted.sampleRate, 0u);
}

TEST_F(DetailPanesTest, whatAHandChangedIsWantedAsUtf8)
{
    BwfMetadata record = full();
    record.scene = "Caf\xE9";
    show({ record });
    line("sceneEdit").setText(QStringLiteral("Caf\u00E9"));
    line("tapeIdEdit").clear();
    widget<QTextEdit>("notesEdit").setPlainText("train");
    widget<QCheckBox>("circledCheck").setChecked(false);
    tracks().item(0, 2)->setText("Mic");
    const BwfMetadata wanted = panes.wanted(record);
    EXPECT_EQ(wanted.scene, "Caf\xC3\xA9");
    EXPECT_EQ(wanted.tape, "");
    EXPECT_EQ(wanted.note, "train");
    EXPECT_FALSE(wanted.circled);
    EXPECT_EQ(wanted.tracks.at(0).name, "Mic");
}

TEST_F(DetailPanesTest, theMarkIsATextForOneRecordAndKeepsTheTextsOfSeveral)
{
    show({ full() });
    line("sceneEdit").setText(kMark);
    EXPECT_EQ(panes.wanted(full()).scene, kMark.toStdString());

    BwfMetadata other = full();
    other.scene = "13";
    show({ full(), other });
    line("projectEdit").setText(kMark);
    line("tapeIdEdit").setText("R02");
    const BwfMetadata wanted = panes.wanted(other);
    EXPECT_EQ(wanted.scene, "");
    EXPECT_EQ(wanted.project, "");
    EXPECT_EQ(wanted.tape, "R02");
    EXPECT_EQ(wanted.note, "plane");
}

TEST_F(DetailPanesTest, severalRecordsNeverWantTakeStartOrTracks)
{
    show({ full(), full() });
    panes.setTypedStart("02:00:00:00", 345600000);
    const BwfMetadata wanted = panes.wanted(full());
    EXPECT_EQ(wanted.take, "");
    EXPECT_EQ(wanted.timeReference, 0u);
    EXPECT_TRUE(wanted.tracks.empty());
}

TEST_F(DetailPanesTest, aTypedStartIsShownWantedAndTold)
{
    show({ full() });
    const QSignalSpy touched(&panes, &DetailPanes::touched);
    panes.setTypedStart("02:00:00:00", 345600000);
    EXPECT_EQ(touched.count(), 1);
    EXPECT_EQ(panes.startText(), "02:00:00:00");
    EXPECT_EQ(panes.wanted(full()).timeReference, 345600000u);
    EXPECT_EQ(label("samplesSinceMidnightLabel"), "172800000");
}

TEST_F(DetailPanesTest, everyFillDropsATypedStart)
{
    for (const std::vector<BwfMetadata>& next : { std::vector{ full() }, std::vector{ full(), full() }, {} }) {
        show({ full() });
        panes.setTypedStart("02:00:00:00", 345600000);
        show(next);
        EXPECT_NE(panes.startText(), "02:00:00:00");
        EXPECT_EQ(panes.wanted(full()).timeReference, 0u) << next.size();
    }
}

TEST_F(DetailPanesTest, aDroppedStartStaysOnTheButton)
{
    show({ full() });
    panes.setTypedStart("02:00:00:00", 345600000);
    panes.dropTypedStart();
    EXPECT_EQ(panes.wanted(full()).timeReference, 0u);
    EXPECT_EQ(panes.startText(), "02:00:00:00");
}

TEST_F(DetailPanesTest, fillingTellsOfATouchOnlyIfAnEditorChanges)
{
    const QSignalSpy touched(&panes, &DetailPanes::touched);
    show({});
    EXPECT_EQ(touched.count(), 0);
    show({ full() });
    EXPECT_GT(touched.count(), 0);
    const auto count = touched.count();
    BwfMetadata sameInTheEditors = full();
    sameInTheEditors.fileName = "take2.wav";
    sameInTheEditors.duration = 2.0;
    show({ sameInTheEditors });
    EXPECT_EQ(touched.count(), count);
}

TEST_F(DetailPanesTest, everyEditorTellsOfATouch)
{
    show({ full() });
    const QSignalSpy touched(&panes, &DetailPanes::touched);
    for (const char* name : { "sceneEdit", "takeEdit", "projectEdit", "tapeIdEdit" })
        line(name).setText("other");
    widget<QTextEdit>("notesEdit").setPlainText("other");
    widget<QCheckBox>("circledCheck").setChecked(false);
    widget<QCheckBox>("wildTrackCheck").setChecked(false);
    tracks().item(0, 2)->setText("other");
    EXPECT_EQ(touched.count(), 8);
}

TEST_F(DetailPanesTest, theTakeCanBeOfferedAgainAfterSeveralRecords)
{
    show({ full(), full() });
    show({});
    EXPECT_FALSE(line("takeEdit").isEnabled());
    panes.offerTake();
    EXPECT_TRUE(line("takeEdit").isEnabled());
}

TEST_F(DetailPanesTest, thePressOfTheTimecodeIsTold)
{
    const QSignalSpy pressed(&panes, &DetailPanes::timecodeClicked);
    widget<QPushButton>("timecodeButton").click();
    EXPECT_EQ(pressed.count(), 1);
}

} // namespace
