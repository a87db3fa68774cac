#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "ini/lineReader.h"
#include "ini/nameIndex.h"

/// INI files in memory: sections of keys, in file order. Names ignore case unless the document says otherwise.
namespace nIni {

/// Option flags of a document.
inline constexpr std::uint32_t acceptEmptyValues = 1;  ///< otherwise a key with nothing behind "=" is malformed
inline constexpr std::uint32_t stripDoubleQuotes = 2;
inline constexpr std::uint32_t stripSingleQuotes = 4;
inline constexpr std::uint32_t colonSeparates = 8;  ///< ":" parts key and value as "=" does, and so does ":="

/// Names and values are parts of the document's text.
struct tKey {
    std::string_view name;
    std::string_view value;
    char quote = 0;          ///< the quote character that was stripped from the value, or 0
    std::int32_t line = -1;  ///< where the value came from, counted from 1
};

struct tSection {
    std::string_view name;
    std::vector<tKey> keys;
    std::int32_t line = -1;  ///< of its header, the last one if there are several; -1 for a section made without one
    tNameIndex keyIndex;     ///< for findKey; to be reset by whoever changes the keys but at their end
    bool hasContinuations = false;  ///< as the parser sees while it reads: there is something to be joined
};

/// The result of one parse, and the options for it. Not thread-safe, look-ups included.
struct tDocument {
    tDocument() = default;
    ~tDocument() = default;
    tDocument(const tDocument&) = delete;
    tDocument& operator=(const tDocument&) = delete;

    tText text;
    std::vector<tSection> sections;
    tSection* currentSection = nullptr;  ///< found or parsed last, tried first by the next look-up; borrowed
    std::int32_t mergeDuplicates = 1;    ///< a repeated header reopens its section, a repeated key replaces the value
    std::int32_t caseSensitive = 0;
    std::int32_t lastKeyLine = -1;               ///< of the key that the last successful look-up found
    std::array<std::int32_t, 2> layout{80, 14};  ///< not used when reading
    std::uint32_t flags = stripDoubleQuotes;
    std::int32_t firstErrorLine = -1;     ///< the first malformed line, or -1
    std::array<wchar_t, 256> filePath{};  ///< of the file last parsed with success; empty when the path does not fit
    std::uint64_t fileTime = 0;           ///< its last-write time, 100 ns since 1601 UTC; 0 when the system has none
    tNameIndex sectionIndex;              ///< for findSection; to be reset by whoever changes the sections
};

/// A new document with the defaults above, or null when memory runs out. Owned by the caller, who destroys it.
[[nodiscard]] tDocument* create() noexcept;
void destroy(tDocument* document) noexcept;

struct tDestroyer {
    void operator()(tDocument* document) const noexcept { destroy(document); }
};
using tDocumentPointer = std::unique_ptr<tDocument, tDestroyer>;

/// The current section if it has that name, otherwise the first one that has it, which becomes the current one; null
/// when there is none. Valid until the next parse.
[[nodiscard]] tSection* findSection(tDocument& document, std::string_view name) noexcept;

/// The first key of that name, or null. Valid as the section is. The caller copies a found key's line into the
/// document's lastKeyLine.
[[nodiscard]] tKey* findKey(tSection& section, bool caseSensitive, std::string_view name) noexcept;

}  // namespace nIni
