#include "tests/support/ChangedRanges.h"

#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

#include <string>

// The proofs themselves: each must notice what it is there to notice.

namespace {

class FileProofTest : public testing::Test {
protected:
    void SetUp() override { writeBytes(path, bytes); }

    std::string withByteChangedAt(size_t at) const
    {
        std::string changed = bytes;
        changed[at] = static_cast<char>(changed[at] ^ 1);
        return changed;
    }

    TempFolder folder;
    std::string path = folder.file("take.wav");
    WavBuilder builder = WavBuilder().fmt(48000, 1, 16).chunk("bext", std::string(700, 'b')).data(std::string(64, 'a'));
    std::string bytes = builder.bytes();
    size_t bext = builder.payloadOffset("bext");
};

} // namespace

TEST_F(FileProofTest, holdsForAFileThatNobodyTouched)
{
    const FileProof proof(path);
    EXPECT_EQ(proof.untouched(), "");
    EXPECT_EQ(proof.changedExactly({}), "");
    EXPECT_EQ(proof.patchedExactly({}), "");
    EXPECT_EQ(proof.unchangedOutside({}), "");
}

TEST_F(FileProofTest, sameBytesWrittenAgainAreNotUntouched)
{
    const FileProof proof(path);
    writeBytes(path, bytes);
    EXPECT_NE(proof.untouched(), "");
    EXPECT_EQ(proof.changedExactly({}), "");
}

TEST_F(FileProofTest, longerOrShorterFileIsNoticedByEveryProof)
{
    const FileProof proof(path);
    for (const std::string& other : { bytes + '\0', bytes.substr(0, bytes.size() - 1) }) {
        writeBytes(path, other);
        const ByteRange whole = { 0, bytes.size() + 1 };
        EXPECT_NE(proof.patchedExactly({}), "");
        EXPECT_NE(proof.unchangedOutside({ whole }), "");
        EXPECT_NE(proof.changedWithin({ whole }), "");
    }
}

TEST_F(FileProofTest, changedAudioAndChangedSizeFieldsAreNoticedEvenWhereAChangeIsAllowed)
{
    const FileProof proof(path);
    for (const size_t at : { builder.payloadOffset("data") + 5, builder.payloadOffset("data") - 4, bext - 4 }) {
        writeBytes(path, withByteChangedAt(at));
        EXPECT_NE(proof.unchangedOutside({ { at, at + 1 } }), "") << at;
        EXPECT_NE(proof.changedExactly({ { at, at + 1 } }), "") << at;
    }
}

TEST_F(FileProofTest, fileLeftBesideTheRecordingIsNoticed)
{
    const FileProof proof(path);
    writeBytes(folder.file("take.tmp"), "x");
    EXPECT_NE(proof.untouched(), "");
}

TEST_F(FileProofTest, rangesAreExactToTheByte)
{
    const FileProof proof(path);
    writeBytes(path, withByteChangedAt(bext + 10));
    EXPECT_EQ(proof.changedExactly({ { bext + 10, bext + 11 } }), "");
    EXPECT_NE(proof.changedExactly({ { bext + 10, bext + 12 } }), "");
    EXPECT_NE(proof.changedExactly({ { bext + 9, bext + 11 } }), "");
    EXPECT_NE(proof.changedExactly({}), "");
    EXPECT_EQ(proof.changedWithin({ { bext + 10, bext + 11 } }), "");
    EXPECT_NE(proof.changedWithin({ { bext + 11, bext + 20 } }), "");
    EXPECT_NE(proof.changedWithin({ { bext, bext + 20 }, { bext + 20, bext + 30 } }), "")
        << "nothing changed in the second";
    EXPECT_NE(proof.unchangedOutside({ { bext, bext + 10 } }), "");
}

TEST_F(FileProofTest, patchThatWasNotWrittenOrWrittenOtherwiseIsNoticed)
{
    const FileProof proof(path);
    EXPECT_NE(proof.patchedExactly({ { bext, "xy" } }), "");
    EXPECT_NE(proof.patchedExactly({ { bytes.size() - 1, "xy" } }), "") << "reaches past the end of the file";
    std::string patched = bytes;
    patched.replace(bext, 2, "xy");
    writeBytes(path, patched);
    EXPECT_EQ(proof.patchedExactly({ { bext, "xy" } }), "");
    EXPECT_NE(proof.patchedExactly({ { bext, "xx" } }), "");
    EXPECT_NE(proof.patchedExactly({ { bext + 1, "y" } }), "");
}
