#include <gtest/gtest.h>

#include <memory>

#include "tests/unit/examples/exampleFolder.h"

namespace {

using support::eventually;
using support::tExample;
using support::tExampleFolder;

class TransportExample : public testing::Test {
protected:
    TransportExample() { settings.initialize(); }

    tExampleFolder folder;
    tExample settings{folder, "Settings"};
    std::unique_ptr<tExample> transport = std::make_unique<tExample>(folder, "Transport");
};

TEST_F(TransportExample, MovesFilesFromTheOutboxToIncoming) {
    EXPECT_EQ(transport->initialize(), 0);
    folder.write(u8"data/outbox/文件 one.cfg", "content");
    // For a moment after the move the file is still open in the plug-in.
    EXPECT_TRUE(eventually([this] { return folder.read(u8"data/incoming/文件 one.cfg") == "content"; }));
    EXPECT_FALSE(folder.has(u8"data/outbox/文件 one.cfg"));
}

TEST_F(TransportExample, LeavesFilesThatAreStillBeingWrittenAndFolders) {
    folder.write("data/outbox/.half", "half");
    folder.write("data/outbox/folder/file", "");
    folder.write("data/outbox/whole", "whole");
    EXPECT_EQ(transport->initialize(), 0);
    EXPECT_TRUE(eventually([this] { return folder.has("data/incoming/whole"); }));
    EXPECT_TRUE(folder.has("data/outbox/.half"));
    EXPECT_TRUE(folder.has("data/outbox/folder/file"));
}

TEST_F(TransportExample, NeverReplacesAFileThatIsStillThere) {
    folder.write("data/incoming/file", "first");
    folder.write("data/outbox/file", "second");
    folder.write("data/outbox/other", "");
    EXPECT_EQ(transport->initialize(), 0);
    EXPECT_TRUE(eventually([this] { return folder.has("data/incoming/other"); }));
    EXPECT_EQ(folder.read("data/incoming/file"), "first");
    EXPECT_EQ(folder.read("data/outbox/file"), "second");
}

TEST_F(TransportExample, DeliversNothingAfterCleanupAndCanBeUnloaded) {
    EXPECT_EQ(transport->initialize(), 0);
    transport->stop();
    transport->cleanup();
    folder.write("data/outbox/late", "");
    std::this_thread::sleep_for(std::chrono::milliseconds(700));  // it checks the outbox every 200 ms
    EXPECT_TRUE(folder.has("data/outbox/late"));
    transport.reset();
    EXPECT_EQ(GetModuleHandleW(L"Transport.dll"), nullptr);
}

TEST_F(TransportExample, ReturnsTheFolderThatItDeliversTo) {
    EXPECT_EQ(transport->initialize(), 0);
    const std::u8string expected = (folder.path() / "data/incoming").make_preferred().u8string();
    EXPECT_EQ(transport->entry<const char* (*)()>("Folder")(), std::string(expected.begin(), expected.end()));
}

TEST_F(TransportExample, UsesTheFolderOfTheSettings) {
    settings.cleanup();
    folder.write("Settings.txt", "DataFolder=elsewhere\\deeper\n");
    EXPECT_EQ(settings.initialize(), 0);
    EXPECT_EQ(transport->initialize(), 0);
    EXPECT_TRUE(folder.has("elsewhere/deeper/outbox"));
    EXPECT_FALSE(folder.has("data"));
}

TEST_F(TransportExample, FailsWithoutAThreadIfItsFoldersCannotBeCreated) {
    folder.write("data", "a file is in the way");
    EXPECT_EQ(transport->initialize(), -1);
    transport.reset();
    EXPECT_EQ(GetModuleHandleW(L"Transport.dll"), nullptr);
}

}  // namespace
