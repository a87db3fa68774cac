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

/// A plug-in in a few words: the keys of its description, of which empty ones are left out, and the test library that
/// it is made of.
struct tPlugin {
    std::string dependencies{};
    std::string requires_{};
    std::string initialize = "InitOk";
    std::string stop{};
    std::string cleanup{};
    const wchar_t* library = L"behaviours.dll";
};

/// The product staged in a directory of its own, with a shared directory that holds no plug-ins at first:
///
///   bin\       the executable, the stand-in for zusysapi.dll
///   shared\ZiptraRemoteService\plugins\       the description files
///   libraries\ the plug-in libraries, a copy for each plug-in, named like it
///
/// Each test has the machine's registry value, the maker's folder and the service name to itself, and leaves none.
class tStage {
public:
    tStage();
    ~tStage();
    tStage(const tStage&) = delete;
    tStage& operator=(const tStage&) = delete;

    // Staging.
    [[nodiscard]] const tPath& root() const noexcept { return directory_.path(); }
    [[nodiscard]] tPath executable() const { return root() / L"bin" / L"zuZiptraRemoteService.exe"; }
    [[nodiscard]] tPath descriptions() const { return shared_ / L"ZiptraRemoteService" / L"plugins"; }
    [[nodiscard]] tPath libraries() const { return root() / L"libraries"; }
    /// Makes another directory the shared one, plug-in directory included.
    void share(const tPath& directory);
    /// Writes a description file, byte for byte, and gives its path.
    tPath describe(const std::wstring& file, std::string_view bytes) const;
    /// Copies one of the test libraries and gives the path of the copy.
    tPath addLibrary(const tPath& target, const wchar_t* library = L"behaviours.dll") const;
    /// Stages a plug-in whole; its description file has its name.
    void addPlugin(const std::string& name, const tPlugin& plugin = {}) const;

    // Holding the host at some point of its life.
    /// Before the entry point of a staged plug-in that waits goes on.
    [[nodiscard]] tGate holdPlugin(const std::string& name) const { return tGate(libraries() / wide(name + ".dll")); }
    /// Binds the executable to a folder look-up that can be held or told to fail. To be called before the start.
    void bindToWaitingFolder() const;
    /// Before it writes the status file for the nth time: 1 construction, 2 prepared, 3 started, 4 stopped, 5 the end.
    [[nodiscard]] tGate holdStatusWrite(int count) const;

    // Running in the foreground.
    tProcess& start();
    [[nodiscard]] tProcess& process() { return *process_; }
    /// Starts the host and gives the status file when the start of the plug-ins is over.
    tStatusFile startPlugins();
    /// Ctrl+C, and the status file after the end.
    tStatusFile stop();
    /// From the start to the end.
    tStatusFile runThrough();

    /// What the test plug-ins did, a line each: "<plug-in> <what>". Of a service they cannot tell.
    [[nodiscard]] std::string calls() const;

private:
    tTemporaryDirectory directory_;
    tPath shared_;
    tEnvironmentVariable callLog_;
    std::optional<tProcess> process_;
};

/// A stage for each test.
class EndToEnd : public testing::Test, protected tStage {};

}  // namespace endtoend
