#pragma once

#include <gtest/gtest.h>

#include <optional>

#include "tests/endtoend/harness/binding.h"
#include "tests/endtoend/harness/gate.h"
#include "tests/endtoend/harness/process.h"
#include "tests/endtoend/harness/registry.h"
#include "tests/endtoend/harness/service.h"
#include "tests/endtoend/harness/statusFile.h"
#include "tests/endtoend/harness/statusWrites.h"

namespace endtoend {

/// A plug-in to stage: the keys of its description, of which empty ones are left out, and the test library that it is a
/// copy of.
struct tPlugin {
    std::string dependencies{};
    std::string requires_{};
    std::string initialize = "InitOk";
    std::string stop{};
    std::string cleanup{};
    const wchar_t* library = L"behaviours.dll";
};

/// The product staged in a directory of its own, with a shared directory without plug-ins at first:
///
///   bin\       the executable, the stand-in for zusysapi.dll
///   shared\ZiptraRemoteService\plugins\       the description files
///   libraries\ the plug-in libraries, one copy for each plug-in, with its name
///
/// Each test has the machine's registry value, the maker's folder and the service name to itself, and removes them.
class tStage {
public:
    tStage();
    ~tStage();
    tStage(const tStage&) = delete;
    tStage& operator=(const tStage&) = delete;

    // Staging.
    [[nodiscard]] const tPath& root() const noexcept { return directory_.path(); }
    [[nodiscard]] tPath executable() const { return root() / L"bin" / L"zuZiptraRemoteService.exe"; }
    [[nodiscard]] tPath besideExecutable(const std::wstring& name) const { return root() / L"bin" / name; }
    [[nodiscard]] tPath descriptions() const { return shared_ / L"ZiptraRemoteService" / L"plugins"; }
    [[nodiscard]] tPath libraries() const { return root() / L"libraries"; }
    /// Makes another directory the shared one, and creates it with its plug-in directory.
    void share(const tPath& directory);
    /// Writes a description file, byte for byte, and returns its path.
    tPath describe(const std::wstring& file, std::string_view bytes) const;
    /// Copies one of the test libraries and returns the path of the copy.
    static tPath addLibrary(const tPath& target, const wchar_t* library = L"behaviours.dll");
    /// Stages a plug-in, library and description; the description file has its name.
    void addPlugin(const std::string& name, const tPlugin& plugin = {}) const;

    // Holding the host at some point of its life.
    /// In the entry point StopWaits of a staged plug-in.
    [[nodiscard]] tGate holdPlugin(const std::string& name) const { return tGate(libraries() / wide(name + ".dll")); }
    /// Has standin/scripted.cpp answer some system calls. Call it before the start, and before what needs it below.
    void scriptSystemCalls() const;
    /// Before it writes the status file for the nth time: 1 construction, 2 prepared, 3 started, 4 stopped, 5 the end.
    [[nodiscard]] tGate holdStatusWrite(int count) const;
    /// In the nth pause between two attempts to reach the framework. Scripted pauses take no time otherwise.
    [[nodiscard]] tGate holdPause(int count) const;

    // Running in the foreground.
    tProcess& start();
    /// From now on the host is started with the system's default error mode instead of this program's.
    void startWithDefaultErrorMode() { creationFlags_ = CREATE_DEFAULT_ERROR_MODE; }
    [[nodiscard]] tProcess& process() { return *process_; }
    /// Starts the host and returns the status file after all plug-ins have started.
    tStatusFile startPlugins();
    /// Sends Ctrl+C and returns the status file after the end.
    tStatusFile stop();
    /// Both of the above: returns the status file of a whole life.
    tStatusFile runThrough();
    /// Sends Ctrl+C and returns once the host's handler has finished. Requires: scriptSystemCalls.
    void interruptForSure();

    /// What the test plug-ins did in the foreground, a line each: "<plug-in> <what>".
    [[nodiscard]] std::string calls() const;

private:
    tTemporaryDirectory directory_;
    tPath shared_;
    tEnvironmentVariable callLog_;
    std::optional<tProcess> process_;
    DWORD creationFlags_ = 0;
};

/// A stage for each test.
class tEndToEnd : public testing::Test, protected tStage {};

}  // namespace endtoend
