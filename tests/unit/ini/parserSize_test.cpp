// Files of sizes that nobody writes by hand, and with names that nobody chooses by chance.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/iniFile.h"

namespace {

constexpr std::size_t fiftyMegabytes = 50'000'000;

/// The document of a text, which must be one that can be read.
class IniSize : public testing::Test {
protected:
    void parse(const std::string& text) {
        const tIniFile file(text);
        ASSERT_EQ(file.parseInto(document), 0);
    }

    nIni::tDocument document;
};

TEST_F(IniSize, AValueOf50MegabytesIsReadWhole) {
    const std::string value(fiftyMegabytes, 'x');
    parse("[s]\nk=" + value + "\nl=behind");
    ASSERT_EQ(document.sections.at(0).keys.size(), 2U);
    EXPECT_EQ(document.firstErrorLine, -1);
    EXPECT_TRUE(document.sections[0].keys[0].value == value);
    EXPECT_EQ(document.sections[0].keys[0].line, 2);
    EXPECT_EQ(document.sections[0].keys[1].line, 3);
}

TEST_F(IniSize, AKeyNameOf50MegabytesIsFoundByItInAnyCase) {
    parse("[s]\n" + std::string(fiftyMegabytes, 'x') + "=v");
    ASSERT_EQ(document.sections.at(0).keys.size(), 1U);
    EXPECT_EQ(document.sections[0].keys[0].name.size(), fiftyMegabytes);
    EXPECT_EQ(findKey(document.sections[0], false, std::string(fiftyMegabytes, 'X')), &document.sections[0].keys[0]);
    EXPECT_EQ(findKey(document.sections[0], true, std::string(fiftyMegabytes, 'X')), nullptr);
}

TEST_F(IniSize, ASectionNameOf50MegabytesIsReadWhole) {
    parse("[" + std::string(fiftyMegabytes, 'x') + "]\nk=v");
    ASSERT_EQ(document.sections.size(), 1U);
    EXPECT_EQ(document.sections[0].name.size(), fiftyMegabytes);
    EXPECT_EQ(document.sections[0].keys.at(0).value, "v");
}

TEST_F(IniSize, AMalformedLineOf50MegabytesIsOneMalformedLine) {
    parse("[s]\n" + std::string(fiftyMegabytes, 'x') + "\nk=v");
    EXPECT_EQ(describe(document), "[s]@1\nk=v@3\nerror@2\n");
}

TEST_F(IniSize, AHeaderThatNeverClosesIsOneMalformedLine) {
    parse("[s]\n[" + std::string(fiftyMegabytes, 'x') + "\nk=v");
    EXPECT_EQ(describe(document), "[s]@1\nk=v@3\nerror@2\n");
}

TEST_F(IniSize, ACommentOf50MegabytesIsOneComment) {
    parse("[s]\n;" + std::string(fiftyMegabytes, '=') + "\nk=v");
    EXPECT_EQ(describe(document), "[s]@1\nk=v@3\n");
}

TEST_F(IniSize, FiftyMegabytesOfBlanksAroundTextAreDropped) {
    const std::string blanks(fiftyMegabytes / 4, ' ');
    parse(blanks + "[" + blanks + "s" + blanks + "]\n" + blanks + "k\t=" + blanks + "v" + blanks);
    EXPECT_EQ(describe(document), "[s]@1\nk=v@2\n");
}

TEST_F(IniSize, FiftyMegabytesOfEmptyLinesAreAllCounted) {
    parse("[s]\n" + std::string(fiftyMegabytes, '\n') + "k=v");
    EXPECT_EQ(describe(document), "[s]@1\nk=v@" + std::to_string(fiftyMegabytes + 2) + "\nerror@2\n");
}

TEST_F(IniSize, AMillionKeysOfOneSectionAreAllFound) {
    constexpr std::int32_t count = 1'000'000;
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

TEST_F(IniSize, TheLastOfManyRepeatedKeysWinsForEachOfThem) {
    constexpr std::int32_t count = 100'000;
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

TEST_F(IniSize, OneKeyRepeatedAMillionTimesIsOneKey) {
    std::string text = "[s]\n";
    for (int i = 0; i < 1'000'000; ++i) text += i % 2 == 0 ? "key=even\n" : "KEY=odd\n";
    parse(text);
    EXPECT_EQ(describe(document), "[s]@1\nkey=odd@1000001\n");
}

TEST_F(IniSize, WithoutMergingTheFirstOfManyEqualKeysIsFound) {
    document.mergeDuplicates = 0;
    std::string text = "[s]\n";
    for (int i = 0; i < 100'000; ++i) text += "a=1\nb=2\n";
    parse(text);
    nIni::tSection& section = document.sections.at(0);
    EXPECT_EQ(section.keys.size(), 200'000U);
    EXPECT_EQ(findKey(section, false, "B"), &section.keys[1]);
}

TEST_F(IniSize, AHundredThousandSectionsAreAllFoundAndReopened) {
    constexpr std::size_t count = 100'000;
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

TEST_F(IniSize, AsManyContinuationKeysAsTheFileHolds) {
    constexpr std::size_t count = 100'000;
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

// Names that an enemy of the look-up would choose. They must be found, and soon: where a look-up goes through all that
// are alike in some way, these tests take long.

/// Parses the names as keys, twice over, and as sections, and finds each one where it belongs.
void expectAllFound(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += "[" + name + "]\n";
    text += "[all]\n";
    for (const char* const value : {"=1\n", "=2\n"}) {
        for (const std::string& name : names) text += name + value;
    }
    nIni::tDocument document;
    ASSERT_EQ(tIniFile(text).parseInto(document), 0);
    ASSERT_EQ(document.firstErrorLine, -1);
    ASSERT_EQ(document.sections.size(), names.size() + 1);
    nIni::tSection& all = document.sections.back();
    ASSERT_EQ(all.keys.size(), names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        ASSERT_EQ(findSection(document, names[i]), &document.sections[i]) << names[i];
        ASSERT_EQ(findKey(all, false, names[i]), &all.keys[i]) << names[i];
        ASSERT_EQ(all.keys[i].value, "2");
    }
    EXPECT_EQ(findKey(all, false, names.front() + "?"), nullptr);
}

/// All rows of `length` pieces, each one of two.
std::vector<std::string> rowsOf(const std::string& one, const std::string& other, std::size_t length) {
    std::vector<std::string> rows(std::size_t{1} << length);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        for (std::size_t bit = 0; bit < length; ++bit) rows[i] += (i >> bit) % 2 == 0 ? one : other;
    }
    return rows;
}

TEST(IniNames, ThatASumOrAnExclusiveOrCannotTellApartAreAllFound) {
    // Nine letters in every order.
    std::vector<std::string> names{"abcdefghi"};
    for (std::string name = names[0]; names.size() < 50'000 && std::next_permutation(name.begin(), name.end());) {
        names.push_back(name);
    }
    expectAllFound(names);
}

TEST(IniNames, ThatAPolynomialOfTheirCharactersCannotTellApartAreAllFound) {
    // Two characters that give the same sum where the first counts 31 or 33 times.
    expectAllFound(rowsOf("b!", "a@", 15));
    expectAllFound(rowsOf("a_", "b>", 15));
}

TEST(IniNames, ThatDifferInOneCharacterAreAllFoundWhereverItStands) {
    std::vector<std::string> names;
    for (std::size_t position = 0; position < 2000; ++position) {
        for (const char character : {'0', '1', '~'}) {
            names.emplace_back(2000, 'a');
            names.back()[position] = character;
        }
    }
    expectAllFound(names);
}

TEST(IniNames, OfOneCharacterInEveryLengthAreAllFound) {
    std::vector<std::string> names;
    for (std::size_t length = 1; length <= 3000; ++length) names.emplace_back(length, 'a');
    expectAllFound(names);
}

/// Names whose values under `hash` agree in the bits of the mask, taken from "0", "1", ...
std::vector<std::string> alike(std::uint64_t mask, std::size_t count,
                               const std::function<std::uint64_t(const std::string&)>& hash) {
    const std::uint64_t wanted = hash("0") & mask;
    std::vector<std::string> names;
    for (std::size_t i = 0; names.size() < count; ++i) {
        std::string name = std::to_string(i);
        if ((hash(name) & mask) == wanted) names.push_back(std::move(name));
    }
    return names;
}

TEST(IniNames, ThatAgreeInAnyBitsOfTheirHashAreAllFound) {
    const auto hash = [](const std::string& name) { return nIni::hashName(name, false); };
    for (const int shift : {0, 10, 22, 32, 43, 54}) expectAllFound(alike(std::uint64_t{0x3FF} << shift, 1000, hash));
}

TEST(IniNames, ThatCrowdUnderSeveralSeedsOfTheHashAreAllFound) {
    // Those of an eighth of the table under each of the first three, wherever the table takes the place from.
    for (const int shift : {0, 29, 61}) {
        const auto hash = [shift](const std::string& name) {
            std::uint64_t bits = 0;
            for (const std::uint64_t seed : {0, 1, 2})
                bits = bits << 3 | (nIni::hashName(name, false, seed) >> shift & 7);
            return bits;
        };
        expectAllFound(alike(0x1FF, 2000, hash));
    }
}

TEST(IniNames, ThatShareASlotOfTheUsualTablesAreAllFound) {
    const auto fnv1a = [](const std::string& name) {
        std::uint64_t value = 14695981039346656037U;
        for (const char c : name) value = (value ^ static_cast<unsigned char>(c)) * 1099511628211U;
        return value;
    };
    expectAllFound(alike(0xFFF, 1000, fnv1a));
    expectAllFound(alike(0xFFF, 1000, std::hash<std::string>()));
}

}  // namespace
