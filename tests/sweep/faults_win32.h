#pragma once

#include <string>
#include <vector>

#include "tests/sweep/ledger_win32.h"

namespace sweep {

/// Bits for what a life may lose when a call fails; everything else must be as if nothing had happened.
namespace cost {
constexpr unsigned nothing = 0;
constexpr unsigned mode = 1;          ///< the life ends before it begins
constexpr unsigned start = 2;         ///< there is no service object
constexpr unsigned listing = 4;       ///< the run finds no plug-ins, and ends
constexpr unsigned descriptions = 8;  ///< single files are skipped, with a message
constexpr unsigned deployment = 16;   ///< the setting is not known, with a message
constexpr unsigned plugins = 32;      ///< single plug-ins do not start
constexpr unsigned unloading = 64;    ///< single libraries stay, which shows as a code or ends the run
constexpr unsigned statusFile = 128;  ///< an older file stays, or a whole temporary one
constexpr unsigned run = 256;         ///< the foreground run is skipped
constexpr unsigned waiting = 512;     ///< the run does not wait, or waits for one more request
}  // namespace cost

struct tCall {
    std::string name;
    unsigned mayCost;
    bool canFail;         ///< false for a call that returns a number and cannot fail
    int occurrences = 0;  ///< since the last arming
};

/// Wraps the stand-ins of all calls that the product makes: counts the calls, and makes chosen ones fail. One at a
/// time; the test's end removes it.
class tFaults {
public:
    explicit tFaults(tLedger& ledger);
    ~tFaults() = default;
    tFaults(const tFaults&) = delete;
    tFaults& operator=(const tFaults&) = delete;

    [[nodiscard]] const std::vector<tCall>& calls() const { return calls_; }
    /// Resets the counts and lets nothing fail.
    void disarm();
    /// Resets the counts and makes the call's nth occurrence fail, counted from 1, and all later ones if `forEver`.
    void arm(std::size_t call, int nth, bool forEver);
    [[nodiscard]] int injected() const { return injected_; }

private:
    template <class Import, class Failure>
    void row(Import& door, const char* name, unsigned mayCost, Failure failure);
    template <class Import, class Result>
    void refuses(Import& door, const char* name, unsigned mayCost, unsigned long error, Result result);
    template <class Import, class Result>
    void complains(Import& door, const char* name, unsigned mayCost, unsigned long error, Result result);
    template <class Import>
    void cannotFail(Import& door, const char* name);
    bool strikes(std::size_t call);

    void addService();
    void addProcess();
    void addPlaces();
    void addFiles();
    void addLibraries(tLedger& ledger);
    void addNumbers();

    std::vector<tCall> calls_;
    std::size_t target_ = 0;
    int nth_ = 0;
    bool forEver_ = false;
    int injected_ = 0;
    bool brokenStream_ = false;
};

}  // namespace sweep
