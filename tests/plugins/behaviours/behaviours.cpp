// One entry point for each kind of behaviour; a description selects one by its name.
//
// Each call appends "<library> <what happened>" to the file that the environment variable TEST_PLUGIN_LOG names, where
// the library is the file name without its extension. This distinguishes copies of the file under other names.
// StopWaits waits at the gate (see gate.h) with the library's own path.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>

#include "../gate.h"
#include "ownPath.h"

namespace {

std::string ownName() {
    const std::u8string name = ownPath().stem().u8string();
    return {name.begin(), name.end()};
}

void log(const char* event) {
    const char* const path = std::getenv("TEST_PLUGIN_LOG");
    if (path == nullptr) return;
    std::FILE* const file = std::fopen(path, "ab");
    if (file == nullptr) return;
    std::fprintf(file, "%s %s\n", ownName().c_str(), event);
    std::fclose(file);
}

struct tLoadLog {
    tLoadLog() { log("loads"); }
    ~tLoadLog() { log("unloads"); }
    tLoadLog(const tLoadLog&) = delete;
    tLoadLog& operator=(const tLoadLog&) = delete;
};
const tLoadLog loadLog;

/// The code that prints and destroys this exception is in this library, which must still be loaded then.
class tOwnException : public std::exception {
public:
    tOwnException() = default;
    tOwnException(const tOwnException&) = default;
    tOwnException& operator=(const tOwnException&) = default;
    ~tOwnException() override { log("destroys its exception"); }
    [[nodiscard]] const char* what() const noexcept override { return text_.c_str(); }

private:
    std::string text_ = "an exception of the library's own, with a text too long for a string's small buffer";
};

std::int32_t logged(const char* event, std::int32_t result) {
    log(event);
    return result;
}

[[noreturn]] void throwInt(const char* event) {
    log(event);
    throw 7;
}

}  // namespace

extern "C" {

std::int32_t InitOk() { return logged("InitOk", 0); }
std::int32_t InitWarning3() { return logged("InitWarning3", 3); }
std::int32_t InitFails7() { return logged("InitFails7", -7); }
std::int32_t InitThrowsOwnException() {
    log("InitThrowsOwnException");
    throw tOwnException();
}
std::int32_t InitThrowsInt() { throwInt("InitThrowsInt"); }

void StopOk() { log("StopOk"); }
std::int32_t StopReturnsMinus9() { return logged("StopReturnsMinus9", -9); }
void StopWaits() {
    log("StopWaits");
    waitAtGate(ownPath());
}
void StopThrowsInt() { throwInt("StopThrowsInt"); }

void CleanupOk() { log("CleanupOk"); }
std::int32_t CleanupReturnsMinus9() { return logged("CleanupReturnsMinus9", -9); }
void CleanupThrowsRuntimeError() {
    log("CleanupThrowsRuntimeError");
    throw std::runtime_error("an exception of the standard library");
}
void CleanupThrowsInt() { throwInt("CleanupThrowsInt"); }
}
