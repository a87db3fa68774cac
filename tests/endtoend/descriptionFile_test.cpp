#include <gmock/gmock.h>

#include "tests/endtoend/harness/stage.h"

namespace endtoend {
namespace {

/// What becomes of a description file. Another plug-in, Z, must start whatever is in it.
class DescriptionFile : public EndToEnd {
protected:
    DescriptionFile() { addPlugin("Z"); }

    [[nodiscard]] std::string description() const {
        return "[Service]\r\nName=Case\r\nPath=" + utf8Path(libraries() / L"Z.dll") + "\r\nInitialize=InitOk\r\n";
    }

    void expectRejected(std::string_view bytes) {
        describe(L"case.ini", bytes);
        const tStatusFile status = runThrough();
        EXPECT_EQ(status.names(), "Z");
        EXPECT_EQ(status.messages, rejection());
    }
    void expectAccepted(std::string_view bytes) {
        describe(L"case.ini", bytes);
        const tStatusFile status = runThrough();
        EXPECT_EQ(status.names(), "Case Z");
        EXPECT_EQ(status.messages, "");
        EXPECT_EQ(status.plugin("Case").code("InitOk"), 0);
        EXPECT_EQ(status.plugin("Case").loadedFrom, utf8Path(libraries() / L"Z.dll"));
    }

    [[nodiscard]] std::string rejection() const {
        return "Failed to parse service description file: " + utf8Path(descriptions() / L"case.ini") + "\n";
    }
};

TEST_F(DescriptionFile, DescribesAPlugin) { expectAccepted(description()); }

TEST_F(DescriptionFile, WithABlankLineAtItsEndIsRejected) { expectRejected(description() + "\r\n"); }

TEST_F(DescriptionFile, MayBeginWithAUtf8ByteOrderMark) { expectAccepted("\xEF\xBB\xBF" + description()); }

TEST_F(DescriptionFile, InUtf16IsRejected) {
    std::string bytes("\xFF\xFE", 2);
    for (const char each : description()) bytes += {each, '\0'};
    expectRejected(bytes);
}

TEST_F(DescriptionFile, ThatCannotBeOpenedIsRejected) {
    const tPath file = describe(L"case.ini", description());
    const HANDLE handle = CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(handle, INVALID_HANDLE_VALUE);
    const tHandle locked(handle);
    const tStatusFile status = runThrough();
    EXPECT_EQ(status.names(), "Z");
    EXPECT_EQ(status.messages, rejection());
}

TEST_F(DescriptionFile, MayHaveAPathOfMoreThan256Characters) {
    // Windows requires this prefix for such paths, unless the machine was told to do without.
    const tPath directory = LR"(\\?\)" + (root() / std::wstring(120, L'd')).native();
    share(directory / std::wstring(120, L'e'));
    ASSERT_GT(descriptions().native().size(), 256u);
    addPlugin("A");
    describe(L"case.ini", description());
    const tStatusFile status = runThrough();
    EXPECT_EQ(status.names(), "A Case");
    EXPECT_EQ(status.messages, "");
}

}  // namespace
}  // namespace endtoend
