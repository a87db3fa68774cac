// Files of sizes that nobody writes by hand.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/iniFile.h"

namespace {

/// Longer than several blocks of the parser.
constexpr std::size_t twoMegabytes = 2'000'000;

/// The document of a text, which must be one that can be read.
class iniParserSize : public testing::Test {
protected:
    void parse(const std::string& text) {
        const tIniFile file(text);
        ASSERT_EQ(file.parseInto(document), 0);
    }

    nIni::tDocument document;
};

TEST_F(iniParserSize, LinesOfTwoMegabytesAreOneLineEach) {
    const std::string many(twoMegabytes, 'x');
    parse("[s]\nk=" + many + "\n;" + many + "\n[" + many + "\n" + many + "=v\n");
    nIni::tSection& section = document.sections.at(0);
    ASSERT_EQ(section.keys.size(), 2U);
    EXPECT_TRUE(section.keys[0].value == many);
    EXPECT_EQ(section.keys[0].line, 2);
    EXPECT_EQ(document.firstErrorLine, 4) << "a header that does not end";
    EXPECT_EQ(section.keys[1].line, 5);
    EXPECT_EQ(findKey(section, false, std::string(twoMegabytes, 'X')), &section.keys[1]);
    EXPECT_EQ(findKey(section, true, std::string(twoMegabytes, 'X')), nullptr);
}

TEST_F(iniParserSize, LinesAroundTheSizesOfChunksAndBlocksAreWhole) {
    std::string text = "[s]\n";
    std::vector<std::string> values;
    for (const std::size_t size :
         {1U, 2080U, 2083U, 2084U, 2085U, 5000U, 65535U, 65536U, 65537U, 131'072U, 300'000U, 3U}) {
        std::string value(size, 'x');
        for (std::size_t i = 0; i < size; i += 7) value[i] = static_cast<char>('a' + i % 26);
        text += "k" + std::to_string(values.size()) + "=" + value + "\r\n";
        values.push_back(value);
    }
    parse(text);
    ASSERT_EQ(document.sections.at(0).keys.size(), values.size());
    for (std::size_t i = 0; i < values.size(); ++i) EXPECT_TRUE(document.sections[0].keys[i].value == values[i]) << i;
    EXPECT_EQ(document.firstErrorLine, -1);
}

TEST_F(iniParserSize, TwoMegabytesOfBlanksAroundTextAreDropped) {
    const std::string blanks(twoMegabytes / 4, ' ');
    parse(blanks + "[" + blanks + "s" + blanks + "]\n" + blanks + "k\t=" + blanks + "v" + blanks);
    EXPECT_EQ(describe(document), "[s]@1\nk=v@2\n");
}

TEST_F(iniParserSize, TwoMegabytesOfEmptyLinesAreAllCounted) {
    parse("[s]\n" + std::string(twoMegabytes, '\n') + "k=v");
    EXPECT_EQ(describe(document), "[s]@1\nk=v@" + std::to_string(twoMegabytes + 2) + "\nerror@2\n");
}

TEST_F(iniParserSize, ManyKeysOfOneSectionAreAllFound) {
    constexpr std::int32_t count = 20'000;
    std::string text = "[s]\n";
    for (std::int32_t i = 0; i < count; ++i) text += "key" + std::to_string(i) + "=" + std::to_string(i) + "\n";
    parse(text);
    nIni::tSection& section = document.sections.at(0);
    ASSERT_EQ(section.keys.size(), count);
    for (std::int32_t i = 0; i < count; ++i) {
        nIni::tKey* const key = findKey(section, false, "KEY" + std::to_string(i));
        ASSERT_EQ(key, &section.keys[static_cast<std::size_t>(i)]);
        ASSERT_EQ(key->value, std::to_string(i));
        ASSERT_EQ(key->line, i + 2);
    }
    EXPECT_EQ(findKey(section, false, "key" + std::to_string(count)), nullptr);
}

TEST_F(iniParserSize, TheLastOfManyRepeatedKeysWinsForEachOfThem) {
    constexpr std::int32_t count = 10'000;
    std::string text = "[s]\n";
    for (int round = 0; round < 3; ++round) {
        for (std::int32_t i = 0; i < count; ++i) {
            text += "key" + std::to_string(i) + "=" + std::to_string(i + round) + "\n";
        }
    }
    parse(text);
    nIni::tSection& section = document.sections.at(0);
    ASSERT_EQ(section.keys.size(), count);
    for (std::int32_t i = 0; i < count; ++i) {
        const nIni::tKey& key = section.keys[static_cast<std::size_t>(i)];
        ASSERT_EQ(key.name, "key" + std::to_string(i));
        ASSERT_EQ(key.value, std::to_string(i + 2));
        ASSERT_EQ(key.line, 2 * count + i + 2);
        ASSERT_EQ(findKey(section, false, key.name), &key);
    }
}

TEST_F(iniParserSize, OneKeyRepeatedManyTimesIsOneKeyAndNeedsTheMemoryOfFew) {
    std::string text = "[s]\n";
    for (int i = 0; i < 50'000; ++i) text += i % 2 == 0 ? "key=even\n" : "KEY=odd\n";
    parse(text);
    EXPECT_EQ(describe(document), "[s]@1\nkey=odd@50001\n");
    EXPECT_LE(document.sections[0].keys.capacity(), 10'000U);
}

TEST_F(iniParserSize, WithoutMergingTheFirstOfManyEqualKeysIsFound) {
    document.mergeDuplicates = 0;
    std::string text = "[s]\n";
    for (int i = 0; i < 10'000; ++i) text += "a=1\nb=2\n";
    parse(text);
    nIni::tSection& section = document.sections.at(0);
    EXPECT_EQ(section.keys.size(), 20'000U);
    EXPECT_EQ(findKey(section, false, "B"), &section.keys[1]);
}

TEST_F(iniParserSize, ManySectionsAreAllFoundAndReopened) {
    constexpr std::size_t count = 10'000;
    std::string text;
    for (const char* const key : {"a", "b"}) {
        for (std::size_t i = 0; i < count; ++i) {
            const std::string number = std::to_string(i);
            text += "[section" + number + "]\n" + key + "=" + number + "\n";
        }
    }
    parse(text);
    ASSERT_EQ(document.sections.size(), count);
    for (std::size_t i = 0; i < count; ++i) {
        nIni::tSection* const section = findSection(document, "SECTION" + std::to_string(i));
        ASSERT_EQ(section, &document.sections[i]);
        ASSERT_EQ(section->line, static_cast<std::int32_t>(2 * (count + i) + 1));
        ASSERT_EQ(section->keys.size(), 2U);
        ASSERT_EQ(section->keys[1].value, std::to_string(i));
    }
    EXPECT_EQ(findSection(document, "section" + std::to_string(count)), nullptr);
}

TEST_F(iniParserSize, AsManyContinuationKeysAsTheFileHolds) {
    constexpr std::size_t count = 10'000;
    std::string text = "[s]\n";
    std::string expected;
    for (std::size_t i = 1; i <= count; ++i) {
        text += "Text Line" + std::to_string(i) + "=" + std::to_string(i) + "\n";
        expected += std::to_string(i);
    }
    text += "[t]\n";
    for (std::size_t i = 1; i <= count; ++i) text += std::to_string(i) + " Line1=" + std::to_string(i) + "\n";
    parse(text);
    ASSERT_EQ(document.sections.at(0).keys.size(), 1U);
    EXPECT_TRUE(document.sections[0].keys[0].value == expected);
    ASSERT_EQ(document.sections.at(1).keys.size(), count);
    EXPECT_EQ(findKey(document.sections[1], false, "1234"), &document.sections[1].keys[1233]);
    EXPECT_EQ(findKey(document.sections[1], false, "1234 Line1"), nullptr) << "no look-up finds a name of before";
}

}  // namespace
