#include <gtest/gtest.h>

#include <string>

#include "source/nDeployment.h"
#include "source/nDeploymentPlatform.h"
#include "tests/support/folder.h"
#include "tests/support/imports_win32.h"

namespace {

/// The stand-in itself, loaded by the product's own binding; it is beside the test program. What the end-to-end tests
/// show of it anyway is not repeated here.
class zusysapi : public testing::Test {
protected:
    zusysapi() {
        set("ZUSYSAPI_REPORT", folder.utf8("report"));
        imports::Sleep.replace([this](DWORD /*milliseconds*/) { ++pauses; });
    }
    void TearDown() override {
        unload();
        for (const char* name : {"ZUSYSAPI_FAIL_STEP", "ZUSYSAPI_FAIL_ATTEMPTS", "ZUSYSAPI_REPORT"}) {
            SetEnvironmentVariableA(name, nullptr);
        }
    }

    static void set(const char* name, const std::string& value) { SetEnvironmentVariableA(name, value.c_str()); }
    static void unload() {
        const HMODULE library = GetModuleHandleA("zusysapi.dll");
        if (library != nullptr) FreeLibrary(library);
    }

    /// Returns what it reports when it is unloaded.
    [[nodiscard]] std::string report() const {
        unload();
        return folder.read("report");
    }

    support::tFolder folder;
    int pauses = 0;
};

TEST_F(zusysapi, NamesTheObjectsThatAreStillHeld) {
    nZusysapi::Framework* framework = nullptr;
    ASSERT_EQ(nDeployment::findFrameworkEntry()(1, 0, &framework), 0);
    framework->addReference();
    nZusysapi::Options* options = nullptr;
    ASSERT_EQ(framework->createOptions(&options), 0);
    EXPECT_EQ(report(), "zusysapi: 3 references held: framework 2, options 1\n");
}

TEST_F(zusysapi, FailsEachStepOnTheFirstAttemptsAndLeavesNothingHeld) {
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

}  // namespace
