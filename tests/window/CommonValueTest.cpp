#include "window/CommonValue.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

std::optional<std::string> commonScene(const std::vector<std::string>& scenes)
{
    std::vector<BwfMetadata> records(scenes.size());
    std::vector<const BwfMetadata*> shown;
    for (size_t i = 0; i < scenes.size(); ++i) {
        records[i].scene = scenes[i];
        shown.push_back(&records[i]);
    }
    return commonValue(shown, [](const BwfMetadata& record) { return record.scene; });
}

TEST(CommonValue, ofNoRecordIsNothing)
{
    EXPECT_EQ(commonScene({}), std::nullopt);
}

TEST(CommonValue, ofOneRecordIsItsOwn)
{
    EXPECT_EQ(commonScene({ "12" }), "12");
    EXPECT_EQ(commonScene({ "" }), "");
}

TEST(CommonValue, isThereOnlyIfAllAgree)
{
    EXPECT_EQ(commonScene({ "12", "12", "12" }), "12");
    EXPECT_EQ(commonScene({ "", "" }), "");
    EXPECT_EQ(commonScene({ "12", "12", "12A" }), std::nullopt);
    EXPECT_EQ(commonScene({ "12A", "12", "12" }), std::nullopt);
    EXPECT_EQ(commonScene({ "", "12" }), std::nullopt);
}

TEST(CommonValue, ofFlagsTellsAllUnsetFromAMix)
{
    BwfMetadata set;
    set.circled = true;
    const BwfMetadata unset;
    const auto commonFlag = [](const std::vector<const BwfMetadata*>& records) {
        return commonValue(records, [](const BwfMetadata& record) { return record.circled; });
    };
    EXPECT_EQ(commonFlag({ &unset, &unset }), false);
    EXPECT_EQ(commonFlag({ &set, &set }), true);
    EXPECT_EQ(commonFlag({ &set, &unset }), std::nullopt);
}

} // namespace
