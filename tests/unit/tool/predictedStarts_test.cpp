#include "tool/check/predictedStarts.h"

#include <gtest/gtest.h>

#include "tests/unit/tool/checkHelpers.h"

namespace {

using nCheck::tLoadVerdict;
using nCheck::tOutcome;
using nCheck::tStart;
using support::described;

tPluginDescription withInitialize(tPluginDescription description) {
    description.initialize = "Initialize";
    return description;
}

/// Starts plug-ins in the given order.
class predictedStarts : public testing::Test {
protected:
    void describe(const std::vector<tPluginDescription>& descriptions, std::uint32_t allowedMask = 0xFFFFFFFF) {
        starts_.emplace(descriptions, allowedMask);
    }
    void expect(const tPluginDescription& description, tLoadVerdict load, std::optional<std::int32_t> code,
                tStart start) {
        const tOutcome outcome = starts_.value().start(description, load);
        EXPECT_EQ(outcome.code, code) << description.name;
        EXPECT_EQ(outcome.start, start) << description.name;
    }

private:
    std::optional<nCheck::tPredictedStarts> starts_;
};

TEST_F(predictedStarts, Have0IfTheLibraryLoadsAndNothingIsCalled) {
    describe({described("A")});
    expect(described("A"), tLoadVerdict::succeeds, 0, tStart::yes);
}

TEST_F(predictedStarts, AreOpenIfThePluginsOwnCodeDecides) {
    describe({described("A"), described("B")});
    expect(withInitialize(described("A")), tLoadVerdict::succeeds, std::nullopt, tStart::perhaps);
    expect(described("B"), tLoadVerdict::uncertain, std::nullopt, tStart::perhaps);
}

TEST_F(predictedStarts, AreOpenIfADependencyIsAssumedToBeDescribedElsewhere) {
    nCheck::tPredictedStarts starts({described("A", {"Far"})}, 1, {"Far"});
    const tOutcome outcome = starts.start(described("A", {"Far"}), tLoadVerdict::succeeds);
    EXPECT_EQ(outcome.code, std::nullopt);
    EXPECT_EQ(outcome.start, tStart::perhaps);
}

TEST_F(predictedStarts, AreThoseOfTheDescriptionIfAnAssumedPluginHasOne) {
    nCheck::tPredictedStarts starts({described("A"), described("B", {"A"})}, 1, {"A"});
    EXPECT_EQ(starts.start(described("A"), tLoadVerdict::fails).start, tStart::no);
    EXPECT_EQ(starts.start(described("B", {"A"}), tLoadVerdict::succeeds).code, -52006);
}

TEST_F(predictedStarts, FailIfTheLibraryDoesNotLoad) {
    describe({described("A")});
    expect(withInitialize(described("A")), tLoadVerdict::fails, -52005, tStart::no);
}

TEST_F(predictedStarts, FailBeforeAnythingElseIfNoFeatureIsAllowed) {
    tPluginDescription a = described("A", {"Nobody"});
    a.requiresMask = 2;
    describe({a}, 0xFFFFFFFD);
    expect(a, tLoadVerdict::fails, -52002, tStart::no);
}

TEST_F(predictedStarts, FailBeforeTheLibraryIsLoadedIfADependencyHasNotStarted) {
    describe({described("A", {"B"}), described("B")});
    expect(described("A", {"B"}), tLoadVerdict::fails, -52006, tStart::no);
    expect(described("B"), tLoadVerdict::fails, -52005, tStart::no);
    expect(described("A", {"B"}), tLoadVerdict::succeeds, -52006, tStart::no);
}

TEST_F(predictedStarts, FollowADependencyThatStartsForCertain) {
    describe({described("A"), described("B"), described("C")});
    expect(described("A"), tLoadVerdict::succeeds, 0, tStart::yes);
    expect(described("B", {"A"}), tLoadVerdict::succeeds, 0, tStart::yes);
    expect(described("C", {"A", "B"}), tLoadVerdict::fails, -52005, tStart::no);
}

TEST_F(predictedStarts, AreOpenIfADependencyIs) {
    describe({described("A"), described("B"), described("C")});
    expect(withInitialize(described("A")), tLoadVerdict::succeeds, std::nullopt, tStart::perhaps);
    expect(described("B", {"A"}), tLoadVerdict::succeeds, std::nullopt, tStart::perhaps);
    expect(described("C", {"B"}), tLoadVerdict::succeeds, std::nullopt, tStart::perhaps);
}

TEST_F(predictedStarts, AreOpenBetweenTwoFailuresButDoNotHappen) {
    // -52006 if A fails, otherwise -52005; in neither case does C start.
    describe({described("A"), described("B"), described("C")});
    expect(withInitialize(described("A")), tLoadVerdict::succeeds, std::nullopt, tStart::perhaps);
    expect(described("B", {"A"}), tLoadVerdict::fails, std::nullopt, tStart::no);
    expect(described("C", {"B"}), tLoadVerdict::succeeds, -52006, tStart::no);
}

TEST_F(predictedStarts, OfOneNameCountIfAnyOfThemStarts) {
    describe({described("A"), described("A"), described("B"), described("C")});
    expect(described("A"), tLoadVerdict::fails, -52005, tStart::no);
    expect(described("B", {"A"}), tLoadVerdict::succeeds, -52006, tStart::no);
    expect(withInitialize(described("A")), tLoadVerdict::succeeds, std::nullopt, tStart::perhaps);
    expect(described("B", {"A"}), tLoadVerdict::succeeds, std::nullopt, tStart::perhaps);
    expect(described("A"), tLoadVerdict::succeeds, 0, tStart::yes);
    expect(described("C", {"A"}), tLoadVerdict::succeeds, 0, tStart::yes);
}

TEST_F(predictedStarts, NeverFollowADependencyThatIsNamedTwice) {
    describe({described("A"), described("B")});
    expect(described("A"), tLoadVerdict::succeeds, 0, tStart::yes);
    expect(described("B", {"A", "A"}), tLoadVerdict::succeeds, -52006, tStart::no);
}

}  // namespace
