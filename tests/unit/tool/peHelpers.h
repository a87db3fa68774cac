#pragma once

#include <gtest/gtest.h>

#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "tests/support/peFile.h"
#include "tool/pe/library.h"

namespace nPe {

// What the tests of the reader and of the resolver share.

inline std::variant<tLibrary, tUnreadable> readBytes(std::string_view bytes) {
    return read(std::as_bytes(std::span(bytes)));
}

/// Returns the library. Fails the test if the bytes are unreadable.
inline tLibrary readable(std::string_view bytes) {
    const auto content = readBytes(bytes);
    const auto* const unreadable = std::get_if<tUnreadable>(&content);
    EXPECT_EQ(unreadable, nullptr) << unreadable->reason;
    return unreadable == nullptr ? std::get<tLibrary>(content) : tLibrary();
}

/// Returns why the bytes are unreadable, or an empty string.
inline std::string reasonOf(std::string_view bytes) {
    const auto content = readBytes(bytes);
    const auto* const unreadable = std::get_if<tUnreadable>(&content);
    return unreadable == nullptr ? std::string() : unreadable->reason;
}

/// Returns "NAME", "#NUMBER" or "NAME#NUMBER", with " -> FORWARDER" if there is one.
inline std::string textOf(const tExport& entry) {
    std::string text = entry.name + '#' + std::to_string(entry.ordinal);
    return entry.forwarder.empty() ? text : text + " -> " + entry.forwarder;
}

/// Returns "LIBRARY: NAME #NUMBER", with "delayed " in front.
inline std::string textOf(const tImport& import) {
    std::string text = (import.delayed ? "delayed " : "") + import.library + ':';
    for (const tImportedSymbol& symbol : import.symbols.list()) {
        text += ' ' + (symbol.name.empty() ? '#' + std::to_string(symbol.ordinal) : std::string(symbol.name));
    }
    return text;
}

template <class Entry>
std::vector<std::string> textsOf(const std::vector<Entry>& entries) {
    std::vector<std::string> texts;
    for (const Entry& entry : entries) texts.push_back(textOf(entry));
    return texts;
}

/// Returns exports of these names, numbered from 1 on.
inline std::vector<tExport> named(const std::vector<std::string>& names) {
    std::vector<tExport> exports;
    for (const std::string& name : names) exports.push_back({name, static_cast<std::uint32_t>(exports.size() + 1), {}});
    return exports;
}

/// Returns an import of functions by name.
inline tImport importOf(std::string library, const std::vector<std::string>& names, bool delayed = false) {
    tImport import{std::move(library), delayed, {}};
    for (const std::string& name : names) import.symbols.add({name, 0});
    return import;
}

/// A library with one export and one import, as bytes to be damaged.
struct tDamaged {
    support::tPeFile file;
    std::string bytes;

    tDamaged() {
        file.exports = named({"Start"});
        file.imports = {importOf("KERNEL32.dll", {"Sleep"}), importOf("late.dll", {"Late"}, true)};
        bytes = file.bytes();
    }
    [[nodiscard]] std::size_t exportTable() const { return support::tPeFile::offsetOf(file.exportTable); }
    [[nodiscard]] std::size_t importTable() const { return support::tPeFile::offsetOf(file.importTable); }
    [[nodiscard]] std::size_t delayedTable() const { return support::tPeFile::offsetOf(file.delayedTable); }
    [[nodiscard]] std::string reason() const { return reasonOf(bytes); }
};

}  // namespace nPe
