#pragma once

#include <array>
#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ini/nameIndex.h"

/// INI files in memory: sections of keys, in file order. Names ignore case unless the document says otherwise.
namespace nIni {

/// Option flags of a document.
inline constexpr std::uint32_t acceptEmptyValues = 1;  ///< otherwise a key with nothing after "=" is malformed
inline constexpr std::uint32_t stripDoubleQuotes = 2;
inline constexpr std::uint32_t stripSingleQuotes = 4;
inline constexpr std::uint32_t colonSeparates = 8;  ///< ":" separates key and value like "=", and so does ":="

/// Names and values are parts of the document's text. They become invalid, in copies too, when the document is parsed
/// again or destroyed.
struct tKey {
    std::string_view name;
    std::string_view value;
    char quote = 0;          ///< the quote character that was stripped from the value, or 0
    std::int32_t line = -1;  ///< of the value, counted from 1
};

struct tSection {
    std::string_view name;
    std::vector<tKey> keys;
    std::int32_t line = -1;             ///< of its last header, counted from 1; -1 for a section without one
    tNameIndex keyIndex;                ///< for findKey; reset it after changing the keys other than by appending
    bool hasContinuations = false;      ///< set by the parser if keys have to be joined
    std::size_t mergeThreshold = 4096;  ///< the parser removes repeated keys when there are this many
};

/// The result of one parse, and the options for it. Not thread-safe, look-ups included.
struct tDocument {
    tDocument() = default;
    ~tDocument() = default;
    tDocument(const tDocument&) = delete;
    tDocument& operator=(const tDocument&) = delete;

    std::list<std::string> texts;  ///< the file's blocks and joined values; they stay where they are
    std::vector<tSection> sections;
    tSection* currentSection = nullptr;  ///< found or parsed last; the next look-up tries it first; borrowed
    std::int32_t mergeDuplicates = 1;    ///< a repeated header reopens its section, a repeated key replaces the value
    std::int32_t caseSensitive = 0;
    std::int32_t lastKeyLine = -1;               ///< of the key that the last successful look-up found
    std::array<std::int32_t, 2> layout{80, 14};  ///< not used when reading
    std::uint32_t flags = stripDoubleQuotes;
    std::int32_t firstErrorLine = -1;     ///< the first malformed line, or -1
    std::array<wchar_t, 256> filePath{};  ///< of the file last parsed with success; empty if the path does not fit
    std::uint64_t fileTime = 0;  ///< its last-write time in units of 100 ns since 1601 UTC; 0 if the system has none
    tNameIndex sectionIndex;     ///< for findSection; reset it after changing the sections other than by appending
};

/// Returns a new document with the defaults above, or null if memory runs out. The caller owns and destroys it.
[[nodiscard]] tDocument* create() noexcept;
void destroy(tDocument* document) noexcept;

struct tDestroyer {
    void operator()(tDocument* document) const noexcept { destroy(document); }
};
using tDocumentPointer = std::unique_ptr<tDocument, tDestroyer>;

/// Returns the current section if it has that name, otherwise the first one that has it, which becomes the current one;
/// null if there is none. Valid until the next parse.
[[nodiscard]] tSection* findSection(tDocument& document, std::string_view name) noexcept;

/// Returns the first key of that name, or null. Valid as long as the section. The caller copies a found key's line into
/// the document's lastKeyLine.
[[nodiscard]] tKey* findKey(tSection& section, bool caseSensitive, std::string_view name) noexcept;

}  // namespace nIni
