#pragma once

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
    bool badFiles;  ///< beside the good ones: malformed or held by somebody else, a missing library, a refusing
                    ///< Initialize
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

/// What a life leaves behind for others to see.
struct tOutcome {
    int exitCode = 0;
    unsigned long lastError = 0;       ///< of the thread, after the last console call
    std::vector<std::string> reports;  ///< to the manager
    bool startedService = false;
    int waits = 0;
    std::string messages;
    std::uint32_t mask = 0;
    std::vector<tPlugin> plugins;
    bool statusWhole = true;    ///< whenever a reader looked, the file was an old one, a new one, or not there
    bool statusPresent = true;  ///< at the end
    bool temporaryWhole = true;
    bool statusCurrent = true;  ///< at the end it says what was written last
    std::vector<std::string> leaks;
    int wrongClosings = 0;
    std::uint32_t referencesHeld = 0;  ///< of the framework's objects
    int injected = 0;
    std::vector<tCall> calls;
    int requests = 0;  ///< for memory, where those were counted
};

/// Whole lives of the product in a machine that does what the scenario says, one after another. One at a time.
class tLives {
public:
    explicit tLives(const tScenario& scenario);
    ~tLives();
    tLives(const tLives&) = delete;
    tLives& operator=(const tLives&) = delete;

    /// One in which nothing fails.
    tOutcome live() { return live(0, 0, false); }
    /// One in which the call's nth occurrence fails (see tFaults::arm).
    tOutcome live(std::size_t call, int nth, bool forEver);
    /// One in which the nth request for memory is refused (see allocations::startFailing).
    tOutcome liveWithoutMemory(int nth, allocations::tHowLong howLong);
    [[nodiscard]] tFaults& faults() { return faults_; }

private:
    tOutcome live(const std::function<void()>& life);
    void runHost();
    void describePlugins();
    void standInForControl();
    void watch();
    void watchStatusFile();
    void lookAtStatus();
    void capture();
    void plantStatus() const;
    void releaseModules();

    tScenario scenario_;
    support::tServiceWorld world_;
    void* held_ = nullptr;  ///< of the description that somebody else has open
    tLedger ledger_;
    // In this order: the faults stand around the ledger, which stands around the control calls.
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
