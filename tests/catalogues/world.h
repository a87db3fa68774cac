#pragma once

#include <optional>
#include <vector>

#include "tests/catalogues/catalogue.h"
#include "tests/catalogues/comparison.h"
#include "tests/catalogues/libraries.h"
#include "tests/endtoend/harness/stage.h"

namespace catalogues {

/// What the tool printed.
struct tAnswer {
    unsigned long exitCode = 0;
    std::string output;
    std::string errors;
};

/// A machine on which directories are checked and then hosted. Wherever the host is, the tool is beside it.
///
///   bin\       the executable as it was built: for the foreground
///   scripted\  a copy of which one imported library is replaced, so that the pauses between attempts to reach the
///              framework take no time, and a service can be given environment variables
class tWorld {
public:
    tWorld();
    ~tWorld();
    tWorld(const tWorld&) = delete;
    tWorld& operator=(const tWorld&) = delete;

    [[nodiscard]] const tLibraryPaths& libraries() const noexcept { return libraries_; }
    [[nodiscard]] const endtoend::tStage& stage() const noexcept { return stage_; }

    /// Replaces the contents of the plug-in directory, and the deployment setting.
    void arrange(const tCatalogue& catalogue);

    /// Runs `ziptra check` with these options on the arranged directory.
    [[nodiscard]] tAnswer check(const tCatalogue& catalogue, const std::wstring& options = L"--json") const;

    /// Has the host run with the arranged directory until all plug-ins are started, and stops it.
    [[nodiscard]] tHosting host(const tCatalogue& catalogue);

private:
    [[nodiscard]] endtoend::tPath folder(const tCatalogue& catalogue) const;
    [[nodiscard]] endtoend::tPath callLog() const { return stage_.root() / L"calls"; }
    void prepareScripted() const;
    void setVariables(const tCatalogue& catalogue);
    tHosting hostInForeground(const endtoend::tPath& executable);
    tHosting hostAsService(const endtoend::tPath& executable);
    [[nodiscard]] tHosting result() const;

    endtoend::tStage stage_;
    tLibraryPaths libraries_;
    std::vector<endtoend::tHandle> locks_;
    std::optional<endtoend::tEnvironmentVariable> deployment_;
    std::optional<endtoend::tInstalledService> service_;
};

}  // namespace catalogues
