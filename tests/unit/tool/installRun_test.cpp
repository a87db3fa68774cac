#include "tool/install/installRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/unit/tool/fakeMachine.h"

namespace {

using namespace nInstall;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class nInstallRun : public testing::Test {
protected:
    int run(tKind kind, tOutput output = tOutput::text) {
        out.str("");
        error.str("");
        tContext context{out, error};
        const tSystem system{[this] { return fake.machine; },
                             [this](const tStep& step) {
                                 if (step.action == failing) return errorCode;
                                 fake.perform(step);
                                 return 0U;
                             },
                             [](std::uint32_t code) { return "Reason (" + std::to_string(code) + ")"; }};
        nInstall::run(tRequest{kind}, output, system, context);
        return context.exitCode;
    }

    support::tFakeMachine fake;
    tAction failing = tAction::deleteFile;  // does not occur
    std::uint32_t errorCode = 5;
    std::ostringstream out;
    std::ostringstream error;
};

TEST_F(nInstallRun, SaysWhatItHasDoneALineForEachStep) {
    EXPECT_EQ(run(tKind::install), 0);
    EXPECT_THAT(out.str(), StartsWith("Created the folder C:\\Program Files\\Common Files\\Corvell\n"));
    EXPECT_THAT(out.str(), EndsWith("\nStarted the service\n"));
    EXPECT_EQ(error.str(), "");
}

TEST_F(nInstallRun, SaysThatThereIsNothingToDo) {
    run(tKind::install);
    EXPECT_EQ(run(tKind::install), 0);
    EXPECT_EQ(out.str(), "Nothing to do: everything is as requested\n");
    EXPECT_EQ(run(tKind::install, tOutput::json), 0);
    EXPECT_EQ(out.str(), "{\n  \"schema\": 1,\n  \"steps\": [],\n  \"error\": null\n}\n");
    EXPECT_EQ(run(tKind::install, tOutput::commandLines), 0);
    EXPECT_EQ(out.str(), "");
}

TEST_F(nInstallRun, EndsAtTheFirstStepThatFailsAndKeepsWhatPrecedesIt) {
    failing = tAction::startService;
    EXPECT_EQ(run(tKind::install), 2);
    EXPECT_THAT(out.str(), EndsWith(" to C:\\Program Files\\Common Files\\Corvell\n"));
    EXPECT_EQ(error.str(),
              "ziptra: The service could not be started: Reason (5); run 'ziptra install' again to continue\n");
    failing = tAction::deleteRegistryValue;
    EXPECT_EQ(run(tKind::uninstall), 2);
    EXPECT_EQ(error.str(),
              "ziptra: ZUSHAREDDIR64 in HKLM\\SOFTWARE\\Corvell\\Common\\Installer could not be deleted: Reason (5)\n");
    EXPECT_EQ(out.str(), "");
}

TEST_F(nInstallRun, NamesTheCommandThatContinues) {
    run(tKind::install);
    fake.machine.service->description.clear();
    failing = tAction::setDescription;
    fake.machine.service->stopped = false;
    EXPECT_EQ(run(tKind::repair), 2);
    EXPECT_THAT(error.str(), EndsWith("; run 'ziptra repair' again to continue\n"));
    failing = tAction::deleteService;
    EXPECT_EQ(run(tKind::uninstall), 2);
    EXPECT_THAT(error.str(), EndsWith("; run 'ziptra uninstall' again to continue\n"));
}

TEST_F(nInstallRun, ShowsTheFailureInTheJsonDocumentToo) {
    failing = tAction::createFolder;
    EXPECT_EQ(run(tKind::install, tOutput::json), 2);
    EXPECT_EQ(out.str(),
              "{\n  \"schema\": 1,\n  \"steps\": [],\n"
              "  \"error\": \"The folder C:\\\\Program Files\\\\Common Files\\\\Corvell could not be created: Reason "
              "(5)\"\n}\n");
    EXPECT_EQ(error.str(),
              "ziptra: The folder C:\\Program Files\\Common Files\\Corvell could not be created: Reason (5)\n");
}

TEST_F(nInstallRun, ContinuesWithoutASettingThatTheSystemDoesNotHave) {
    errorCode = unknownSetting;
    failing = tAction::setDelayed;
    EXPECT_EQ(run(tKind::install), 0);
    EXPECT_THAT(out.str(), HasSubstr("The start of the service could not be set, because this system has no such "
                                     "setting\nSet the recovery actions"));
    failing = tAction::setDescription;  // every system has this one
    fake.machine.service->description.clear();
    EXPECT_EQ(run(tKind::install), 2);
}

TEST_F(nInstallRun, LeavesAFolderThatCannotBeDeleted) {
    EXPECT_EQ(run(tKind::install), 0);
    failing = tAction::deleteFolder;
    EXPECT_EQ(run(tKind::uninstall), 0);
    EXPECT_THAT(out.str(),
                EndsWith("\nThe folder C:\\ProgramData\\Corvell could not be deleted, and stays: Reason (5)\n"));
}

TEST_F(nInstallRun, PrintsThePlanInsteadOfPerformingIt) {
    EXPECT_EQ(run(tKind::install, tOutput::commandLines), 0);
    EXPECT_FALSE(fake.machine.service);
    EXPECT_THAT(out.str(), StartsWith("New-Item -ItemType Directory -Path "));
    EXPECT_THAT(out.str(), EndsWith("\nStart-Service zuZiptraRemoteService\n"));
}

}  // namespace
