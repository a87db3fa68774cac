#include <gmock/gmock.h>

#include <optional>

#include "tests/endtoend/harness/process.h"
#include "tests/endtoend/harness/registry.h"
#include "tests/endtoend/harness/service.h"
#include "tests/endtoend/harness/starts.h"
#include "tests/endtoend/harness/statusFile.h"

namespace endtoend {
namespace {

using testing::HasSubstr;

struct tRun {
    DWORD exitCode;
    std::string output;
    std::string errors;
};

/// What the manager knows about the service.
struct tConfiguration {
    std::wstring commandLine;
    std::wstring displayName;
    std::wstring description;
    DWORD start;
};

/// The product and its tool in a folder whose name has blanks and letters of another language, on a machine on which
/// they have not been installed.
class installation : public testing::Test {
protected:
    installation() {
        registry::removeKey();
        std::filesystem::create_directories(folder());
        for (const wchar_t* const name : {L"ziptra.exe", L"zuZiptraRemoteService.exe", L"zusysapi.dll"}) {
            std::filesystem::copy_file(ownExecutable().parent_path() / name, folder() / name);
        }
    }
    ~installation() override {
        ziptra(L"uninstall");
        std::filesystem::remove_all(makerFolder());
        registry::removeKey();
    }

    [[nodiscard]] tPath folder() const { return directory_.path() / L"Program Files 插件"; }
    [[nodiscard]] tPath shared() const { return directory_.path() / L"共享 dir"; }
    [[nodiscard]] tPath plugins() const { return shared() / L"ZiptraRemoteService" / L"plugins"; }
    [[nodiscard]] std::wstring commandLine() const {
        return L'"' + (folder() / L"zuZiptraRemoteService.exe").native() + L'"';
    }

    tRun ziptra(const std::wstring& arguments) const {
        const tProcess process(folder() / L"ziptra.exe", L"ziptra " + arguments);
        const DWORD exitCode = process.exitCode(std::chrono::minutes(1));
        return {exitCode, process.output(), process.errors()};
    }

    /// Installs with the shared directory of this test.
    [[nodiscard]] tRun install() const {
        tRun run{};
        requireStart("ziptra install", [&] {
            run = ziptra(L"install --shared-dir \"" + shared().native() + L"\"");
            const bool repeat = run.errors.find("(1359)") != std::string::npos;
            SetLastError(repeat ? ERROR_INTERNAL_ERROR : NO_ERROR);
            return repeat ? FALSE : TRUE;
        });
        return run;
    }

    static tServiceHandle open(DWORD access) {
        const tServiceHandle manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_CONNECT));
        return tServiceHandle(OpenServiceW(manager.get(), productService, access));
    }

    static DWORD state() {
        SERVICE_STATUS status{};
        require(QueryServiceStatus(open(SERVICE_QUERY_STATUS).get(), &status) != FALSE, "QueryServiceStatus");
        return status.dwCurrentState;
    }

    static tConfiguration configuration() {
        const tServiceHandle service = open(SERVICE_QUERY_CONFIG);
        alignas(8) BYTE config[8192];
        alignas(8) BYTE text[8192];
        DWORD needed = 0;
        auto* const known = reinterpret_cast<QUERY_SERVICE_CONFIGW*>(config);
        require(QueryServiceConfigW(service.get(), known, sizeof config, &needed) != FALSE, "QueryServiceConfigW");
        require(QueryServiceConfig2W(service.get(), SERVICE_CONFIG_DESCRIPTION, text, sizeof text, &needed) != FALSE,
                "QueryServiceConfig2W");
        const wchar_t* const description = reinterpret_cast<SERVICE_DESCRIPTIONW*>(text)->lpDescription;
        return {known->lpBinaryPathName, known->lpDisplayName, description == nullptr ? L"" : description,
                known->dwStartType};
    }

    tTemporaryDirectory directory_;
};

TEST_F(installation, StartsAQuotedServiceOnceAndChangesNothingTheSecondTime) {
    const tRun first = install();
    EXPECT_EQ(first.exitCode, 0U) << first.errors;
    EXPECT_THAT(first.output, HasSubstr("Created the service zuZiptraRemoteService: " + utf8(commandLine()) + '\n'));
    EXPECT_EQ(state(), DWORD{SERVICE_RUNNING});
    const tConfiguration found = configuration();
    EXPECT_EQ(found.commandLine, commandLine());
    EXPECT_EQ(found.displayName, L"ZU-Ziptra Remote Service");
    EXPECT_THAT(utf8(found.description), HasSubstr("plug-ins"));
    EXPECT_EQ(found.start, DWORD{SERVICE_AUTO_START});
    EXPECT_TRUE(std::filesystem::is_directory(plugins()));
    EXPECT_TRUE(registry::hasSharedDirectory());
    EXPECT_TRUE(becomesTrue([] { return std::filesystem::exists(tStatusFile::path()); }));

    const tRun second = install();
    EXPECT_EQ(second.exitCode, 0U) << second.errors;
    EXPECT_EQ(second.output, "Nothing to do: everything is as requested\n");
}

TEST_F(installation, IsRepairedWithoutAStart) {
    EXPECT_EQ(install().exitCode, 0U);
    const std::wstring unquoted = commandLine().substr(1, commandLine().size() - 2);
    require(
        ChangeServiceConfigW(open(SERVICE_CHANGE_CONFIG).get(), SERVICE_NO_CHANGE, SERVICE_DISABLED, SERVICE_NO_CHANGE,
                             unquoted.c_str(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr) != FALSE,
        "ChangeServiceConfigW");
    std::filesystem::remove_all(shared());
    const tRun run = ziptra(L"repair --start demand");
    EXPECT_EQ(run.exitCode, 0U) << run.errors;
    EXPECT_EQ(configuration().commandLine, commandLine());
    EXPECT_EQ(configuration().start, DWORD{SERVICE_DEMAND_START});
    EXPECT_TRUE(std::filesystem::is_directory(plugins()));
}

TEST_F(installation, IsRemovedWithoutTheDescriptions) {
    EXPECT_EQ(install().exitCode, 0U);
    writeFile(plugins() / L"a.ini", "[Service]\n");
    const tRun run = ziptra(L"uninstall");
    EXPECT_EQ(run.exitCode, 0U) << run.errors;
    EXPECT_TRUE(becomesTrue([] { return !tInstalledService::installed(); }));
    EXPECT_FALSE(registry::hasSharedDirectory());
    EXPECT_FALSE(std::filesystem::exists(makerFolder()));
    EXPECT_EQ(readFile(plugins() / L"a.ini"), "[Service]\n");
    EXPECT_EQ(ziptra(L"uninstall").output, "Nothing to do: everything is as requested\n");
}

TEST_F(installation, IsRefusedWhileTheServiceRunsAnotherProgram) {
    const tInstalledService other(ownExecutable());
    for (const wchar_t* const command : {L"install", L"repair", L"uninstall"}) {
        const tRun run = ziptra(command);
        EXPECT_EQ(run.exitCode, 2U);
        EXPECT_EQ(run.output, "");
        EXPECT_EQ(run.errors, "ziptra: The service zuZiptraRemoteService runs another program, " +
                                  utf8Path(ownExecutable()) + ": use the 'ziptra' beside that\n");
    }
    EXPECT_EQ(configuration().commandLine, L'"' + ownExecutable().native() + L'"');
    EXPECT_FALSE(registry::hasSharedDirectory());
    EXPECT_FALSE(std::filesystem::exists(makerFolder()));
}

/// Lets everyone write to a file or folder. Wine derives access lists from the modes of files and does not set them.
void letEveryoneWrite(const tPath& path) {
    if (!isWine()) {
        const tProcess icacls(L"C:\\Windows\\System32\\icacls.exe",
                              L"icacls \"" + path.native() + L"\" /grant *S-1-1-0:M");
        EXPECT_EQ(icacls.exitCode(), 0U);
        return;
    }
    using tUnixName = char*(CDECL*)(const wchar_t*);
    const auto unixName = reinterpret_cast<tUnixName>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
    const std::string name = unixName(path.c_str());
    const tProcess chmod(L"\\\\?\\unix\\bin\\chmod", L"chmod o+w \"" + wide(name) + L"\"");
}

TEST_F(installation, IsAuditedByWhatOthersCanWrite) {
    EXPECT_EQ(install().exitCode, 0U);
    const tPath library = shared() / L"库.dll";
    writeFile(library, "library");
    writeFile(plugins() / L"a.ini", "[Service]\nName=A\nPath=" + utf8Path(library) + "\n");
    const tRun nothing = ziptra(L"audit");
    EXPECT_EQ(nothing.exitCode, 0U) << nothing.errors;
    EXPECT_EQ(nothing.output, "Only administrators can change what the service trusts\n");

    letEveryoneWrite(plugins());
    letEveryoneWrite(library);
    tRun found{};
    EXPECT_TRUE(becomesTrue([&] {
        found = ziptra(L"audit --json");
        return found.output.find("exposed-code") != std::string::npos;
    }));
    EXPECT_EQ(found.exitCode, 1U);
    EXPECT_THAT(found.output, HasSubstr("\"message\": \"Everyone can create files, create folders"));
    EXPECT_THAT(found.output, HasSubstr("\"message\": \"Everyone can write, append"));
    EXPECT_THAT(found.output, HasSubstr("\"plugin\": \"A\""));
    EXPECT_THAT(found.output, HasSubstr("\"sid\": \"S-1-1-0\""));
}

TEST_F(installation, IsPrintedWithoutAChange) {
    const tRun run = ziptra(L"install --print");
    EXPECT_EQ(run.exitCode, 0U) << run.errors;
    EXPECT_THAT(run.output, HasSubstr("-BinaryPathName '" + utf8(commandLine()) + "'\n"));
    EXPECT_FALSE(tInstalledService::installed());
    EXPECT_FALSE(registry::hasSharedDirectory());
}

}  // namespace
}  // namespace endtoend
