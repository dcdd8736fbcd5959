#include "tests/core/BwfMetadataWriterFixture.h"

// Where the chunks stand, and where they end too early.

TEST_F(WriterTest, chunksBehindTheAudioAreWritten)
{
    WavBuilder late;
    make(late.fmt(48000, 1, 24).data("odd").ixmlPadded(kIxml, kIxmlBytes, ' ').bext(bextOf("aSCENE=12\n")));
    updated.scene = "1";
    EXPECT_TRUE(save());
    std::string edited = replaced(kIxml, "<SCENE>12<", "<SCENE>1<");
    edited.resize(kIxmlBytes - 1, ' ');
    EXPECT_EQ(proof->patchedExactly({ ixmlText(edited), description("aSCENE=1\naSPEED=25.000-ND\n") }), "");
}

TEST_F(WriterTest, rf64IsPatchedWhereTheChunksStandInFrontOfTheAudio)
{
    WavBuilder large = WavBuilder::rf64();
    large.ds64(900).fmt(48000, 1, 24).bext(bextOf("aSCENE=12\n")).ixmlPadded(kIxml, kIxmlBytes, '\0').dataFrames(300);
    make(large.claimSize("data", 0xFFFFFFFFu));
    updated.scene = "13";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ description("aSCENE=13\naSPEED=25.000-ND\n"),
                  ixmlText(replaced(kIxml, "<SCENE>12<", "<SCENE>13<")) }),
        "");
}

TEST_F(WriterTest, rf64ChunksBehindThePlaceholderSizeAreNotFound)
{
    WavBuilder large = WavBuilder::rf64();
    large.ds64(8).fmt(48000, 1, 16).data(std::string(8, '\x77')).claimSize("data", 0xFFFFFFFFu);
    make(large.bext(bextOf("aSCENE=12\n")));
    updated.scene = "13";
    EXPECT_FALSE(save());
    EXPECT_EQ(proof->untouched(), "");
}

TEST_F(WriterTest, fileThatIsNoWaveButHasChunksIsPatchedAllTheSame)
{
    // The search looks at chunks only; the reader, which looks at the header, found nothing.
    WavBuilder other;
    other.fileId("XXXX").fmt(48000, 1, 24).bext(bextOf("aSCENE=12\n")).dataFrames(30);
    make(other);
    ASSERT_EQ(current.description, "");
    updated.scene = "13";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ description("aSCENE=13\naSPEED=24.000-ND\n") }), "");
}

// A `bext` payload shorter than what is written into it. Inside the file the writes run on into what follows; at the
// end of the file they end, for the length must never change.

TEST_F(WriterTest, shortBextIsWrittenPastItsEndIntoWhatFollows)
{
    WavBuilder narrow;
    narrow.fmt(48000, 1, 24).chunk("bext", std::string(100, 'd')).chunk("JUNK", std::string(1000, 'j')).dataFrames(30);
    make(narrow);
    updated.scene = "13";
    updated.timeReference = 0x1111111111111111u;
    EXPECT_TRUE(save());
    // The header of the following chunk is among the bytes written over, so the chunk list is another.
    std::string expected = proof->before();
    expected.replace(bext(), kDescription, field("aSCENE=13\naSPEED=24.000-ND\n", kDescription));
    expected.replace(bext() + kTimeReference, 8, std::string(8, '\x11'));
    EXPECT_EQ(changedRanges(readBytes(path), expected), std::vector<ByteRange>());
}

TEST_F(WriterTest, ixmlHeaderThatTheDescriptionOfAShortBextHasRunOverIsNotFoundAnyMore)
{
    WavBuilder narrow;
    // The elements stand behind what the Description takes, where an edit would still find them.
    const std::string text = std::string(300, 'x') + kIxml;
    narrow.fmt(48000, 1, 24).chunk("bext", std::string(100, 'd')).ixml(text).dataFrames(30);
    make(narrow);
    ASSERT_EQ(current.scene, "12");
    updated.scene = "1";
    EXPECT_TRUE(save());
    std::string expected = proof->before();
    expected.replace(bext(), kDescription, field("aSCENE=1\naSPEED=25.000-ND\n", kDescription));
    EXPECT_EQ(changedRanges(readBytes(path), expected), std::vector<ByteRange>());
}

TEST_F(WriterTest, ixmlHeaderInsideTheDescriptionOfABextWithoutStepIsNotFoundAnyMore)
{
    // The size 0xFFFFFFFF steps by 0, so the search for iXML goes on inside the payload.
    WavBuilder stepless;
    const std::string text = std::string(300, 'x') + kIxml;
    const std::string inside = "iXML" + le32(static_cast<uint32_t>(text.size())) + text;
    stepless.fmt(48000, 1, 24).chunk("bext", inside).claimSize("bext", 0xFFFFFFFFu).dataFrames(30);
    make(stepless);
    ASSERT_EQ(current.scene, "12");
    updated.scene = "1";
    EXPECT_TRUE(save());
    const std::string after = readBytes(path);
    const auto changed = changedRanges(after, proof->before());
    EXPECT_EQ(after.size(), proof->before().size());
    ASSERT_FALSE(changed.empty());
    EXPECT_GE(changed.front().begin, bext());
    EXPECT_LE(changed.back().end, bext() + kDescription);
}

TEST_F(WriterTest, ixmlInFrontOfBextIsTheOneThatIsWritten)
{
    WavBuilder early;
    early.fmt(48000, 1, 24).ixmlPadded(kIxml, kIxmlBytes, '\0').bext(bextOf("aSCENE=12\n")).ixml("<SCENE>12</SCENE>");
    make(early.dataFrames(30));
    updated.scene = "13";
    updated.timeReference = 5;
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ ixmlText(replaced(kIxml, "<SCENE>12<", "<SCENE>13<")),
                  description("aSCENE=13\naSPEED=25.000-ND\n"), timeReference(5) }),
        "");
}

TEST_F(WriterTest, descriptionEndsAtTheEndOfTheFile)
{
    WavBuilder cut;
    cut.fmt(48000, 1, 24).dataFrames(30).chunk("bext", std::string(12, 'd'));
    make(cut);
    updated.scene = "13";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ { bext(), "aSCENE=13\naS" } }), "");
}

TEST_F(WriterTest, timeReferenceEndsAtTheEndOfTheFile)
{
    WavBuilder cut;
    cut.fmt(48000, 1, 24).dataFrames(30).chunk("bext", std::string(341, 'd')).omitPadByte();
    make(cut);
    updated.timeReference = 0x0102030405060708u;
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->patchedExactly({ { bext() + kTimeReference, "\x08\x07\x06" } }), "");
}

TEST_F(WriterTest, timeReferenceWhollyPastTheEndOfTheFileIsTrueAndTheFileUntouched)
{
    for (const size_t payload : { size_t{ 0 }, size_t{ 100 }, size_t{ 338 } }) {
        WavBuilder cut;
        cut.fmt(48000, 1, 24).dataFrames(30).chunk("bext", std::string(payload, 'd'));
        make(cut);
        updated.timeReference = 5;
        EXPECT_TRUE(save()) << payload;
        EXPECT_EQ(proof->untouched(), "") << payload;
    }
}

TEST_F(WriterTest, bextHeaderThatEndsTheFileInItsSizeFieldIsTrueAndTheFileUntouched)
{
    // The chunk counts as found, on a failed stream that writes nothing.
    WavBuilder cut;
    cut.fmt(48000, 1, 24).dataFrames(30).trailing("bext\x10");
    make(cut);
    updated.scene = "13";
    EXPECT_TRUE(save());
    EXPECT_EQ(proof->untouched(), "");
}

TEST_F(WriterTest, ixmlThatClaimsMoreThanTheFileHoldsIsTrueAndTheFileUntouched)
{
    for (const uint32_t claim : { uint32_t{ 0x7FFFFFFF }, uint32_t{ 0xFFFFFFFE }, uint32_t{ 0xFFFFFFFF } }) {
        WavBuilder lying;
        lying.fmt(48000, 1, 24).dataFrames(30).ixml(kIxml).claimSize("iXML", claim);
        make(lying);
        updated.circled = true;
        EXPECT_TRUE(save()) << claim;
        EXPECT_EQ(proof->untouched(), "") << claim;
    }
}
