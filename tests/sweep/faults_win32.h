#pragma once

#include <string>
#include <vector>

#include "tests/sweep/ledger_win32.h"

namespace sweep {

/// What a life may lose when a call fails; everything else must be as if nothing had happened. Bits.
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
    bool canFail;         ///< false for what gives a number and cannot refuse
    int occurrences = 0;  ///< since the last arming
};

/// Stands around the stand-ins of all calls that the product makes: counts them, and makes chosen ones fail. One at a
/// time; it ends with the test.
class tFaults {
public:
    explicit tFaults(tLedger& ledger);
    tFaults(const tFaults&) = delete;
    tFaults& operator=(const tFaults&) = delete;

    [[nodiscard]] const std::vector<tCall>& calls() const { return calls_; }
    /// Counts from 0 again, and lets nothing fail.
    void disarm();
    /// The same, but the call's nth occurrence fails, counted from 1, and all behind it if that is wanted.
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
