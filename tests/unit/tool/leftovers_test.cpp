#include "tool/run/leftovers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using nRun::tLeft;
using nRun::tLeftovers;
using nRun::tProcessState;
using testing::ElementsAre;
using testing::IsEmpty;

tProcessState withHandles(std::size_t handles) {
    tProcessState state;
    state.handles = handles;
    return state;
}

/// "LIFE PLUGIN: TEXT"
std::vector<std::string> texts(const std::vector<tLeft>& lefts) {
    std::vector<std::string> result;
    for (const tLeft& left : lefts) {
        result.push_back(std::to_string(left.life) + ' ' + std::to_string(left.plugin) + ": " + left.text);
    }
    return result;
}

/// A life in which each plug-in, the last one first, changes the number of open handles.
std::vector<std::string> life(tLeftovers& leftovers, std::size_t& handles, const std::vector<int>& opened) {
    for (std::size_t plugin = opened.size(); plugin-- > 0;) {
        handles += static_cast<std::size_t>(opened[plugin]);
        leftovers.afterCall(plugin, withHandles(handles));
    }
    return texts(leftovers.afterLife(withHandles(handles)));
}

TEST(tLeftovers, AreNoneIfTheStateIsAsBefore) {
    tLeftovers leftovers(1, withHandles(5));
    leftovers.afterCall(0, withHandles(9));
    EXPECT_THAT(leftovers.afterLife(withHandles(5)), IsEmpty());
    EXPECT_FALSE(leftovers.undecided());
}

TEST(tLeftovers, LetTheFirstLifeKeepHandlesOpen) {
    std::size_t handles = 10;
    tLeftovers leftovers(1, withHandles(handles));
    EXPECT_THAT(life(leftovers, handles, {3}), IsEmpty());
    EXPECT_TRUE(leftovers.undecided()) << "a second life will tell";
    EXPECT_THAT(life(leftovers, handles, {0}), IsEmpty());
    EXPECT_FALSE(leftovers.undecided());
}

TEST(tLeftovers, AreTheHandlesThatEachLaterLifeAdds) {
    std::size_t handles = 10;
    tLeftovers leftovers(2, withHandles(handles));
    EXPECT_THAT(life(leftovers, handles, {2, 0}), IsEmpty());
    EXPECT_THAT(life(leftovers, handles, {1, 0}), IsEmpty());
    EXPECT_TRUE(leftovers.undecided()) << "a third life will tell";
    EXPECT_THAT(life(leftovers, handles, {2, 0}), ElementsAre("0 0: 1 handle", "1 0: 1 handle", "2 0: 2 handles"));
    EXPECT_FALSE(leftovers.undecided());
    EXPECT_THAT(life(leftovers, handles, {3, 0}), ElementsAre("3 0: 3 handles"));
    EXPECT_THAT(life(leftovers, handles, {0, 0}), IsEmpty());
}

TEST(tLeftovers, LetOneLaterLifeOfEachPluginKeepHandlesOpen) {
    std::size_t handles = 10;
    tLeftovers leftovers(2, withHandles(handles));
    EXPECT_THAT(life(leftovers, handles, {3, 0}), IsEmpty());
    EXPECT_THAT(life(leftovers, handles, {2, 0}), IsEmpty());
    EXPECT_TRUE(leftovers.undecided());
    EXPECT_THAT(life(leftovers, handles, {0, 2}), IsEmpty());
    EXPECT_TRUE(leftovers.undecided());
    EXPECT_THAT(life(leftovers, handles, {0, 0}), IsEmpty());
    EXPECT_FALSE(leftovers.undecided());
}

TEST(tLeftovers, AreMoreHandlesOfASingleLaterLifeThanARuntimeOpens) {
    std::size_t handles = 10;
    tLeftovers leftovers(2, withHandles(handles));
    EXPECT_THAT(life(leftovers, handles, {0, 0}), IsEmpty());
    EXPECT_THAT(life(leftovers, handles, {8, 0}), IsEmpty());
    EXPECT_THAT(life(leftovers, handles, {0, 9}), ElementsAre("2 1: 9 handles"));
    EXPECT_THAT(life(leftovers, handles, {0, 1}), ElementsAre("3 1: 1 handle")) << "it has been accused before";
    EXPECT_THAT(life(leftovers, handles, {1, 0}), ElementsAre("1 0: 8 handles", "4 0: 1 handle"));
}

TEST(tLeftovers, AreThoseOfTheFirstLifeTooIfTheSecondLeavesManyHandles) {
    std::size_t handles = 10;
    tLeftovers leftovers(1, withHandles(handles));
    EXPECT_THAT(life(leftovers, handles, {500}), IsEmpty());
    EXPECT_THAT(life(leftovers, handles, {500}), ElementsAre("0 0: 500 handles", "1 0: 500 handles"));
    EXPECT_FALSE(leftovers.undecided());
}

TEST(tLeftovers, AreNotAddedToTheFirstLifeIfItLeftFewerHandles) {
    std::size_t handles = 10;
    tLeftovers leftovers(1, withHandles(handles));
    EXPECT_THAT(life(leftovers, handles, {0}), IsEmpty());
    EXPECT_FALSE(leftovers.undecided());
    EXPECT_THAT(life(leftovers, handles, {1}), IsEmpty());
    EXPECT_THAT(life(leftovers, handles, {1}), ElementsAre("1 0: 1 handle", "2 0: 1 handle"));
}

TEST(tLeftovers, AreNoHandlesThatOnlyReplaceClosedOnes) {
    std::size_t handles = 10;
    tLeftovers leftovers(2, withHandles(handles));
    EXPECT_THAT(life(leftovers, handles, {3, 0}), IsEmpty());
    EXPECT_THAT(life(leftovers, handles, {-2, 0}), IsEmpty());
    EXPECT_THAT(life(leftovers, handles, {0, 2}), IsEmpty());
    EXPECT_FALSE(leftovers.undecided());
    EXPECT_THAT(life(leftovers, handles, {-1, 2}), IsEmpty());
    EXPECT_THAT(life(leftovers, handles, {-1, 2}), ElementsAre("3 1: 2 handles", "4 1: 2 handles"));
}

TEST(tLeftovers, AreTheLastPluginsIfHandlesAppearBetweenTheCalls) {
    tLeftovers leftovers(2, withHandles(1));
    leftovers.afterCall(1, withHandles(1));
    leftovers.afterCall(0, withHandles(1));
    EXPECT_THAT(leftovers.afterLife(withHandles(1)), IsEmpty());
    leftovers.afterCall(1, withHandles(1));
    leftovers.afterCall(0, withHandles(1));
    EXPECT_THAT(leftovers.afterLife(withHandles(4)), IsEmpty());
    leftovers.afterCall(1, withHandles(4));
    leftovers.afterCall(0, withHandles(4));
    EXPECT_THAT(texts(leftovers.afterLife(withHandles(8))), ElementsAre("1 0: 3 handles", "2 0: 4 handles"));
}

/// A state with threads of these ids.
tProcessState withThreads(const std::vector<std::string>& ids) {
    tProcessState state;
    for (const std::string& id : ids) state.things[id] = tProcessState::thread;
    return state;
}

TEST(tLeftovers, AreTheThreadsThatStillRun) {
    tLeftovers leftovers(3, withThreads({"1", "2"}));
    leftovers.afterCall(1, withThreads({"1", "2", "7", "8"}));
    leftovers.afterCall(2, withThreads({"1", "2", "7", "8", "9"}));
    leftovers.afterCall(0, withThreads({"1", "2", "7", "8"}));
    const tProcessState end = withThreads({"1", "7", "8", "11"});
    EXPECT_TRUE(leftovers.hasNewThreads(end));
    EXPECT_THAT(texts(leftovers.afterLife(end)), ElementsAre("0 0: 1 thread", "0 1: 2 threads"));
    EXPECT_FALSE(leftovers.hasNewThreads(end)) << "they belong to the life before";
    EXPECT_THAT(leftovers.afterLife(end), IsEmpty());
}

TEST(tLeftovers, AreTheLibrariesThatAreStillLoaded) {
    tProcessState state;
    state.things = {{"ziptra.exe", "the library ziptra.exe"}};
    tLeftovers leftovers(2, state);
    state.things["a.dll"] = "the library a.dll";
    state.things["b.dll"] = "the library b.dll";
    EXPECT_FALSE(leftovers.hasNewThreads(state));
    leftovers.afterCall(0, state);
    leftovers.afterCall(1, state);
    state.things.erase("a.dll");
    state.things["c.dll"] = "the library c.dll";
    EXPECT_THAT(texts(leftovers.afterLife(state)), ElementsAre("0 0: the library b.dll", "0 1: the library c.dll"));
    EXPECT_THAT(leftovers.afterLife(state), IsEmpty());
}

TEST(tLeftovers, AreTheSettingsThatAreNotRestored) {
    const auto state = [](const std::string& directory, const std::string& environment) {
        tProcessState settings;
        settings.things = {{"directory " + directory, "another directory"},
                           {"environment " + environment, "another environment"}};
        return settings;
    };
    tLeftovers leftovers(2, state("C:", "A=1"));
    leftovers.afterCall(1, state("D:", "A=2"));
    leftovers.afterCall(0, state("D:", "A=1"));
    EXPECT_THAT(texts(leftovers.afterLife(state("D:", "A=1"))), ElementsAre("0 1: another directory"));
    EXPECT_THAT(texts(leftovers.afterLife(state("D:", "A=3"))), ElementsAre("1 0: another environment"))
        << "of the last call";
}

}  // namespace
