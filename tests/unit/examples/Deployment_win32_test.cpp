#include <gtest/gtest.h>

#include <memory>

#include "tests/unit/examples/exampleFolder.h"

namespace {

using support::eventually;
using support::tExample;
using support::tExampleFolder;

/// Starts the plug-in and those that it depends on.
class tRun {
public:
    explicit tRun(const tExampleFolder& folder)
        : settings_(folder, "Settings"), transport_(folder, "Transport"), deployment_(folder, "Deployment") {
        settings_.initialize();
        transport_.initialize();
        result = deployment_.initialize();
    }

    int result = -1;

private:
    tExample settings_;
    tExample transport_;
    tExample deployment_;
};

/// Holds a file open without sharing, so that it cannot be replaced.
class tFileInUse {
public:
    explicit tFileInUse(const std::filesystem::path& file)
        : file_(CreateFileW(file.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr)) {}
    ~tFileInUse() { CloseHandle(file_); }
    tFileInUse(const tFileInUse&) = delete;
    tFileInUse& operator=(const tFileInUse&) = delete;

private:
    HANDLE file_;
};

class DeploymentExample : public testing::Test {
protected:
    [[nodiscard]] bool applied(const std::string& name) const {
        return eventually([&] { return folder.has("data/applied/" + name); });
    }

    tExampleFolder folder;
};

TEST_F(DeploymentExample, AppliesAFileThatIsDroppedAndRecordsIt) {
    const tRun run(folder);
    EXPECT_EQ(run.result, 0);
    folder.write("data/outbox/one.cfg", "content");
    EXPECT_TRUE(applied("one.cfg"));
    EXPECT_EQ(folder.read("data/deployed/one.cfg"), "content");
    EXPECT_FALSE(folder.has("data/incoming/one.cfg"));
    EXPECT_FALSE(folder.has("data/working/one.cfg"));
    EXPECT_FALSE(folder.has("data/deployed/.one.cfg"));
}

TEST_F(DeploymentExample, AppliesAnEmptyFileAndOneOfManyPieces) {
    const std::string large(1000003, 'x');
    folder.write("data/incoming/empty", "");
    folder.write("data/incoming/large", large);
    const tRun run(folder);
    EXPECT_TRUE(applied("empty"));
    EXPECT_TRUE(applied("large"));
    EXPECT_TRUE(folder.has("data/deployed/empty"));
    EXPECT_EQ(folder.read("data/deployed/large"), large);
}

TEST_F(DeploymentExample, AppliesNoFileTwice) {
    folder.write("data/incoming/once", "content");
    {
        const tRun run(folder);
        EXPECT_TRUE(applied("once"));
    }
    remove(folder.path() / "data/deployed/once");
    folder.write("data/incoming/later", "");
    const tRun run(folder);
    EXPECT_TRUE(applied("later"));
    EXPECT_FALSE(folder.has("data/deployed/once"));
}

TEST_F(DeploymentExample, RepeatsACopyThatWasInterrupted) {
    folder.write("data/working/file", "the whole content");
    folder.write("data/deployed/.file", "the wh");
    folder.write("data/deployed/file", "the old content");
    const tRun run(folder);
    EXPECT_TRUE(applied("file"));
    EXPECT_EQ(folder.read("data/deployed/file"), "the whole content");
    EXPECT_FALSE(folder.has("data/deployed/.file"));
}

TEST_F(DeploymentExample, RecordsAFileThatWasInPlaceButNotRecorded) {
    folder.write("data/working/file", "content");
    folder.write("data/deployed/file", "content");
    const tRun run(folder);
    EXPECT_TRUE(applied("file"));
    EXPECT_EQ(folder.read("data/deployed/file"), "content");
}

TEST_F(DeploymentExample, FinishesInterruptedWorkAfterTheNextStart) {
    create_directories(folder.path() / "data/deployed");
    folder.write("data/incoming/file", "new");
    {
        const tFileInUse old(folder.path() / "data/deployed/file");
        const tRun run(folder);
        EXPECT_TRUE(eventually([this] { return folder.read("data/deployed/.file") == "new"; }));
    }
    EXPECT_EQ(folder.read("data/deployed/file"), "");
    EXPECT_TRUE(folder.has("data/working/file"));
    EXPECT_FALSE(folder.has("data/applied/file"));

    const tRun run(folder);
    EXPECT_TRUE(applied("file"));
    EXPECT_EQ(folder.read("data/deployed/file"), "new");
}

TEST_F(DeploymentExample, AppliesANewVersionOfAFileOnlyAfterTheOldOne) {
    folder.write("data/working/file", "first");
    folder.write("data/incoming/file", "second");
    folder.write("data/deployed/readme", "");
    auto busy = std::make_unique<tFileInUse>(folder.path() / "data/deployed/file");
    const tRun run(folder);
    EXPECT_TRUE(eventually([this] { return folder.read("data/deployed/.file") == "first"; }));
    EXPECT_EQ(folder.read("data/working/file"), "first");
    EXPECT_EQ(folder.read("data/incoming/file"), "second");

    busy.reset();
    EXPECT_TRUE(eventually([this] { return folder.read("data/applied/file") == "second"; }));
    EXPECT_EQ(folder.read("data/deployed/file"), "second");
}

TEST_F(DeploymentExample, AFileThatCannotBeAppliedDelaysNoOther) {
    folder.write("data/deployed/a/in the way", "");
    folder.write("data/incoming/a", "");
    folder.write("data/incoming/b", "");
    const tRun run(folder);
    EXPECT_TRUE(applied("b"));
    EXPECT_TRUE(folder.has("data/working/a"));
}

TEST_F(DeploymentExample, LeavesFilesThatAreStillBeingWritten) {
    folder.write("data/incoming/.half", "half");
    folder.write("data/incoming/whole", "");
    const tRun run(folder);
    EXPECT_TRUE(applied("whole"));
    EXPECT_TRUE(folder.has("data/incoming/.half"));
}

TEST_F(DeploymentExample, DeploysToTheFolderOfTheSettings) {
    folder.write("Settings.txt", "DeployTo=target\n");
    folder.write("data/incoming/file", "content");
    const tRun run(folder);
    EXPECT_TRUE(applied("file"));
    EXPECT_EQ(folder.read("target/file"), "content");
}

TEST_F(DeploymentExample, FailsIfItsFoldersCannotBeCreated) {
    folder.write("data/working", "a file is in the way");
    EXPECT_EQ(tRun(folder).result, -1);
}

}  // namespace
