#include "source/nDeployment.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <stdexcept>
#include <tuple>
#include <type_traits>
#include <utility>

#include "quarks/library.h"
#include "source/tService.h"
#include "tests/support/deployment.h"
#include "tests/support/framework.h"
#include "tests/support/plugins.h"
#include "tests/support/propagation.h"
#include "tests/support/serviceWorld.h"

namespace {

using nZusysapi::Result;
using support::tScriptedFramework;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using tFramework = nDeployment::tHolder<nZusysapi::Framework>;
using tResource = nDeployment::tHolder<nZusysapi::Resource>;
using OnFailure = tScriptedFramework::OnFailure;

constexpr Result generalFailure = static_cast<Result>(0x80004005);

struct Deployment : testing::Test {
    tScriptedFramework framework;
    support::tDeploymentPlatform platform{tScriptedFramework::instantiate};

    /// Makes a step fail on the first attempts.
    void fail(int failingStep, int attempts, Result result = generalFailure) {
        framework.outcome = [=](int attempt, int step) {
            return step == failingStep && attempt <= attempts ? result : 0;
        };
    }

    [[nodiscard]] bool connects() {
        tFramework frameworkHolder;
        tResource resourceHolder;
        const bool connected = nDeployment::ConnectFramework(frameworkHolder, resourceHolder);
        EXPECT_EQ(frameworkHolder.get() != nullptr, connected);
        EXPECT_EQ(resourceHolder.get() != nullptr, connected);
        return connected;
    }
};

// ConnectFramework

TEST_F(Deployment, ConnectingTakesTheStepsInOrderAndKeepsNothingButFrameworkAndResource) {
    tFramework frameworkHolder;
    tResource resourceHolder;
    EXPECT_TRUE(nDeployment::ConnectFramework(frameworkHolder, resourceHolder));
    EXPECT_THAT(framework.calls, ElementsAre("instantiate", "framework.createOptions", "options.setOption",
                                             "framework.connect", "connection.selectResource", "framework.addReference",
                                             "connection.release", "options.release", "framework.release"));
    EXPECT_EQ(framework.held(), 2U);
}

TEST_F(Deployment, AMissingLibraryIsAFailedAttempt) {
    platform.entry = nullptr;
    EXPECT_FALSE(connects());
    EXPECT_THAT(framework.calls, IsEmpty());
}

TEST_F(Deployment, AConnectionMadeEarlierIsReplacedAndReleased) {
    tFramework frameworkHolder;
    tResource resourceHolder;
    ASSERT_TRUE(nDeployment::ConnectFramework(frameworkHolder, resourceHolder));
    const nZusysapi::Framework* const earlier = frameworkHolder.get();
    ASSERT_TRUE(nDeployment::ConnectFramework(frameworkHolder, resourceHolder));
    EXPECT_NE(frameworkHolder.get(), earlier);
    EXPECT_EQ(framework.held(), 2U);
}

TEST_F(Deployment, AFrameworkThatIsHeldAlreadyKeepsItsOneReference) {
    framework.oneFramework = true;
    tFramework frameworkHolder;
    tResource resourceHolder;
    ASSERT_TRUE(nDeployment::ConnectFramework(frameworkHolder, resourceHolder));
    ASSERT_TRUE(nDeployment::ConnectFramework(frameworkHolder, resourceHolder));
    EXPECT_EQ(framework.held(), 2U);
}

TEST_F(Deployment, AFailedAttemptLeavesAConnectionMadeEarlierAlone) {
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

/// What fails, with which result, and what becomes of the out pointer.
using tFailure = std::tuple<int, Result, OnFailure>;
struct DeploymentStep : Deployment, testing::WithParamInterface<tFailure> {};

TEST_P(DeploymentStep, ThatFailsEndsTheAttemptWithEveryReferenceReleased) {
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

INSTANTIATE_TEST_SUITE_P(Failing, DeploymentStep,
                         testing::Combine(testing::Range(1, 6), testing::Values(-1, generalFailure, 1, 0x7FFFFFFF),
                                          testing::Values(OnFailure::leavesThePointer, OnFailure::writesNull)));
INSTANTIATE_TEST_SUITE_P(FailingWithAPositiveResultAndAnObject, DeploymentStep,
                         testing::Combine(testing::Range(1, 6), testing::Values(1),
                                          testing::Values(OnFailure::givesAnObject)));
INSTANTIATE_TEST_SUITE_P(FailingWithANegativeResultAndAWildPointer, DeploymentStep,
                         testing::Combine(testing::Range(1, 6), testing::Values(-1),
                                          testing::Values(OnFailure::writesGarbage)));

TEST_F(Deployment, AStepThatSucceedsWithoutAnObjectIsAFailedAttempt) {
    for (const int step : {1, 2, 4, 5}) {
        SCOPED_TRACE(step);
        framework.nullStep = step;
        EXPECT_FALSE(connects());
        EXPECT_EQ(framework.held(), 0U);
    }
}

// ConnectWithRetry

TEST_F(Deployment, SuccessAtTheFirstAttemptPausesNowhere) {
    EXPECT_TRUE(nDeployment::IsDeploymentAllowed());
    EXPECT_EQ(framework.attempts, 1);
    EXPECT_THAT(platform.pauses, IsEmpty());
}

TEST_F(Deployment, SuccessAtTheThirdAttemptComesAfterTwoPausesOfTenSeconds) {
    fail(1, 2);
    EXPECT_TRUE(nDeployment::IsDeploymentAllowed());
    EXPECT_THAT(platform.pauses, ElementsAre(10'000U, 10'000U));
}

TEST_F(Deployment, SuccessAtTheSeventhAttemptIsStillSuccess) {
    fail(5, 6);
    EXPECT_TRUE(nDeployment::IsDeploymentAllowed());
    EXPECT_THAT(platform.pauses, SizeIs(6));
}

TEST_F(Deployment, SevenFailuresArePausedAfterTheLastOneIncludedAndThenGivenUp) {
    fail(1, 1000);
    EXPECT_THROW(static_cast<void>(nDeployment::IsDeploymentAllowed()),
                 zuZiptraRemoteService::CannotInitSystemFramework);
    EXPECT_EQ(framework.attempts, 7);
    EXPECT_THAT(platform.pauses, SizeIs(7));
    EXPECT_THAT(platform.pauses, Each(10'000U));
}

TEST_F(Deployment, TheLibraryIsLookedForAnewAtEveryAttempt) {
    platform.entry = nullptr;
    platform.onPause = [this] {
        if (platform.pauses.size() == 4) platform.entry = tScriptedFramework::instantiate;
    };
    EXPECT_TRUE(nDeployment::IsDeploymentAllowed());
    EXPECT_EQ(framework.attempts, 1);
    EXPECT_THAT(platform.pauses, SizeIs(4));
}

TEST_F(Deployment, ALibraryThatNeverComesIsGivenUpAfterSevenPauses) {
    platform.entry = nullptr;
    EXPECT_THROW(static_cast<void>(nDeployment::IsDeploymentAllowed()),
                 zuZiptraRemoteService::CannotInitSystemFramework);
    EXPECT_THAT(platform.pauses, SizeIs(7));
}

struct DeploymentRetry : Deployment, testing::WithParamInterface<std::tuple<int, int>> {};

TEST_P(DeploymentRetry, GoesOnUntilNoStepFailsAndHoldsNothingAcrossAPause) {
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
    EXPECT_THAT(platform.pauses, SizeIs(static_cast<std::size_t>(failures)));
    EXPECT_EQ(framework.held(), 0U);
}

INSTANTIATE_TEST_SUITE_P(EachStepFailingOnEachAttempt, DeploymentRetry,
                         testing::Combine(testing::Range(1, 6), testing::Range(1, 8)));

// IsDeploymentAllowed

TEST_F(Deployment, TheSettingZeroMeansNotAllowed) {
    framework.setting = 0;
    EXPECT_FALSE(nDeployment::IsDeploymentAllowed());
}

TEST_F(Deployment, AnyOtherSettingMeansAllowed) {
    for (const std::uint32_t value : {1U, 2U, 7U, 0x100U, 0x80000000U, 0xFFFFFFFFU}) {
        framework.setting = value;
        EXPECT_TRUE(nDeployment::IsDeploymentAllowed()) << value;
    }
}

TEST_F(Deployment, ASettingThatCannotBeReadIsNotFoundAndNotTriedAgain) {
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

TEST_F(Deployment, TheResourceIsReleasedBeforeTheFramework) {
    EXPECT_TRUE(nDeployment::IsDeploymentAllowed());
    ASSERT_GE(framework.calls.size(), 3U);
    framework.calls.erase(framework.calls.begin(), framework.calls.end() - 3);
    EXPECT_THAT(framework.calls, ElementsAre("resource.readSetting", "resource.release", "framework.release"));
}

TEST_F(Deployment, AFrameworkThatThrowsLeavesNothingHeld) {
    for (int failingStep = 1; failingStep <= 6; ++failingStep) {
        framework.outcome = [=](int, int step) -> Result {
            if (step == failingStep) throw std::logic_error("broken framework");
            return 0;
        };
        EXPECT_THROW(static_cast<void>(nDeployment::IsDeploymentAllowed()), std::logic_error);
        EXPECT_EQ(framework.held(), 0U);
    }
}

TEST(DeploymentExceptions, CarryTheirFixedTexts) {
    EXPECT_STREQ(zuZiptraRemoteService::CannotInitSystemFramework().what(), "Cannot init system framework");
    EXPECT_STREQ(zuZiptraRemoteService::DeploymentSettingNotFound().what(), "Deployment setting not found");
    EXPECT_TRUE((std::is_base_of_v<std::runtime_error, zuZiptraRemoteService::CannotInitSystemFramework>));
    EXPECT_TRUE((std::is_base_of_v<std::runtime_error, zuZiptraRemoteService::DeploymentSettingNotFound>));
}

// ApplyDeploymentSetting

struct DeploymentSetting : testing::Test {
    DeploymentSetting() {
        world.deployment.entry = tScriptedFramework::instantiate;
        startService();
    }

    tScriptedFramework framework;
    support::tServiceWorld world;
};

TEST_F(DeploymentSetting, OfZeroClearsItsBitAndNoOther) {
    framework.setting = 0;
    for (const auto& [before, after] : {std::pair(0xFFFFFFFFU, 0xFFFFFFFDU), {6U, 4U}, {2U, 0U}, {5U, 5U}, {0U, 0U}}) {
        gService->allowedMask = before;
        nDeployment::ApplyDeploymentSetting(*gService);
        EXPECT_EQ(gService->allowedMask, after) << before;
    }
    EXPECT_EQ(gService->messages, "");
}

TEST_F(DeploymentSetting, OfAnythingElseLeavesTheMaskAsItIs) {
    for (const std::uint32_t mask : {0xFFFFFFFFU, 2U, 5U}) {
        framework.setting = 7;
        gService->allowedMask = mask;
        nDeployment::ApplyDeploymentSetting(*gService);
        EXPECT_EQ(gService->allowedMask, mask);
    }
    EXPECT_EQ(gService->messages, "");
}

TEST_F(DeploymentSetting, ThatCannotBeReachedIsALineBehindTheOthersAndLeavesTheMask) {
    framework.outcome = [](int, int step) { return step == 3 ? 1 : 0; };
    gService->messages = "earlier\n";
    nDeployment::ApplyDeploymentSetting(*gService);
    EXPECT_EQ(gService->messages, "earlier\nCannot init system framework\n");
    EXPECT_EQ(gService->allowedMask, 0xFFFFFFFFU);
}

TEST_F(DeploymentSetting, ThatCannotBeReadIsALineAndLeavesTheMask) {
    framework.setting = 0;
    framework.outcome = [](int, int step) { return step == 6 ? 1 : 0; };
    nDeployment::ApplyDeploymentSetting(*gService);
    EXPECT_EQ(gService->messages, "Deployment setting not found\n");
    EXPECT_EQ(gService->allowedMask, 0xFFFFFFFFU);
}

TEST_F(DeploymentSetting, TakesTheTextOfAnyOtherStandardException) {
    framework.outcome = [](int, int) -> Result { throw std::logic_error("broken framework"); };
    nDeployment::ApplyDeploymentSetting(*gService);
    EXPECT_EQ(gService->messages, "broken framework\n");
    EXPECT_EQ(gService->allowedMask, 0xFFFFFFFFU);
}

TEST_F(DeploymentSetting, LetsExceptionsThatAreNoStandardOnesPassWithNothingHeld) {
    framework.outcome = [](int, int step) -> Result { return step == 6 ? throw 42 : 0; };
    EXPECT_THROW(nDeployment::ApplyDeploymentSetting(*gService), int);
    EXPECT_EQ(gService->messages, "");
    EXPECT_EQ(framework.held(), 0U);
}

/// A framework library with a C++ runtime of its own that throws instead of answering. See plugins/throwing.
class ThrowingFramework : public testing::Test {
protected:
    ThrowingFramework() : library_(nLibrary::load(support::pluginPath("throwing").c_str(), osError_)) {
        startService();
    }
    ~ThrowingFramework() override { nLibrary::unload(library_, osError_); }

    void expectMessage(const char* entry, const std::string& message) {
        void* const address = nLibrary::symbol(library_, entry, osError_);
        ASSERT_NE(address, nullptr) << entry;
        world.deployment.entry = reinterpret_cast<nZusysapi::InstantiateFramework2>(address);
        gService->messages.clear();
        nDeployment::ApplyDeploymentSetting(*gService);
        EXPECT_EQ(gService->messages, message) << entry;
        EXPECT_EQ(gService->allowedMask, 0xFFFFFFFFU) << entry;
    }

    support::tServiceWorld world;

private:
    std::uint32_t osError_ = 0;
    nLibrary::tHandle library_;
};

TEST_F(ThrowingFramework, IsALineWithTheTextOfWhatItThrows) {
    expectMessage("ThrowRuntimeError", "an exception of the standard library\n");
    expectMessage("ThrowOddText", "%s%n\xFF\x01\"\n\n");
    expectMessage("ThrowEmptyText", "\n");
    expectMessage("ThrowLongText", std::string(1'000'000, 'x') + "\n");
}

TEST_F(ThrowingFramework, IsAnEmptyLineWhenWhatItThrowsHasNoTextAtAll) { expectMessage("ThrowNoText", "\n"); }

TEST_F(ThrowingFramework, DoesNotBlurWhetherAnExceptionIsPropagating) {
    for (int i = 0; i < 3; ++i) expectMessage("ThrowRuntimeError", "an exception of the standard library\n");
    support::expectPropagationToBeTold();
}

}  // namespace
