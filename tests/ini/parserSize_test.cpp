// Files of sizes that nobody writes by hand.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "tests/support/iniFile.h"

namespace {

TEST(IniSize, OneLineMayFillTheFile) {
    const std::string value(5'000'000, 'x');
    nIni::tDocument document;
    ASSERT_EQ(tIniFile("[s]\nk=" + value).parseInto(document), 0);
    EXPECT_EQ(document.sections[0].keys[0].value, value);
    EXPECT_EQ(parsed("[s]\n" + value), "[s]@1\nerror@2\n");
    EXPECT_EQ(parsed("[" + value + "]"), '[' + value + "]@1\n");
    EXPECT_EQ(parsed("[s]\n" + value + "=v"), "[s]@1\n" + value + "=v@2\n");
    EXPECT_EQ(parsed("[s]\nk=" + std::string(5'000'000, ' ') + "v"), "[s]@1\nk=v@2\n");
}

TEST(IniSize, AsManyKeysAsTheFileHolds) {
    constexpr std::int32_t count = 100'000;
    std::ostringstream text;
    text << "[s]\n";
    for (int round = 0; round < 2; ++round) {
        for (int i = 0; i < count; ++i) text << "key" << i << '=' << i + round << '\n';
    }
    nIni::tDocument document;
    ASSERT_EQ(tIniFile(text.str()).parseInto(document), 0);
    nIni::tSection& section = document.sections.at(0);
    ASSERT_EQ(section.keys.size(), count);
    for (std::int32_t i = 0; i < count; ++i) {
        nIni::tKey* const key = findKey(section, false, "KEY" + std::to_string(i));
        ASSERT_EQ(key, &section.keys[static_cast<std::size_t>(i)]);
        ASSERT_EQ(key->value, std::to_string(i + 1));
        ASSERT_EQ(key->line, count + i + 2);
    }
}

TEST(IniSize, AsManySectionsAsTheFileHolds) {
    constexpr std::size_t count = 20'000;
    std::ostringstream text;
    for (const char* const key : {"a", "b"}) {
        for (std::size_t i = 0; i < count; ++i) text << "[section" << i << "]\n" << key << "=" << i << '\n';
    }
    nIni::tDocument document;
    ASSERT_EQ(tIniFile(text.str()).parseInto(document), 0);
    ASSERT_EQ(document.sections.size(), count);
    for (std::size_t i = 0; i < count; ++i) {
        nIni::tSection* const section = findSection(document, "SECTION" + std::to_string(i));
        ASSERT_EQ(section, &document.sections[i]);
        ASSERT_EQ(section->keys.size(), 2U);
        ASSERT_EQ(section->keys[1].value, std::to_string(i));
    }
}

TEST(IniSize, AsManyContinuationKeysAsTheFileHolds) {
    constexpr std::size_t count = 20'000;
    std::ostringstream text;
    std::string expected;
    text << "[s]\n";
    for (std::size_t i = 1; i <= count; ++i) {
        text << "Text Line" << i << '=' << i << '\n';
        expected += std::to_string(i);
    }
    text << "[t]\n";
    for (std::size_t i = 1; i <= count; ++i) text << i << " Line1=" << i << '\n';
    nIni::tDocument document;
    ASSERT_EQ(tIniFile(text.str()).parseInto(document), 0);
    ASSERT_EQ(document.sections.at(0).keys.size(), 1U);
    EXPECT_EQ(document.sections[0].keys[0].value, expected);
    ASSERT_EQ(document.sections.at(1).keys.size(), count);
    EXPECT_EQ(findKey(document.sections[1], false, "1234"), &document.sections[1].keys[1233]);
    EXPECT_EQ(findKey(document.sections[1], false, "1234 Line1"), nullptr) << "no look-up finds a name of before";
}

}  // namespace
