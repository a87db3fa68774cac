#include "source/nDeployment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <stdexcept>
#include <tuple>
#include <type_traits>

#include "tests/support/deployment.h"
#include "tests/support/framework.h"

namespace {

using nZusysapi::Result;
using support::tScriptedFramework;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using tFramework = nDeployment::tHolder<nZusysapi::Framework>;
using tResource = nDeployment::tHolder<nZusysapi::Resource>;
using tOnFailure = tScriptedFramework::tOnFailure;

constexpr Result generalFailure = static_cast<Result>(0x80004005);

struct nDeploymentTest : testing::Test {
    tScriptedFramework framework;
    support::tDeploymentPlatform platform{tScriptedFramework::instantiate};

    /// Makes a step fail on the first attempts.
    void fail(int failingStep, int attempts, Result result = generalFailure) {
        framework.outcome = [=](int attempt, int step) {
            return step == failingStep && attempt <= attempts ? result : 0;
        };
    }

    [[nodiscard]] static bool connects() {
        tFramework frameworkHolder;
        tResource resourceHolder;
        const bool connected = nDeployment::ConnectFramework(frameworkHolder, resourceHolder);
        EXPECT_EQ(frameworkHolder.get() != nullptr, connected);
        EXPECT_EQ(resourceHolder.get() != nullptr, connected);
        return connected;
    }
};

// ConnectFramework

TEST_F(nDeploymentTest, ConnectingPerformsTheStepsInOrderAndKeepsOnlyFrameworkAndResource) {
    tFramework frameworkHolder;
    tResource resourceHolder;
    EXPECT_TRUE(nDeployment::ConnectFramework(frameworkHolder, resourceHolder));
    EXPECT_THAT(framework.calls, ElementsAre("instantiate", "framework.createOptions", "options.setOption",
                                             "framework.connect", "connection.selectResource", "framework.addReference",
                                             "connection.release", "options.release", "framework.release"));
    EXPECT_EQ(framework.held(), 2U);
}

TEST_F(nDeploymentTest, AMissingLibraryIsAFailedAttempt) {
    platform.entry = nullptr;
    EXPECT_FALSE(connects());
    EXPECT_THAT(framework.calls, IsEmpty());
}

TEST_F(nDeploymentTest, AnEarlierConnectionIsReplacedAndReleased) {
    tFramework frameworkHolder;
    tResource resourceHolder;
    ASSERT_TRUE(nDeployment::ConnectFramework(frameworkHolder, resourceHolder));
    const nZusysapi::Framework* const earlier = frameworkHolder.get();
    ASSERT_TRUE(nDeployment::ConnectFramework(frameworkHolder, resourceHolder));
    EXPECT_NE(frameworkHolder.get(), earlier);
    EXPECT_EQ(framework.held(), 2U);
}

TEST_F(nDeploymentTest, AFrameworkThatIsAlreadyHeldKeepsItsOnlyReference) {
    framework.oneFramework = true;
    tFramework frameworkHolder;
    tResource resourceHolder;
    ASSERT_TRUE(nDeployment::ConnectFramework(frameworkHolder, resourceHolder));
    ASSERT_TRUE(nDeployment::ConnectFramework(frameworkHolder, resourceHolder));
    EXPECT_EQ(framework.held(), 2U);
}

TEST_F(nDeploymentTest, AFailedAttemptKeepsAnEarlierConnection) {
    for (int step = 1; step <= 5; ++step) {
        SCOPED_TRACE(step);
        framework.outcome = [](int, int) { return 0; };
        tFramework frameworkHolder;
        tResource resourceHolder;
        ASSERT_TRUE(nDeployment::ConnectFramework(frameworkHolder, resourceHolder));
        const nZusysapi::Framework* const heldFramework = frameworkHolder.get();
        const nZusysapi::Resource* const heldResource = resourceHolder.get();
        fail(step, 1000);
        EXPECT_FALSE(nDeployment::ConnectFramework(frameworkHolder, resourceHolder));
        EXPECT_EQ(frameworkHolder.get(), heldFramework);
        EXPECT_EQ(resourceHolder.get(), heldResource);
        EXPECT_EQ(framework.held(), 2U);
    }
}

/// The step that fails, its result, and its effect on the out pointer.
using tFailure = std::tuple<int, Result, tOnFailure>;
struct nDeploymentStep : nDeploymentTest, testing::WithParamInterface<tFailure> {};

TEST_P(nDeploymentStep, EndsTheAttemptWithEveryReferenceReleasedIfItFails) {
    const auto [step, result, onFailure] = GetParam();
    framework.onFailure = onFailure;
    fail(step, 1, result);
    EXPECT_FALSE(connects());
    EXPECT_EQ(framework.held(), 0U);

    const std::vector<std::string> steps{"instantiate", "framework.createOptions", "options.setOption",
                                         "framework.connect", "connection.selectResource"};
    for (std::size_t other = 0; other < steps.size(); ++other) {
        const bool reached = static_cast<int>(other) < step;
        EXPECT_EQ(testing::Matches(testing::Contains(steps[other]))(framework.calls), reached) << steps[other];
    }
}

INSTANTIATE_TEST_SUITE_P(Failing, nDeploymentStep,
                         testing::Combine(testing::Range(1, 6), testing::Values(-1, generalFailure, 1, 0x7FFFFFFF),
                                          testing::Values(tOnFailure::leavesThePointer, tOnFailure::writesNull)));
INSTANTIATE_TEST_SUITE_P(FailingWithAPositiveResultAndAnObject, nDeploymentStep,
                         testing::Combine(testing::Range(1, 6), testing::Values(1),
                                          testing::Values(tOnFailure::returnsAnObject)));
INSTANTIATE_TEST_SUITE_P(FailingWithANegativeResultAndAWildPointer, nDeploymentStep,
                         testing::Combine(testing::Range(1, 6), testing::Values(-1),
                                          testing::Values(tOnFailure::writesGarbage)));

TEST_F(nDeploymentTest, AStepThatSucceedsWithoutAnObjectIsAFailedAttempt) {
    for (const int step : {1, 2, 4, 5}) {
        SCOPED_TRACE(step);
        framework.nullStep = step;
        EXPECT_FALSE(connects());
        EXPECT_EQ(framework.held(), 0U);
    }
}

// ConnectWithRetry

TEST_F(nDeploymentTest, SuccessAtTheFirstAttemptCausesNoPause) {
    EXPECT_TRUE(nDeployment::IsDeploymentAllowed());
    EXPECT_EQ(framework.attempts, 1);
    EXPECT_THAT(platform.pauses, IsEmpty());
}

TEST_F(nDeploymentTest, EveryAttemptLooksForTheLibraryAgain) {
    platform.entry = nullptr;
    platform.onPause = [this] {
        if (platform.pauses.size() == 4) platform.entry = tScriptedFramework::instantiate;
    };
    EXPECT_TRUE(nDeployment::IsDeploymentAllowed());
    EXPECT_EQ(framework.attempts, 1);
    EXPECT_THAT(platform.pauses, SizeIs(4));
}

TEST_F(nDeploymentTest, ConnectingGivesUpOnAMissingLibraryAfterSevenPauses) {
    platform.entry = nullptr;
    EXPECT_THROW(static_cast<void>(nDeployment::IsDeploymentAllowed()),
                 zuZiptraRemoteService::CannotInitSystemFramework);
    EXPECT_THAT(platform.pauses, SizeIs(7));
}

struct nDeploymentRetry : nDeploymentTest, testing::WithParamInterface<std::tuple<int, int>> {};

TEST_P(nDeploymentRetry, RepeatsUpToSevenTimesAndHoldsNoReferenceDuringAPauseOfTenSeconds) {
    const auto [step, failures] = GetParam();
    fail(step, failures);
    platform.onPause = [this] { EXPECT_EQ(framework.held(), 0U); };
    if (failures < 7) {
        EXPECT_TRUE(nDeployment::IsDeploymentAllowed());
    } else {
        EXPECT_THROW(static_cast<void>(nDeployment::IsDeploymentAllowed()),
                     zuZiptraRemoteService::CannotInitSystemFramework);
    }
    EXPECT_EQ(framework.attempts, failures < 7 ? failures + 1 : 7);
    EXPECT_EQ(platform.pauses, std::vector(static_cast<std::size_t>(failures), 10'000U));
    EXPECT_EQ(framework.held(), 0U);
}

INSTANTIATE_TEST_SUITE_P(EachStepFailingOnEachAttempt, nDeploymentRetry,
                         testing::Combine(testing::Range(1, 6), testing::Range(1, 8)));

// IsDeploymentAllowed

TEST_F(nDeploymentTest, ASettingOfZeroMeansNotAllowed) {
    framework.setting = 0;
    EXPECT_FALSE(nDeployment::IsDeploymentAllowed());
}

TEST_F(nDeploymentTest, AnyOtherSettingMeansAllowed) {
    for (const std::uint32_t value : {1U, 2U, 7U, 0x100U, 0x80000000U, 0xFFFFFFFFU}) {
        framework.setting = value;
        EXPECT_TRUE(nDeployment::IsDeploymentAllowed()) << value;
    }
}

TEST_F(nDeploymentTest, AnUnreadableSettingIsNotFoundAndIsNotRetried) {
    for (const Result result : {-1, generalFailure, 1}) {
        framework.attempts = 0;
        fail(6, 1000, result);
        EXPECT_THROW(static_cast<void>(nDeployment::IsDeploymentAllowed()),
                     zuZiptraRemoteService::DeploymentSettingNotFound);
        EXPECT_EQ(framework.attempts, 1);
        EXPECT_EQ(framework.held(), 0U);
    }
    EXPECT_THAT(platform.pauses, IsEmpty());
}

TEST_F(nDeploymentTest, TheResourceIsReleasedBeforeTheFramework) {
    EXPECT_TRUE(nDeployment::IsDeploymentAllowed());
    ASSERT_GE(framework.calls.size(), 3U);
    framework.calls.erase(framework.calls.begin(), framework.calls.end() - 3);
    EXPECT_THAT(framework.calls, ElementsAre("resource.readSetting", "resource.release", "framework.release"));
}

TEST_F(nDeploymentTest, EveryReferenceIsReleasedIfTheFrameworkThrows) {
    for (int failingStep = 1; failingStep <= 6; ++failingStep) {
        framework.outcome = [=](int, int step) -> Result {
            if (step == failingStep) throw std::logic_error("broken framework");
            return 0;
        };
        EXPECT_THROW(static_cast<void>(nDeployment::IsDeploymentAllowed()), std::logic_error);
        EXPECT_EQ(framework.held(), 0U);
    }
}

// isAllowedAtOnce

TEST_F(nDeploymentTest, AskedAtOnceItReadsTheSetting) {
    EXPECT_TRUE(nDeployment::isAllowedAtOnce());
    framework.setting = 0;
    EXPECT_FALSE(nDeployment::isAllowedAtOnce());
    EXPECT_EQ(framework.held(), 0U);
}

TEST_F(nDeploymentTest, AskedAtOnceItFailsAtTheFirstFailedAttemptWithoutAPause) {
    for (int step = 1; step <= 5; ++step) {
        framework.attempts = 0;
        fail(step, 1);
        EXPECT_THROW(static_cast<void>(nDeployment::isAllowedAtOnce()),
                     zuZiptraRemoteService::CannotInitSystemFramework);
        EXPECT_EQ(framework.attempts, 1);
    }
    fail(6, 1000);
    EXPECT_THROW(static_cast<void>(nDeployment::isAllowedAtOnce()), zuZiptraRemoteService::DeploymentSettingNotFound);
    EXPECT_THAT(platform.pauses, IsEmpty());
    EXPECT_EQ(framework.held(), 0U);
}

TEST(nDeploymentExceptions, CarryTheirFixedTexts) {
    EXPECT_STREQ(zuZiptraRemoteService::CannotInitSystemFramework().what(), "Cannot init system framework");
    EXPECT_STREQ(zuZiptraRemoteService::DeploymentSettingNotFound().what(), "Deployment setting not found");
    EXPECT_TRUE((std::is_base_of_v<std::runtime_error, zuZiptraRemoteService::CannotInitSystemFramework>));
    EXPECT_TRUE((std::is_base_of_v<std::runtime_error, zuZiptraRemoteService::DeploymentSettingNotFound>));
}

}  // namespace
