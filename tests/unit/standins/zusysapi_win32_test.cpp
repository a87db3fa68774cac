#include <gtest/gtest.h>
#include <windows.h>

#include "source/nDeployment.h"
#include "source/nDeploymentPlatform.h"
#include "tests/support/folder.h"

namespace {

/// The end-to-end tests rely on this report to find references that the host has not released.
TEST(ZusysapiStandIn, ReportsWhichReferencesAreHeldWhenItIsUnloaded) {
    const support::tFolder folder;
    SetEnvironmentVariableA("ZUSYSAPI_REPORT", folder.utf8("report").c_str());
    nZusysapi::Framework* framework = nullptr;
    ASSERT_EQ(nDeployment::findFrameworkEntry()(1, 0, &framework), 0);
    framework->addReference();
    nZusysapi::Options* options = nullptr;
    ASSERT_EQ(framework->createOptions(&options), 0);
    FreeLibrary(GetModuleHandleA("zusysapi.dll"));
    SetEnvironmentVariableA("ZUSYSAPI_REPORT", nullptr);
    EXPECT_EQ(support::read(folder.path() / "report"), "zusysapi: 3 references held: framework 2, options 1\n");
}

}  // namespace
