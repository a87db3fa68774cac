#include "tool/install/plan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/unit/tool/fakeMachine.h"

namespace {

using namespace nInstall;
using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

constexpr const char* shared = R"(C:\Program Files\Common Files\Corvell)";
constexpr const char* commandLine = R"("C:\Program Files\Corvell\Ziptra Remote Service\zuZiptraRemoteService.exe")";
const std::string access(folderAccess);
const std::string statusFolder = R"(C:\ProgramData\Corvell)";
const std::string statusFile = statusFolder + R"(\zuZiptraRemoteService.status)";
const std::string temporaryFile = statusFolder + R"(\.zuZiptraRemoteService.status.tmp)";

class nInstallPlan : public testing::Test {
protected:
    std::vector<tStep> planFor(const tRequest& request) const { return plan(request, fake.machine); }
    void install(const tRequest& request = tRequest{}) { fake.perform(planFor(request)); }

    /// Returns why there is no plan.
    std::string refusal(const tRequest& request) {
        try {
            static_cast<void>(planFor(request));
        } catch (const tCannot& reason) {
            return reason.what();
        }
        return {};
    }

    support::tFakeMachine fake;
};

TEST_F(nInstallPlan, CreatesFoldersThenTheServiceThenTheRegistryValueAndStartsIt) {
    EXPECT_THAT(
        planFor(tRequest{}),
        ElementsAre(
            tStep{tAction::createFolder, shared, access},
            tStep{tAction::createFolder, std::string(shared) + R"(\ZiptraRemoteService)", access},
            tStep{tAction::createFolder, std::string(shared) + R"(\ZiptraRemoteService\plugins)", access},
            tStep{tAction::createFolder, R"(C:\ProgramData\Corvell)", access},
            tStep{tAction::createService, commandLine, "auto"}, tStep{tAction::setDelayed, "", "delayed-auto"},
            tStep{tAction::setRecovery}, tStep{tAction::setRecoveryOnError}, tStep{tAction::setDescription},
            tStep{tAction::setRegistryValue, std::string(parametersKey), shared, "InstalledSharedDirectory", "REG_SZ"},
            tStep{tAction::setRegistryValue, std::string(sharedDirectoryKey), shared, "ZUSHAREDDIR64", "REG_SZ"},
            tStep{tAction::startService}));
}

TEST_F(nInstallPlan, IsEmptyTheSecondTime) {
    for (const char* const start : {"auto", "delayed", "demand"}) {
        const tRequest request{tKind::install, start, "D:\\Shared", "D:\\Dumps"};
        install(request);
        EXPECT_THAT(planFor(request), IsEmpty()) << start;
    }
}

TEST_F(nInstallPlan, SetsWhatDiffersOnAServiceThatExists) {
    install();
    fake.machine.service = tService{"C:\\Program Files\\x.exe", "", false, false, "disabled", false, "", false, "old"};
    EXPECT_THAT(planFor(tRequest{}),
                ElementsAre(tStep{tAction::setCommandLine, commandLine}, tStep{tAction::setStart, "", "auto"},
                            tStep{tAction::setDelayed, "", "delayed-auto"}, tStep{tAction::setRecovery},
                            tStep{tAction::setRecoveryOnError}, tStep{tAction::setDescription}));
}

TEST_F(nInstallPlan, LeavesSettingsAloneThatTheSystemDoesNotHave) {
    install();
    fake.machine.service->delayed.reset();
    fake.machine.service->recovery.reset();
    fake.machine.service->recoveryOnError.reset();
    EXPECT_THAT(planFor(tRequest{}), IsEmpty());
}

TEST_F(nInstallPlan, StartsWithTheSystemAtOnceIfAskedTo) {
    install();
    EXPECT_THAT(planFor(tRequest{tKind::install, "auto"}), ElementsAre(tStep{tAction::setDelayed, "", "auto"}));
}

TEST_F(nInstallPlan, DoesNotCareAboutTheDelayOfAServiceThatStartsOnDemand) {
    install();
    EXPECT_THAT(planFor(tRequest{tKind::install, "demand"}), ElementsAre(tStep{tAction::setStart, "", "demand"}));
}

TEST_F(nInstallPlan, CreatesEveryMissingFolderOnTheWay) {
    EXPECT_THAT(
        planFor(tRequest{tKind::install, "delayed", "D:/a/b\\"}),
        IsSupersetOf({tStep{tAction::createFolder, "D:\\a", access}, tStep{tAction::createFolder, "D:\\a\\b", access},
                      tStep{tAction::createFolder, "D:\\a\\b\\ZiptraRemoteService\\plugins", access}}));
}

TEST_F(nInstallPlan, TakesTheSharedDirectoryOfTheMachineAndKeepsTheValue) {
    fake.setValue(sharedDirectoryKey, sharedDirectoryValue, "D:\\\xE5\x85\xB1\xE4\xBA\xAB \\");
    fake.folders["D:\\\xE5\x85\xB1\xE4\xBA\xAB"] = tFolder::exposed;  // not ours: other programs share it
    const std::vector<tStep> steps = planFor(tRequest{tKind::install, "delayed", "d:\\\xE5\x85\xB1\xE4\xBA\xAB"});
    EXPECT_EQ(steps.front(),
              (tStep{tAction::createFolder, "D:\\\xE5\x85\xB1\xE4\xBA\xAB\\ZiptraRemoteService", access}));
    for (const tStep& step : steps) {
        EXPECT_NE(step.action, tAction::setRegistryValue);
        EXPECT_NE(step.action, tAction::setAccess);
    }
}

TEST_F(nInstallPlan, RefusesToChangeTheSharedDirectoryOfTheMachine) {
    fake.setValue(sharedDirectoryKey, sharedDirectoryValue, "D:\\Shared");
    EXPECT_EQ(
        refusal(tRequest{tKind::install, "delayed", "E:\\Shared"}),
        "The shared directory of this machine is D:\\Shared, which other programs may use: leave out --shared-dir, "
        "or change ZUSHAREDDIR64 first");
}

TEST_F(nInstallPlan, RefusesPathsThatAreNoFoldersOnADrive) {
    for (const char* const path :
         {"D:", "D:\\", "Shared", R"(\\server\share)", "D:Shared", "", " ", "\\Shared", "D:\\x\\.."}) {
        fake.setValue(sharedDirectoryKey, sharedDirectoryValue, path);
        EXPECT_THAT(refusal(tRequest{}), HasSubstr("The registry value ZUSHAREDDIR64, \"")) << path;
    }
    fake.values.clear();
    EXPECT_EQ(refusal(tRequest{tKind::install, "delayed", "Shared"}),
              "The argument of --shared-dir, \"Shared\", is not the full path of a folder on a drive");
    EXPECT_EQ(refusal(tRequest{tKind::install, "delayed", "", "D:\\"}),
              "The argument of --crash-dumps, \"D:\\\", is not the full path of a folder on a drive");
}

TEST_F(nInstallPlan, CreatesEachFolderOfAPathWithRepeatedSeparatorsOnce) {
    const std::vector<tStep> steps = planFor(tRequest{tKind::install, "delayed", "", "D:/Dumps\\\\.\\x\\..\\Service"});
    std::vector<std::string> folders;
    for (const tStep& step : steps) {
        if (step.action == tAction::createFolder && step.target.starts_with("D:")) folders.push_back(step.target);
    }
    EXPECT_THAT(folders, ElementsAre(R"(D:\Dumps)", R"(D:\Dumps\Service)"));
    EXPECT_THAT(steps, testing::Contains(tStep{tAction::setRegistryValue, std::string(dumpsKey), R"(D:\Dumps\Service)",
                                               "DumpFolder", "REG_EXPAND_SZ"}));
}

TEST_F(nInstallPlan, RefusesAPathInWhichWindowsWouldReplaceAVariable) {
    constexpr const char* reason = " contains '%' twice, between which Windows would look for the name of a variable";
    EXPECT_EQ(refusal(tRequest{tKind::install, "delayed", "", "D:\\%OS%"}), R"(D:\%OS%)" + std::string(reason));
    EXPECT_EQ(refusal(tRequest{tKind::install, "delayed", "", "D:\\100%"}), "");
    fake.machine.program = R"(C:\%OS%\zuZiptraRemoteService.exe)";
    EXPECT_EQ(refusal(tRequest{}), fake.machine.program + reason);
}

TEST_F(nInstallPlan, SetsTheAccessListsOfItsFoldersThatOthersCanChange) {
    install();
    fake.folders[R"(C:\ProgramData\Corvell)"] = tFolder::exposed;
    EXPECT_THAT(planFor(tRequest{}), ElementsAre(tStep{tAction::setAccess, R"(C:\ProgramData\Corvell)", access}));
}

TEST_F(nInstallPlan, DeletesTheStatusFileIfOthersCanChangeItOrItsFolderAfterTheyNoLongerCan) {
    install();
    fake.machine.service->stopped = true;
    for (const tKind kind : {tKind::install, tKind::repair}) {
        fake.files[statusFile] = tFile::good;
        fake.folders[statusFolder] = tFolder::exposed;
        const std::vector<tStep> steps = planFor(tRequest{kind});
        const auto set = std::find(steps.begin(), steps.end(), tStep{tAction::setAccess, statusFolder, access});
        ASSERT_NE(set, steps.end());
        EXPECT_EQ(set[1], (tStep{tAction::deleteFile, statusFile}));
        fake.folders[statusFolder] = tFolder::good;
        EXPECT_THAT(planFor(tRequest{kind}), Not(Contains(Field(&tStep::action, tAction::deleteFile))));
        fake.files[statusFile] = tFile::exposed;
        EXPECT_THAT(planFor(tRequest{kind}), Contains(tStep{tAction::deleteFile, statusFile}));
    }
}

TEST_F(nInstallPlan, AlwaysDeletesTheTemporaryFileBecauseALinkToAGoodFileLooksGood) {
    install();
    for (const tKind kind : {tKind::install, tKind::repair}) {
        for (const tFile state : {tFile::good, tFile::exposed}) {
            fake.files = {{statusFile, tFile::good}, {temporaryFile, state}};
            EXPECT_EQ(planFor(tRequest{kind}).back(), (tStep{tAction::deleteFile, temporaryFile}));
        }
    }
    fake.perform(planFor(tRequest{}));
    EXPECT_THAT(planFor(tRequest{}), IsEmpty());
}

TEST_F(nInstallPlan, SaysThatOnlyARestartBringsBackTheStatusFileOfARunningService) {
    install();
    fake.files[statusFile] = tFile::exposed;
    EXPECT_THAT(planFor(tRequest{}),
                ElementsAre(tStep{tAction::deleteFile, statusFile, "restart the service, which then writes it again"}));
}

TEST_F(nInstallPlan, RefusesAFolderInPlaceOfAFileOfTheService) {
    for (const std::string& file : {statusFile, temporaryFile}) {
        fake.files = {{file, tFile::folder}};
        EXPECT_EQ(refusal(tRequest{}), file + " is a folder, but should be a file: remove it first");
    }
}

TEST_F(nInstallPlan, RefusesALinkOrAFileInPlaceOfAFolderOfItsOwn) {
    fake.folders[R"(C:\ProgramData\Corvell)"] = tFolder::link;
    EXPECT_EQ(refusal(tRequest{}), R"(C:\ProgramData\Corvell is a link to another folder: remove it first)");
    fake.folders[R"(C:\ProgramData\Corvell)"] = tFolder::noFolder;
    EXPECT_EQ(refusal(tRequest{}), R"(C:\ProgramData\Corvell is a file, but should be a folder)");
}

TEST_F(nInstallPlan, AcceptsASharedDirectoryThatIsALink) {
    fake.folders[shared] = tFolder::link;
    EXPECT_EQ(refusal(tRequest{}), "");
}

TEST_F(nInstallPlan, LetsWindowsStoreCrashDumpsWhereUsersCannotReadThem) {
    install();
    const std::string key(dumpsKey);
    EXPECT_THAT(planFor(tRequest{tKind::install, "delayed", "", "D:\\Dumps"}),
                ElementsAre(tStep{tAction::createFolder, "D:\\Dumps", std::string(dumpsAccess)},
                            tStep{tAction::setRegistryValue, key, "D:\\Dumps", "DumpFolder", "REG_EXPAND_SZ"},
                            tStep{tAction::setRegistryValue, key, "10", "DumpCount", "REG_DWORD"},
                            tStep{tAction::setRegistryValue, key, "1", "DumpType", "REG_DWORD"}));
}

TEST_F(nInstallPlan, RefusesAFolderForCrashDumpsThatUsersMayHaveMade) {
    fake.folders["D:\\Dumps"] = tFolder::exposed;
    const tRequest request{tKind::install, "delayed", "", "D:\\Dumps"};
    EXPECT_EQ(refusal(request),
              "Others than administrators can change the folder D:\\Dumps, and could read the dumps: name a new one");
    fake.folders["D:\\Dumps"] = tFolder::link;
    EXPECT_EQ(refusal(request), "D:\\Dumps is a link to another folder: name a new one");
    fake.folders["D:\\Dumps"] = tFolder::good;
    EXPECT_THAT(planFor(request), testing::Not(IsEmpty()));
}

TEST_F(nInstallPlan, RefusesWithoutTheProgram) {
    fake.machine.programExists = false;
    EXPECT_EQ(refusal(tRequest{}),
              R"(There is no C:\Program Files\Corvell\Ziptra Remote Service\zuZiptraRemoteService.exe, )"
              "which the service would run");
}

TEST_F(nInstallPlan, RefusesAProgramThatTheSystemCannotReachWhenItStarts) {
    fake.machine.program = R"(\\server\share\zuZiptraRemoteService.exe)";
    EXPECT_EQ(refusal(tRequest{}), R"(\\server\share\zuZiptraRemoteService.exe is on another machine: )"
                                   "copy it to a drive of this one first");
}

TEST_F(nInstallPlan, RefusesAServiceThatIsBeingDeletedOrRunsAnotherProgram) {
    install();
    fake.machine.service->otherProgram = "D:\\other.exe";
    for (const tKind kind : {tKind::install, tKind::repair, tKind::uninstall}) {
        EXPECT_EQ(
            refusal(tRequest{kind}),
            "The service zuZiptraRemoteService runs another program, D:\\other.exe: use the 'ziptra' beside that");
    }
    fake.machine.service->beingDeleted = true;
    for (const tKind kind : {tKind::install, tKind::repair, tKind::uninstall}) {
        EXPECT_EQ(refusal(tRequest{kind}),
                  "The service zuZiptraRemoteService is marked for deletion (1072): close the programs that show "
                  "services, such as services.msc, or restart Windows");
    }
}

TEST_F(nInstallPlan, OfARepairNeedsTheService) {
    EXPECT_EQ(refusal(tRequest{tKind::repair}),
              "There is no service zuZiptraRemoteService: 'ziptra install' creates it");
}

TEST_F(nInstallPlan, OfARepairAlwaysSetsTheAccessListsAndDoesNotStartTheService) {
    install();
    fake.machine.service->stopped = true;
    EXPECT_THAT(planFor(tRequest{tKind::repair}),
                ElementsAre(tStep{tAction::setAccess, std::string(shared) + R"(\ZiptraRemoteService)", access},
                            tStep{tAction::setAccess, std::string(shared) + R"(\ZiptraRemoteService\plugins)", access},
                            tStep{tAction::setAccess, R"(C:\ProgramData\Corvell)", access}));
}

const tStep deleteStatus{tAction::deleteFile, statusFile};
const tStep deleteTemporary{tAction::deleteFile, temporaryFile};
const tStep deleteStatusFolder{tAction::deleteFolder, statusFolder};

TEST_F(nInstallPlan, OfAnUninstallUndoesTheInstallButKeepsDescriptions) {
    install(tRequest{tKind::install, "delayed", "", "D:\\Dumps"});
    fake.machine.hasDumpsKey = true;
    fake.machine.statusFiles = {"zuZiptraRemoteService.status", ".zuZiptraRemoteService.status.tmp"};
    const std::vector<tStep> steps = planFor(tRequest{tKind::uninstall});
    EXPECT_THAT(steps,
                ElementsAre(tStep{tAction::stopService}, deleteStatus, deleteTemporary,
                            tStep{tAction::deleteRegistryValue, std::string(sharedDirectoryKey), "", "ZUSHAREDDIR64"},
                            tStep{tAction::deleteService}, tStep{tAction::deleteRegistryKey, std::string(dumpsKey)},
                            deleteStatusFolder));
    fake.perform(steps);
    EXPECT_THAT(planFor(tRequest{tKind::uninstall}), IsEmpty());
}

TEST_F(nInstallPlan, OfAnUninstallKeepsASharedDirectoryThatItHasNotSet) {
    fake.setValue(sharedDirectoryKey, sharedDirectoryValue, "D:\\Shared");
    install();
    fake.machine.service->stopped = true;
    EXPECT_THAT(planFor(tRequest{tKind::uninstall}), ElementsAre(tStep{tAction::deleteService}, deleteStatusFolder));
    fake.setValue(parametersKey, installedValue, "D:\\Before");  // somebody has changed it since
    EXPECT_THAT(planFor(tRequest{tKind::uninstall}), testing::SizeIs(2));
}

TEST_F(nInstallPlan, OfAnUninstallExpectsARunningServiceToWriteItsFilesWhenItStops) {
    install();
    fake.values.clear();
    EXPECT_THAT(planFor(tRequest{tKind::uninstall}),
                ElementsAre(tStep{tAction::stopService}, deleteStatus, deleteTemporary, tStep{tAction::deleteService},
                            deleteStatusFolder));
    fake.folders.erase(statusFolder);
    EXPECT_THAT(planFor(tRequest{tKind::uninstall}),
                ElementsAre(tStep{tAction::stopService}, tStep{tAction::deleteService}));
}

TEST_F(nInstallPlan, OfAnUninstallKeepsAFolderThatHasTheNameOfTheStatusFile) {
    install();
    fake.machine.service->stopped = true;
    fake.values.clear();
    fake.machine.statusFiles = {"zuZiptraRemoteService.status"};
    fake.files[statusFile] = tFile::folder;
    EXPECT_THAT(planFor(tRequest{tKind::uninstall}), ElementsAre(tStep{tAction::deleteService}));
}

TEST_F(nInstallPlan, OfAnUninstallKeepsAStatusFolderInWhichSomethingElseIs) {
    install();
    fake.machine.service->stopped = true;
    fake.values.clear();
    fake.machine.statusFiles = {"notes.txt", "zuZiptraRemoteService.status"};
    EXPECT_THAT(planFor(tRequest{tKind::uninstall}), ElementsAre(deleteStatus, tStep{tAction::deleteService}));
    fake.machine.statusFiles.clear();
    fake.folders[statusFolder] = tFolder::link;
    EXPECT_THAT(planFor(tRequest{tKind::uninstall}), ElementsAre(tStep{tAction::deleteService}));
}

TEST(nInstallProgramOf, FindsTheProgramInACommandLine) {
    EXPECT_EQ(programOf(R"("C:\a b\x.exe" -k "y")"), R"(C:\a b\x.exe)");
    EXPECT_EQ(programOf(R"(C:\a b\x.EXE -k)"), R"(C:\a b\x.EXE)");
    EXPECT_EQ(programOf(R"(C:\a.exe.d\x.exe)"), R"(C:\a.exe.d\x.exe)");
    EXPECT_EQ(programOf(R"(C:\x y)"), R"(C:\x.exe)");
    EXPECT_EQ(programOf(R"("C:\x y)"), R"(C:\x y.exe)");
    EXPECT_EQ(programOf(R"("C:\a.b\x" -k)"), R"(C:\a.b\x.exe)");
    EXPECT_EQ(programOf(R"("C:\x.com")"), R"(C:\x.com)");
    EXPECT_EQ(programOf("x"), "x.exe");
    EXPECT_EQ(programOf(""), "");
    EXPECT_EQ(programOf("\""), "");
    EXPECT_EQ(programOf("\"\" \"x\""), "");
}

}  // namespace
