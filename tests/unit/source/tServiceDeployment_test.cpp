#include <gtest/gtest.h>

#include <stdexcept>
#include <utility>

#include "quarks/library.h"
#include "source/tService.h"
#include "tests/support/exceptions.h"
#include "tests/support/framework.h"
#include "tests/support/plugins.h"
#include "tests/support/serviceWorld.h"

namespace {

using nZusysapi::Result;
using support::tScriptedFramework;

struct tServiceDeployment : testing::Test {
    tServiceDeployment() {
        world.deployment.entry = tScriptedFramework::instantiate;
        startService();
    }

    tScriptedFramework framework;
    support::tServiceWorld world;
};

TEST_F(tServiceDeployment, ASettingOfZeroClearsOnlyTheDeploymentBit) {
    framework.setting = 0;
    for (const auto& [before, after] : {std::pair(0xFFFFFFFFU, 0xFFFFFFFDU), {6U, 4U}, {2U, 0U}, {5U, 5U}, {0U, 0U}}) {
        gService->allowedMask = before;
        ApplyDeploymentSetting(*gService);
        EXPECT_EQ(gService->allowedMask, after) << before;
    }
    EXPECT_EQ(gService->messages, "");
}

TEST_F(tServiceDeployment, AnyOtherSettingLeavesTheMaskUnchanged) {
    for (const std::uint32_t mask : {0xFFFFFFFFU, 2U, 5U}) {
        framework.setting = 7;
        gService->allowedMask = mask;
        ApplyDeploymentSetting(*gService);
        EXPECT_EQ(gService->allowedMask, mask);
    }
    EXPECT_EQ(gService->messages, "");
}

TEST_F(tServiceDeployment, AnUnreachableFrameworkAppendsAMessageAndLeavesTheMaskUnchanged) {
    framework.outcome = [](int, int step) { return step == 3 ? 1 : 0; };
    gService->messages = "earlier\n";
    ApplyDeploymentSetting(*gService);
    EXPECT_EQ(gService->messages, "earlier\nCannot init system framework\n");
    EXPECT_EQ(gService->allowedMask, 0xFFFFFFFFU);
}

TEST_F(tServiceDeployment, AnUnreadableSettingAppendsAMessageAndLeavesTheMaskUnchanged) {
    framework.setting = 0;
    framework.outcome = [](int, int step) { return step == 6 ? 1 : 0; };
    ApplyDeploymentSetting(*gService);
    EXPECT_EQ(gService->messages, "Deployment setting not found\n");
    EXPECT_EQ(gService->allowedMask, 0xFFFFFFFFU);
}

TEST_F(tServiceDeployment, AppendsTheTextOfAnyOtherStandardException) {
    framework.outcome = [](int, int) -> Result { throw std::logic_error("broken framework"); };
    ApplyDeploymentSetting(*gService);
    EXPECT_EQ(gService->messages, "broken framework\n");
    EXPECT_EQ(gService->allowedMask, 0xFFFFFFFFU);
}

TEST_F(tServiceDeployment, PassesOnNonStandardExceptionsWithEveryReferenceReleased) {
    framework.outcome = [](int, int step) -> Result { return step == 6 ? throw 42 : 0; };
    EXPECT_THROW(ApplyDeploymentSetting(*gService), int);
    EXPECT_EQ(gService->messages, "");
    EXPECT_EQ(framework.held(), 0U);
}

/// A framework library with its own C++ runtime that throws instead of returning. See plugins/throwing.
class tServiceDeploymentThrowing : public testing::Test {
protected:
    tServiceDeploymentThrowing() : library_(nLibrary::load(support::pluginPath("throwing").c_str(), osError_)) {
        startService();
    }
    void TearDown() override { nLibrary::unload(library_, osError_); }

    void expectMessage(const char* entry, const std::string& message) {
        void* const address = nLibrary::symbol(library_, entry, osError_);
        ASSERT_NE(address, nullptr) << entry;
        world.deployment.entry = reinterpret_cast<nZusysapi::InstantiateFramework2>(address);
        gService->messages.clear();
        ApplyDeploymentSetting(*gService);
        EXPECT_EQ(gService->messages, message) << entry;
        EXPECT_EQ(gService->allowedMask, 0xFFFFFFFFU) << entry;
    }

    support::tServiceWorld world;

private:
    std::uint32_t osError_ = 0;
    nLibrary::tHandle library_;
};

TEST_F(tServiceDeploymentThrowing, AppendsTheTextOfItsException) {
    expectMessage("ThrowRuntimeError", "an exception of the standard library\n");
    expectMessage("ThrowOddText", "%s%n\xFF\x01\"\n\n");
    expectMessage("ThrowEmptyText", "\n");
    expectMessage("ThrowLongText", std::string(1'000'000, 'x') + "\n");
}

TEST_F(tServiceDeploymentThrowing, AppendsAnEmptyLineIfItsExceptionHasNoText) { expectMessage("ThrowNoText", "\n"); }

TEST_F(tServiceDeploymentThrowing, LeavesPropagationDetectedCorrectly) {
    for (int i = 0; i < 3; ++i) expectMessage("ThrowRuntimeError", "an exception of the standard library\n");
    support::expectPropagationToBeTold();
}

}  // namespace
