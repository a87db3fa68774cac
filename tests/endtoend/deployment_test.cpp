#include <gmock/gmock.h>

#include <list>

#include "tests/endtoend/harness/stage.h"

namespace endtoend {
namespace {

using namespace std::chrono_literals;

// What the stand-in for zusysapi.dll is told to do: see standins/zusysapi.

class Deployment : public EndToEnd {
protected:
    Deployment() { addPlugin("A", {.requires_ = "2"}); }

    /// The status file of a whole life; the framework's objects are all given back in it.
    tStatusFile life() {
        std::filesystem::remove(report_);
        const tEnvironmentVariable report(L"ZUSYSAPI_REPORT", report_.native());
        const tStatusFile status = runThrough();
        EXPECT_EQ(readFile(report_), "zusysapi: 0 references held\n");
        return status;
    }

private:
    tPath report_ = root() / L"report";
};

TEST_F(Deployment, AnySettingButZeroAllowsIt) {
    for (const wchar_t* setting : {L"1", L"7", L"0x80000000"}) {
        const tEnvironmentVariable variable(L"ZUSYSAPI_SETTING", setting);
        const tStatusFile status = life();
        EXPECT_EQ(status.allowed, "0xffffffff");
        EXPECT_EQ(status.messages, "");
        EXPECT_EQ(status.plugin("A").code("InitOk"), 0);
    }
}

TEST_F(Deployment, ASettingOfZeroTakesItsBitAway) {
    const tEnvironmentVariable variable(L"ZUSYSAPI_SETTING", L"0");
    const tStatusFile status = life();
    EXPECT_EQ(status.allowed, "0xfffffffd");
    EXPECT_EQ(status.messages, "");
    EXPECT_EQ(status.plugin("A").code("InitOk"), -52002);
}

TEST_F(Deployment, ASettingThatIsNotFoundAllowsItAndTheStatusFileSaysSo) {
    const tEnvironmentVariable variable(L"ZUSYSAPI_FAIL_STEP", L"6");
    const tStatusFile status = life();
    EXPECT_EQ(status.allowed, "0xffffffff");
    EXPECT_EQ(status.messages, "Deployment setting not found\n");
    EXPECT_EQ(status.plugin("A").code("InitOk"), 0);
}

TEST_F(Deployment, ItsMessageComesAfterThoseOfTheDescriptionFiles) {
    const tPath bad = describe(L"bad.ini", "nonsense");
    const tEnvironmentVariable variable(L"ZUSYSAPI_FAIL_STEP", L"6");
    EXPECT_EQ(life().messages,
              "Failed to parse service description file: " + utf8Path(bad) + "\nDeployment setting not found\n");
}

/// Attempts that fail cost ten seconds each. So hosts with failures of all kinds wait side by side, on one stage and
/// with one status file, and the tests look at what came of it.
class DeploymentRetries : public testing::Test {
protected:
    struct tWaitingHost {
        tWaitingHost(const tPath& executable, const tPath& callLog, const tPath& frameworkReport)
            : process(executable), calls(callLog), report(frameworkReport) {}

        tProcess process;
        tPath calls;
        tPath report;
    };

    static void SetUpTestSuite() {
        stage.emplace();
        stage->addPlugin("A", {.requires_ = "2", .initialize = "InitWaits", .stop = "StopOk", .cleanup = "CleanupOk"});
        const tPath withoutFramework = stage->root() / L"bare" / stage->executable().filename();
        std::filesystem::create_directories(withoutFramework.parent_path());
        std::filesystem::copy_file(stage->executable(), withoutFramework);

        // While a plug-in is held in its start, its host leaves the status file alone.
        const tGate gate = stage->holdPlugin("A");
        launchHosts(withoutFramework);
        // Last: a service that runs would hold the others up in Wine's dispatcher.
        service.emplace(withoutFramework);
        service->start();
        service->waitForState(SERVICE_RUNNING);
        stopError = service->control(SERVICE_CONTROL_STOP);
        serviceAskedToStop = service->waitForState(SERVICE_STOP_PENDING);
        for (const tWaitingHost& host : interrupted) host.process.interrupt();

        statusOfTwo = preparedStatus(*two);
        statusOfSeven = preparedStatus(*seven);
    }

    static void TearDownTestSuite() {
        service.reset();
        interrupted.clear();
        two.reset();
        seven.reset();
        stage.reset();
    }

    static void launchHosts(const tPath& withoutFramework) {
        launch(withoutFramework, 0, 0, [](auto... paths) { seven.emplace(paths...); });
        waitFor("the first status file", [] { return std::filesystem::exists(tStatusFile::path()); });
        launch(stage->executable(), 1, 2, [](auto... paths) { two.emplace(paths...); });
        for (int step = 1; step <= 5; ++step) {
            launch(stage->executable(), step, 1, [](auto... paths) { interrupted.emplace_back(paths...); });
        }
        waitForFirstAttempt(*two);
        for (const tWaitingHost& host : interrupted) waitForFirstAttempt(host);
    }

    /// Has a host made in which that step fails on the first so many attempts.
    template <class Make>
    static void launch(const tPath& executable, int failingStep, int failingAttempts, Make make) {
        const std::wstring name = std::to_wstring(failingStep) + L"." + std::to_wstring(failingAttempts);
        const tPath calls = stage->root() / (L"calls." + name);
        const tPath report = stage->root() / (L"report." + name);
        const tEnvironmentVariable step(L"ZUSYSAPI_FAIL_STEP", std::to_wstring(failingStep));
        const tEnvironmentVariable attempts(L"ZUSYSAPI_FAIL_ATTEMPTS", std::to_wstring(failingAttempts));
        const tEnvironmentVariable reportVariable(L"ZUSYSAPI_REPORT", report.native());
        const tEnvironmentVariable callsVariable(L"TEST_PLUGIN_LOG", calls.native());
        make(executable, calls, report);
    }

    static void waitForFirstAttempt(const tWaitingHost& host) {
        waitFor("the first attempt", [&] { return hasLoaded(host.process.handle(), L"zusysapi.dll"); });
    }

    /// The status file when the host has come to the start of its plug-in.
    static tStatusFile preparedStatus(const tWaitingHost& host) {
        waitFor(
            "the start of the plug-in", [&] { return readFile(host.calls).ends_with("InitWaits\n"); }, 120s);
        tStatusFile status;
        waitFor("the status file", [&] { return !(status = tStatusFile::read()).bytes.empty(); });
        return status;
    }

    static inline std::optional<tStage> stage;
    static inline std::optional<tWaitingHost> seven;         // all attempts fail: there is no framework to be found
    static inline std::optional<tWaitingHost> two;           // the first two
    static inline std::list<tWaitingHost> interrupted;       // the first one, each in another step; Ctrl+C meanwhile
    static inline std::optional<tInstalledService> service;  // as the first, and told to stop meanwhile
    static inline DWORD stopError;
    static inline tServiceStatus serviceAskedToStop;
    static inline tStatusFile statusOfTwo;
    static inline tStatusFile statusOfSeven;
};

TEST_F(DeploymentRetries, GoOnUntilTheFrameworkAnswers) {
    EXPECT_EQ(statusOfTwo.initTime.value_or(0) / 10000, 2u);
    EXPECT_EQ(statusOfTwo.allowed, "0xffffffff");
    EXPECT_EQ(statusOfTwo.messages, "");
}

TEST_F(DeploymentRetries, EndAfterTheSeventhAndLeaveDeploymentAllowed) {
    EXPECT_EQ(statusOfSeven.initTime.value_or(0) / 10000, 7u);
    EXPECT_EQ(statusOfSeven.allowed, "0xffffffff");
    EXPECT_EQ(statusOfSeven.messages, "Cannot init system framework\n");
}

TEST_F(DeploymentRetries, AFailedAttemptKeepsNoReferenceWhicheverStepFails) {
    EXPECT_EQ(interrupted.size(), 5u);
    for (const tWaitingHost& host : interrupted) {
        host.process.exitCode();
        EXPECT_EQ(readFile(host.report), "zusysapi: 0 references held\n") << host.report;
    }
}

TEST_F(DeploymentRetries, AnInterruptMeanwhileTakesEffectOnceThePluginsHaveStarted) {
    for (const tWaitingHost& host : interrupted) {
        host.process.exitCode();
        EXPECT_EQ(readFile(host.calls), "A loads\nA InitWaits\nA StopOk\nA CleanupOk\nA unloads\n") << host.calls;
    }
}

TEST_F(DeploymentRetries, AServiceToldToStopMeanwhileSaysSoAtOnceAndStopsAfterTheLast) {
    EXPECT_EQ(stopError, 0u);
    EXPECT_EQ(serviceAskedToStop, (tServiceStatus{16, SERVICE_STOP_PENDING, 0, 0, 0, 1, 5000}));
    EXPECT_EQ(service->waitForEnd(120s), (tServiceStatus{16, SERVICE_STOPPED, 0, 0, 0, 0, 0}));
}

}  // namespace
}  // namespace endtoend
