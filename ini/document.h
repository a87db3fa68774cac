#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// INI files in memory: sections of keys, in file order. Names ignore case unless the document says otherwise.
namespace nIni {

/// Option flags of a document.
inline constexpr std::uint32_t acceptEmptyValues = 1;  ///< otherwise a key without a value is a malformed line
inline constexpr std::uint32_t stripDoubleQuotes = 2;
inline constexpr std::uint32_t stripSingleQuotes = 4;
inline constexpr std::uint32_t colonSeparates = 8;  ///< ":" parts key and value as "=" does, and so does ":="

struct tKey {
    std::string name;
    std::string value;
    char quote = 0;          ///< the quote character that was stripped from the value, or 0
    std::int32_t line = -1;  ///< where the value came from, counted from 1
};

struct tSection {
    std::string name;
    std::vector<tKey> keys;
    std::int32_t line = -1;  ///< of its header; -1 for a section made without one
};

/// The result of one parse, and the options for it. Not thread-safe.
struct tDocument {
    std::vector<tSection> sections;
    tSection* currentSection = nullptr;  ///< the section found last, tried first by the next look-up; borrowed
    std::int32_t mergeDuplicates = 1;    ///< a repeated header reopens its section, a repeated key replaces the value
    std::int32_t caseSensitive = 0;
    std::int32_t lastKeyLine = -1;               ///< of the key that the last successful look-up found
    std::array<std::int32_t, 2> layout{80, 14};  ///< not used when reading
    std::uint32_t flags = stripDoubleQuotes;
    std::int32_t firstErrorLine = -1;     ///< the first malformed line, or -1
    std::array<wchar_t, 256> filePath{};  ///< of the file last parsed; empty when the path does not fit
    std::uint64_t fileTime = 0;           ///< its last-write time, in the platform's file-time unit
};

/// A new document with the defaults above, or null when memory runs out. Owned by the caller, who destroys it.
[[nodiscard]] tDocument* create() noexcept;
void destroy(tDocument* document) noexcept;

struct tDestroyer {
    void operator()(tDocument* document) const noexcept { destroy(document); }
};
using tDocumentPointer = std::unique_ptr<tDocument, tDestroyer>;

/// The first section of that name, or null. Makes it the current section.
[[nodiscard]] tSection* findSection(tDocument& document, std::string_view name) noexcept;

/// The first key of that name, or null. The caller copies a found key's line into the document.
[[nodiscard]] tKey* findKey(tSection& section, bool caseSensitive, std::string_view name) noexcept;

}  // namespace nIni
