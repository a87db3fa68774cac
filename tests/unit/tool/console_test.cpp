#include "tool/console.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace {

TEST(nConsole, FindsTheEndOfTheLastWholeCharacter) {
    const std::vector<std::pair<std::string, std::size_t>> rows = {
        {"", 0},
        {"a", 1},
        {"a\xC3", 1},
        {"a\xC3\xA4", 3},
        {"a\xE6\x8F", 1},
        {"\xE6\x8F\x92", 3},
        {"b\xF0\x9F\x99", 1},
        {"\xF0\x9F\x99\x82", 4},
        {"\xF0", 0},
        {"a\xC3\xC3", 2},
        // No character has so many bytes.
        {"a\x80\x80\x80\x80", 5},
        {"\x80", 1},
    };
    for (const auto& [text, size] : rows) EXPECT_EQ(nConsole::wholeCharacters(text), size) << text;
}

/// Keeps what a stream with a tBuffer writes.
struct tWrites {
    std::vector<std::string> texts;
    bool succeeds = true;

    nConsole::tBuffer::tWrite function() {
        return [this](std::string_view text) {
            texts.emplace_back(text);
            return succeeds;
        };
    }
    [[nodiscard]] std::string all() const {
        std::string text;
        for (const std::string& each : texts) text += each;
        return text;
    }
};

TEST(tBuffer, WritesWhenItIsFlushedOrDestroyed) {
    tWrites writes;
    {
        nConsole::tBuffer buffer(writes.function());
        std::ostream stream(&buffer);
        stream << "one";
        EXPECT_EQ(writes.texts.size(), 0U);
        stream << std::flush << std::flush;
        EXPECT_EQ(writes.texts, std::vector<std::string>{"one"});
        stream << "two";
    }
    EXPECT_EQ(writes.texts, (std::vector<std::string>{"one", "two"}));
}

TEST(tBuffer, CutsNoCharacterInTwo) {
    for (const std::string start : {"", "a", "aa"}) {
        std::string text = start;
        while (text.size() < 50'000) text += "插件";
        tWrites writes;
        {
            nConsole::tBuffer buffer(writes.function());
            std::ostream(&buffer) << text;
        }
        EXPECT_EQ(writes.all(), text);
        EXPECT_GT(writes.texts.size(), 2U);
        for (const std::string& each : writes.texts) EXPECT_EQ(nConsole::wholeCharacters(each), each.size());
    }
}

TEST(tBuffer, WritesWithoutAnotherCharacterToo) {
    struct tOpenBuffer : nConsole::tBuffer {
        using tBuffer::overflow;
        using tBuffer::tBuffer;
    };
    tWrites writes;
    tOpenBuffer buffer(writes.function());
    buffer.sputc('a');
    EXPECT_NE(buffer.overflow(tOpenBuffer::traits_type::eof()), tOpenBuffer::traits_type::eof());
    EXPECT_EQ(writes.texts, std::vector<std::string>{"a"});
}

TEST(tBuffer, LetsTheStreamFailIfItCannotWrite) {
    tWrites writes;
    writes.succeeds = false;
    nConsole::tBuffer buffer(writes.function());
    std::ostream flushed(&buffer);
    flushed << "one" << std::flush;
    EXPECT_FALSE(flushed);
    std::ostream filled(&buffer);
    filled << std::string(50'000, 'a');
    EXPECT_FALSE(filled);
}

TEST(tBuffer, IgnoresAnExceptionOnDestruction) {
    const auto write = [](std::string_view /*text*/) -> bool { throw std::runtime_error("no"); };
    EXPECT_NO_THROW({
        nConsole::tBuffer buffer(write);
        buffer.sputc('a');
    });
}

}  // namespace
