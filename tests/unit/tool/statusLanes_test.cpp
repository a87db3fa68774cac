#include "tool/status/statusLanes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "tests/support/statusReports.h"

namespace {

using namespace nStatus;
using support::plugin;
using support::report;
using testing::ElementsAre;

constexpr std::size_t columns = 8;

/// Returns the drawing with a text for each row: for each lane "^" for a branch from above, "v" for one to below and
/// "|" for a line, after its number; "!" if its plug-in failed.
std::vector<std::string> drawn(const std::vector<tPlugin>& plugins, std::size_t limit = columns) {
    const tReport all = report(plugins);
    std::vector<std::string> rows;
    for (const auto& lanes : drawLanes(all, tNames(all), limit).rows) {
        std::string& row = rows.emplace_back();
        for (const tLane& lane : lanes) {
            row += std::to_string(lane.number);
            if (lane.fromAbove) row += '^';
            if (lane.through) row += '|';
            if (lane.toBelow) row += 'v';
            if (lane.failed) row += '!';
        }
    }
    return rows;
}

TEST(nStatusLanes, AreNoneWithoutDependencies) {
    EXPECT_THAT(drawn({plugin("A"), plugin("B", 0, 0, {"missing"}), plugin("C", 0, 0, {"C"})}),
                ElementsAre("", "", ""));
}

TEST(nStatusLanes, LeadFromAPluginToThoseThatNeedIt) {
    EXPECT_THAT(drawn({plugin("A"), plugin("B", 0, 0, {"A"}), plugin("X"), plugin("C", 0, 0, {"A"})}),
                ElementsAre("0v", "0^|", "0|", "0^"));
}

TEST(nStatusLanes, LeadUpwardsToAPluginThatCameTooEarly) {
    EXPECT_THAT(drawn({plugin("A", 0, -52006, {"C"}), plugin("B"), plugin("C"), plugin("D", 0, 0, {"C"})}),
                ElementsAre("0v", "0|", "0^v", "0^"));
}

TEST(nStatusLanes, ConnectACircleWithTwoLanes) {
    EXPECT_THAT(drawn({plugin("A", 0, -52006, {"B"}), plugin("B", 0, -52006, {"A"})}), ElementsAre("0v!1v!", "0^!1^!"));
}

TEST(nStatusLanes, ShowThatTheirPluginFailed) {
    EXPECT_THAT(drawn({plugin("A", 0, -1), plugin("B", 0, -52006, {"A"})}), ElementsAre("0v!", "0^!"));
}

TEST(nStatusLanes, AreSideBySideWhereTheyOverlapAndShareAColumnWhereNot) {
    EXPECT_THAT(drawn({plugin("A"), plugin("B"), plugin("C", 0, 0, {"A", "B"}), plugin("D"), plugin("E", 0, 0, {"D"})}),
                ElementsAre("0v", "0|1v", "0^1^", "0v", "0^"));
}

TEST(nStatusLanes, AreNoMoreThanThereAreColumns) {
    const std::vector<tPlugin> plugins{plugin("A"), plugin("B"), plugin("C", 0, 0, {"A", "B"})};
    EXPECT_THAT(drawn(plugins, 1), ElementsAre("0v", "0|", "0^"));
    const tReport all = report(plugins);
    EXPECT_FALSE(drawLanes(all, tNames(all), 1).complete);
    EXPECT_TRUE(drawLanes(all, tNames(all), 2).complete);
    EXPECT_EQ(drawLanes(all, tNames(all), 2).count, 2U);
}

TEST(nStatusLanes, ConnectARepeatedDependencyOnce) {
    EXPECT_THAT(drawn({plugin("A"), plugin("B", 0, -52006, {"A", "A"})}), ElementsAre("0v", "0^"));
}

TEST(nStatusLanes, LeadToThePluginThatIsMeant) {
    EXPECT_THAT(drawn({plugin("A", 0, -1), plugin("A"), plugin("B", 0, 0, {"A"})}), ElementsAre("", "0v", "0^"));
}

}  // namespace
