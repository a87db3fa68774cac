#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "source/nDeployment.h"
#include "source/nDeploymentPlatform.h"
#include "tests/support/folder.h"
#include "tests/support/imports_win32.h"

namespace {

/// The stand-in itself, loaded by the product's own binding; it lies beside the test program.
class ZusysapiStandIn : public testing::Test {
protected:
    ZusysapiStandIn() {
        set("ZUSYSAPI_REPORT", folder.utf8("report"));
        imports::Sleep.replace([this](DWORD /*milliseconds*/) { ++pauses; });
    }
    ~ZusysapiStandIn() override {
        unload();
        for (const char* name :
             {"ZUSYSAPI_SETTING", "ZUSYSAPI_FAIL_STEP", "ZUSYSAPI_FAIL_ATTEMPTS", "ZUSYSAPI_REPORT"}) {
            SetEnvironmentVariableA(name, nullptr);
        }
    }

    static void set(const char* name, const std::string& value) { SetEnvironmentVariableA(name, value.c_str()); }
    static void unload() {
        const HMODULE library = GetModuleHandleA("zusysapi.dll");
        if (library != nullptr) FreeLibrary(library);
    }

    /// What it says when it is unloaded.
    [[nodiscard]] std::string report() const {
        unload();
        std::ifstream file(folder.path() / "report");
        return {std::istreambuf_iterator<char>(file), {}};
    }

    support::tFolder folder;
    int pauses = 0;
};

TEST_F(ZusysapiStandIn, AllowsDeploymentUnlessToldOtherwise) { EXPECT_TRUE(nDeployment::IsDeploymentAllowed()); }

TEST_F(ZusysapiStandIn, GivesTheSettingOfTheEnvironment) {
    set("ZUSYSAPI_SETTING", "0");
    EXPECT_FALSE(nDeployment::IsDeploymentAllowed());
    set("ZUSYSAPI_SETTING", "0x7");
    EXPECT_TRUE(nDeployment::IsDeploymentAllowed());
}

TEST_F(ZusysapiStandIn, SaysThatNothingIsHeldAfterAQuery) {
    EXPECT_TRUE(nDeployment::IsDeploymentAllowed());
    EXPECT_EQ(report(), "zusysapi: 0 references held\n");
}

TEST_F(ZusysapiStandIn, NamesTheObjectsThatAreStillHeld) {
    nZusysapi::Framework* framework = nullptr;
    ASSERT_EQ(nDeployment::findFrameworkEntry()(1, 0, &framework), 0);
    framework->addReference();
    nZusysapi::Options* options = nullptr;
    ASSERT_EQ(framework->createOptions(&options), 0);
    EXPECT_EQ(report(), "zusysapi: 3 references held: framework 2, options 1\n");
}

TEST_F(ZusysapiStandIn, FailsEachStepOnTheFirstAttemptsAndLeavesNothingHeld) {
    for (int step = 1; step <= 5; ++step) {
        set("ZUSYSAPI_FAIL_STEP", std::to_string(step));
        set("ZUSYSAPI_FAIL_ATTEMPTS", "3");
        pauses = 0;
        EXPECT_TRUE(nDeployment::IsDeploymentAllowed()) << step;
        EXPECT_EQ(pauses, 3) << step;
        EXPECT_EQ(report(), "zusysapi: 0 references held\n") << step;
        remove(folder.path() / "report");
    }
}

TEST_F(ZusysapiStandIn, RefusesArgumentsThatAreNotTheHosts) {
    nZusysapi::Framework* framework = nullptr;
    const nZusysapi::InstantiateFramework2 instantiate = nDeployment::findFrameworkEntry();
    EXPECT_EQ(instantiate(0, 1, &framework), -101);
    EXPECT_EQ(instantiate(1, 0, nullptr), -101);
    ASSERT_EQ(instantiate(1, 0, &framework), 0);
    nZusysapi::Options* options = nullptr;
    ASSERT_EQ(framework->createOptions(&options), 0);
    EXPECT_EQ(options->setOption(0x103A000, 5), -103);
    nZusysapi::Connection* connection = nullptr;
    EXPECT_EQ(framework->connect(u"//localhost", 1, options, &connection), -104) << "the option has not been set";
    ASSERT_EQ(options->setOption(0x103A000, 4), 0);
    EXPECT_EQ(framework->connect(u"//elsewhere", 1, options, &connection), -104);
    ASSERT_EQ(framework->connect(u"//localhost", 1, options, &connection), 0);
    nZusysapi::Resource* resource = nullptr;
    std::uint32_t number = 0;
    EXPECT_EQ(connection->selectResource(2, &resource, &number), -105);
    ASSERT_EQ(connection->selectResource(1, &resource, &number), 0);
    EXPECT_EQ(resource->readSetting(1, &number), -106);
    EXPECT_EQ(resource->slot14(), -200);
    EXPECT_EQ(resource->release() + connection->release() + options->release() + framework->release(), 0U);
    EXPECT_EQ(report(), "zusysapi: 0 references held\n");
}

TEST_F(ZusysapiStandIn, IsOneObjectToWhoeverAsksForItsIdentity) {
    nZusysapi::Framework* framework = nullptr;
    ASSERT_EQ(nDeployment::findFrameworkEntry()(1, 0, &framework), 0);
    void* identity = nullptr;
    ASSERT_EQ(framework->queryInterface(nZusysapi::identity, &identity), 0);
    EXPECT_EQ(identity, static_cast<nZusysapi::Object*>(framework));
    nZusysapi::InterfaceId other = nZusysapi::identity;
    other.data1 = 1;
    EXPECT_NE(framework->queryInterface(other, &identity), 0);
    EXPECT_EQ(identity, nullptr);
    EXPECT_EQ(framework->release(), 1U);
    EXPECT_EQ(framework->release(), 0U);
}

}  // namespace
