#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tests/endtoend/harness/process.h"
#include "tests/endtoend/harness/registry.h"
#include "tests/endtoend/harness/service.h"
#include "tests/endtoend/harness/starts.h"

namespace {

/// The tests use the product's own registry value, service name and folder, and would damage a real installation.
bool productInstalled() { return endtoend::tInstalledService::installed() || endtoend::registry::hasSharedDirectory(); }

bool forced() {
    const char* const value = std::getenv("ZUZIPTRA_ENDTOEND_FORCE");
    return value != nullptr && std::strcmp(value, "1") == 0;
}

/// Under Wine, every process that calls the dispatcher outside a service waits ten seconds while the most recently
/// started service process is alive, which may be one of Wine's own. So this starts one that ends: without a shared
/// directory, the product stops by itself.
class tServiceStartedLastIsOver : public testing::Environment {
    void SetUp() override {
        endtoend::registry::removeValue();
        endtoend::tInstalledService service(endtoend::ownExecutable().parent_path() / L"zuZiptraRemoteService.exe");
        service.startBrief();
        service.control(SERVICE_CONTROL_STOP);
        service.waitForEnd();
    }

    void TearDown() override { endtoend::reportStarts(); }
};

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount == 4 && std::strcmp(arguments[1], endtoend::consoleEventArgument) == 0) {
        return endtoend::generateConsoleEvent(std::strtoul(arguments[2], nullptr, 10),
                                              std::strtoul(arguments[3], nullptr, 10));
    }
    testing::InitGoogleTest(&argumentCount, arguments);
    if (productInstalled() && !forced()) {
        std::fputs(
            "The product, or the maker's shared directory, is installed on this machine, and these tests would\n"
            "replace its service, its registry value and its status file. ZUZIPTRA_ENDTOEND_FORCE=1 lets them.\n",
            stderr);
        return 2;
    }
    // Processes that are meant to crash inherit this: no message box, no report.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    testing::AddGlobalTestEnvironment(new tServiceStartedLastIsOver);
    return RUN_ALL_TESTS();
}
