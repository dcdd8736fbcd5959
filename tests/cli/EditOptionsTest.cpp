#include "cli/EditOptions.h"

#include <gtest/gtest.h>

namespace {

ParsedEdit parsed(const std::vector<std::string>& given)
{
    const ParsedArguments arguments = parseArguments(given, kEditOptions);
    EXPECT_EQ("", arguments.complaint);
    return parseEdit(arguments.arguments);
}

TEST(EditOptions, whatIsNotNamedIsNotWanted)
{
    const ParsedEdit none = parsed({ "a.wav" });
    EXPECT_TRUE(none.request.isEmpty());
    EXPECT_EQ("", none.complaint);
    for (const std::vector<std::string>& one : { std::vector<std::string>{ "--scene", "1" }, { "--ubits", "1" },
             { "--circled", "no" }, { "--wild", "no" }, { "--track", "1=" }, { "--start", "00:00:00:00" } }) {
        EXPECT_FALSE(parsed(one).request.isEmpty()) << one.front();
        EXPECT_EQ("", parsed(one).complaint);
    }
}

TEST(EditOptions, valuesArriveInTheirFields)
{
    const EditRequest request = parsed({ "--scene=S", "--take=T", "--tape=R", "--project=P", "--note=N", "--ubits=U",
                                           "--circled=yes", "--wild=no", "--start=01:02:03;04" })
                                    .request;
    EXPECT_EQ("S", request.scene);
    EXPECT_EQ("T", request.take);
    EXPECT_EQ("R", request.tape);
    EXPECT_EQ("P", request.project);
    EXPECT_EQ("N", request.note);
    EXPECT_EQ("U", request.ubits);
    EXPECT_EQ(true, request.circled);
    EXPECT_EQ(false, request.wildTrack);
    EXPECT_EQ("01:02:03;04", request.start);
}

TEST(EditOptions, emptyTextIsRefusedSinceNothingCanBeCleared)
{
    EXPECT_NE("", parsed({ "--note=" }).complaint);
}

TEST(EditOptions, trackHasNumberNameAndFunction)
{
    const auto plain = parseTrackEdit("2=Boom");
    ASSERT_TRUE(plain);
    EXPECT_EQ(2, plain->channelIndex);
    EXPECT_EQ("Boom", plain->name);
    EXPECT_FALSE(plain->function);
    EXPECT_EQ("MIX", parseTrackEdit("2=Boom/MIX")->function);
    EXPECT_EQ("", parseTrackEdit("2=Boom/")->function);
    EXPECT_EQ("", parseTrackEdit("2=")->name);
    EXPECT_EQ("a=b", parseTrackEdit("2=a=b")->name);
    const auto escaped = parseTrackEdit("10=L\\/R\\\\x/a\\|b");
    EXPECT_EQ(10, escaped->channelIndex);
    EXPECT_EQ("L/R\\x", escaped->name);
    EXPECT_EQ("a|b", escaped->function);
}

TEST(EditOptions, trackOfAnotherFormIsRefused)
{
    for (const char* const text : { "", "=", "Boom", "x=Boom", "0=Boom", "-1=Boom", "1 =Boom", "=Boom", "1=a/b/c",
             "1=a\\", "99999999999=a", "1" })
        EXPECT_FALSE(parseTrackEdit(text)) << text;
    EXPECT_NE("", parsed({ "--track", "x" }).complaint);
    EXPECT_NE("", parsed({ "--track", "1=a", "--track", "1=b" }).complaint);
    EXPECT_EQ(2u, parsed({ "--track", "1=a", "--track", "2=b" }).request.tracks.size());
}

TEST(EditOptions, startHasFourNumbersOfTwoDigits)
{
    for (const char* const text : { "00:00:00:00", "23:59:59;29", "99:99:99:99" })
        EXPECT_TRUE(looksLikeTimecode(text)) << text;
    for (const char* const text :
        { "", "0:00:00:00", "00:00:00", "00:00:00:000", "00:00;00:00", "00-00-00-00", "0a:00:00:00", "00:00:00:+1" })
        EXPECT_FALSE(looksLikeTimecode(text)) << text;
    EXPECT_NE("", parsed({ "--start", "1:2:3:4" }).complaint);
}

TEST(EditOptions, wantedRecordKeepsWhatIsNotNamed)
{
    BwfMetadata current;
    current.scene = "1";
    current.note = "kept";
    current.circled = true;
    current.tracks = { { 3, "Boom", "MIX" }, { 3, "Other", "" } };
    EditRequest request;
    request.scene = "2";
    request.tracks = { { 3, "Lav", std::nullopt }, { 4, "None", "" } };
    const WantedRecord wanted = wantedRecord(current, request);
    EXPECT_EQ("2", wanted.record.scene);
    EXPECT_EQ("kept", wanted.record.note);
    EXPECT_TRUE(wanted.record.circled);
    EXPECT_EQ("Lav", wanted.record.tracks[0].name);
    EXPECT_EQ("MIX", wanted.record.tracks[0].function);
    EXPECT_EQ("Other", wanted.record.tracks[1].name);
    EXPECT_EQ(std::vector<int32_t>{ 4 }, wanted.unknownTracks);
}

} // namespace
