#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/allocations.h"
#include "tests/support/framework.h"
#include "tests/support/serviceWorld.h"
#include "tests/sweep/faults_win32.h"
#include "tests/sweep/ledger_win32.h"

namespace sweep {

enum class tDeployment { allowed, forbidden, failing, missing };

constexpr int noSharedDirectory = -1;  ///< in place of a number of plug-ins

struct tScenario {
    const char* name;
    bool service;  ///< under the manager; otherwise in the foreground
    int plugins;
    bool badFiles;  ///< besides the good ones: malformed or locked files, a missing library, an Initialize that
                    ///< fails
    tDeployment deployment;
};

struct tPlugin {
    std::string name;
    std::vector<std::string> dependencies;
    std::int32_t initCode;
    std::int32_t stopCode;
    std::int32_t cleanupCode;

    bool operator==(const tPlugin&) const = default;
};

/// The observable results of a life.
struct tOutcome {
    int exitCode = 0;
    unsigned long lastError = 0;       ///< of the thread, after the last console call
    std::vector<std::string> reports;  ///< to the manager
    bool startedService = false;
    int waits = 0;
    std::string messages;
    std::uint32_t mask = 0;
    std::vector<tPlugin> plugins;
    bool statusWhole = true;    ///< at every moment the file was an old one, a new one, or missing
    bool statusPresent = true;  ///< at the end
    bool temporaryWhole = true;
    bool statusCurrent = true;  ///< at the end it contains what was written last
    std::vector<std::string> leaks;
    int wrongClosings = 0;
    std::uint32_t referencesHeld = 0;  ///< of the framework's objects
    int injected = 0;
    std::vector<tCall> calls;
    int requests = 0;  ///< for memory, if counted
};

/// Null when there is none of that name.
const tPlugin* find(const std::vector<tPlugin>& plugins, const std::string& name);
/// Whether the plug-in depends on one that is missing or has failed in this life.
bool lacksADependency(const tPlugin& plugin, const tOutcome& life);
/// The reports that the manager should have received from such a life of a service.
std::vector<std::string> reportsOf(const tOutcome& life);
/// For INSTANTIATE_TEST_SUITE_P.
std::string testName(const testing::TestParamInfo<tScenario>& scenario);

/// Whole lives of the product, one after another, on a machine that the scenario describes. One at a time.
class tLives {
public:
    explicit tLives(const tScenario& scenario);
    ~tLives();
    tLives(const tLives&) = delete;
    tLives& operator=(const tLives&) = delete;

    /// Lives once without a failure.
    tOutcome live() { return live(0, 0, false); }
    /// Lives once while the call's nth occurrence fails (see tFaults::arm).
    tOutcome live(std::size_t call, int nth, bool forEver);
    /// Lives once while the nth request for memory is refused (see allocations::startFailing).
    tOutcome liveWithoutMemory(int nth, allocations::tHowLong howLong);
    [[nodiscard]] tFaults& faults() { return faults_; }

private:
    tOutcome live(const std::function<void()>& life);
    void runHost();
    void describePlugins();
    void standInForControl();
    void standInForLibraries();
    void watch();
    void watchStatusFile();
    void lookAtStatus();
    void capture();
    void plantStatus() const;
    void releaseModules();

    tScenario scenario_;
    support::tServiceWorld world_;
    void* held_ = nullptr;  ///< handle of the locked description
    tLedger ledger_;
    // The order matters: the faults wrap the ledger, which wraps the control calls.
    struct tStep {
        explicit tStep(const std::function<void()>& step) { step(); }
    };
    tStep control_;
    tStep books_;
    tFaults faults_;
    std::vector<std::string> written_;
    tOutcome outcome_;
};

}  // namespace sweep
