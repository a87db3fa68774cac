#include <gmock/gmock.h>

#include "tests/endtoend/harness/stage.h"

namespace endtoend {
namespace {

/// An exception that no handler of the host catches ends the process: a C++ exception that is not derived from
/// std::exception, or a structured exception, whose code becomes the exit code.
struct tFatal {
    const char* initialize;
    const char* stop;
    const char* cleanup;
    const wchar_t* library;
    DWORD exitCode;  ///< 0: any code except 0
};

class pluginExceptions : public tEndToEnd, public testing::WithParamInterface<tFatal> {
protected:
    pluginExceptions() { addPlugin("A", {.initialize = "InitWarning3"}); }

    static void expectDeath(DWORD exitCode) {
        if (GetParam().exitCode == 0) {
            EXPECT_NE(exitCode, 0u);
        } else {
            EXPECT_EQ(exitCode, GetParam().exitCode);
        }
    }

    /// The status file still shows what it showed before.
    void expectDeathWhenStopped(const tPlugin& plugin) {
        addPlugin("B", plugin);
        const std::string before = startPlugins().bytes;
        process().interrupt();
        expectDeath(process().exitCode());
        EXPECT_EQ(tStatusFile::read().bytes, before);
    }
};

TEST_P(pluginExceptions, FromInitializeEndsTheProcessAndLeavesTheStatusFileOfThePreparation) {
    addPlugin("B", {.initialize = GetParam().initialize, .library = GetParam().library});
    expectDeath(start().exitCode());
    EXPECT_EQ(tStatusFile::read().names(), "");
    EXPECT_EQ(tStatusFile::read().allowed, "0xffffffff");
}

TEST_P(pluginExceptions, FromStopEndsTheProcessAndLeavesTheStatusFile) {
    expectDeathWhenStopped({.initialize = "", .stop = GetParam().stop, .library = GetParam().library});
}

TEST_P(pluginExceptions, FromCleanupEndsTheProcessAndLeavesTheStatusFile) {
    expectDeathWhenStopped({.initialize = "", .cleanup = GetParam().cleanup, .library = GetParam().library});
}

TEST_P(pluginExceptions, EndsAServiceBeforeItsCleanup) {
    addPlugin("B", {.initialize = "", .stop = GetParam().stop, .library = GetParam().library});
    tStatusWrites writes;
    tInstalledService service(executable());
    service.start();
    writes.waitFor(3);
    const std::string before = tStatusFile::read().bytes;
    const tHandle process = openDespiteAccessList(service.processId(), PROCESS_QUERY_INFORMATION | SYNCHRONIZE);
    ASSERT_TRUE(process);
    service.control(SERVICE_CONTROL_STOP);  // refused if the process ends before the manager has its answer
    ASSERT_EQ(WaitForSingleObject(process.get(), static_cast<DWORD>(patience.count())), WAIT_OBJECT_0);
    DWORD exitCode = 0;
    EXPECT_TRUE(GetExitCodeProcess(process.get(), &exitCode));
    expectDeath(exitCode);
    EXPECT_EQ(tStatusFile::read().bytes, before);
}

constexpr tFatal structured(const char* entry, DWORD code) { return {entry, entry, entry, L"raising.dll", code}; }

INSTANTIATE_TEST_SUITE_P(
    Kinds, pluginExceptions,
    testing::Values(tFatal{"InitThrowsInt", "StopThrowsInt", "CleanupThrowsInt", L"behaviours.dll", 0},
                    structured("Faults", EXCEPTION_ACCESS_VIOLATION), structured("RaisesItsOwnCode", 0xE0000001),
                    structured("RaisesAnotherCompilersException", 0xE06D7363)),
    [](const auto& test) { return std::string(test.param.initialize); });

}  // namespace
}  // namespace endtoend
