// Compares what is read from any file as a library with a plain implementation of the rules: the same tables, or no
// library in both. What was read is then searched, and its imports are followed, in a machine that contains nothing but
// this library, under every name.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "check.h"
#include "tool/pe/library.h"
#include "tool/pe/resolve.h"
#include "tool/pe/symptoms.h"

namespace {

struct tRefused {};

void require(bool holds) {
    if (!holds) throw tRefused();
}

/// The rules of the format, byte by byte.
class tNaiveReader {
public:
    explicit tNaiveReader(std::string_view file) : file_(file) {}

    nPe::tLibrary read() {
        readHeaders();
        acceptsHeaders_ = true;
        if (const std::uint64_t table = directory(0)) readExports(table);
        if (const std::uint64_t table = directory(1)) readImports(table);
        if (const std::uint64_t table = directory(13)) readDelayedImports(table);
        // No honest file refers to the same bytes many times.
        require(bytesRead_ <= std::min<std::uint64_t>(2 * file_.size(), 64 << 20));
        return library_;
    }

    [[nodiscard]] bool acceptsHeaders() const { return acceptsHeaders_; }

private:
    struct tSection {
        std::uint64_t begin, end;  ///< in memory
        std::uint64_t raw, rawSize;
    };

    std::uint64_t header(std::uint64_t offset, std::uint64_t size) const {
        require(offset + size <= file_.size());
        std::uint64_t number = 0;
        while (size-- > 0) number = number << 8 | static_cast<std::uint8_t>(file_[offset + size]);
        return number;
    }

    void readHeaders() {
        require(file_.starts_with("MZ"));
        const std::uint64_t pe = header(0x3C, 4);
        require(header(pe, 4) == 0x4550);
        library_.machine = static_cast<std::uint16_t>(header(pe + 4, 2));
        library_.isDll = (header(pe + 22, 2) & 0x2000) != 0;
        optional_ = pe + 24;
        optionalSize_ = header(pe + 20, 2);
        const std::uint64_t format = header(optional_, 2);
        require(format == 0x10B || format == 0x20B);
        library_.pe32Plus = format == 0x20B;
        library_.hasEntryPoint = header(optional_ + 16, 4) != 0;
        if (library_.machine == 0x14C) require(!library_.pe32Plus);
        if (library_.machine == 0x8664 || library_.machine == 0xAA64) require(library_.pe32Plus);
        base_ = library_.pe32Plus ? header(optional_ + 24, 8) : header(optional_ + 28, 4);
        firstDirectory_ = library_.pe32Plus ? 112 : 96;
        require(optionalSize_ >= firstDirectory_);
        directoryCount_ = header(optional_ + firstDirectory_ - 4, 4);
        for (std::uint64_t i = 0; i < 16; ++i) static_cast<void>(directory(i));
        readSections(header(pe + 6, 2));
    }

    std::uint64_t directory(std::uint64_t number, std::uint64_t field = 0) const {
        const std::uint64_t at = firstDirectory_ + 8 * number;
        if (number >= directoryCount_ || at + 8 > optionalSize_) return 0;
        static_cast<void>(header(optional_ + at + 4, 4));
        return header(optional_ + at + 4 * field, 4);
    }

    static std::uint64_t pages(std::uint64_t size) { return (size + 4095) / 4096 * 4096; }
    static std::uint64_t sectors(std::uint64_t size) { return (size + 511) / 512 * 512; }

    void readSections(std::uint64_t count) {
        require(count <= 96);
        const std::uint64_t imageSize = pages(header(optional_ + 56, 4));
        const std::uint64_t headersSize = std::min<std::uint64_t>(header(optional_ + 60, 4), file_.size());
        if (header(optional_ + 32, 4) % 4096 != 0) {
            sections_.push_back({0, std::max<std::uint64_t>(imageSize, file_.size()), 0, file_.size()});
            return;
        }
        sections_.push_back({0, headersSize, 0, headersSize});
        for (std::uint64_t i = 0; i < count; ++i) {
            const std::uint64_t at = optional_ + optionalSize_ + 40 * i;
            const std::uint64_t virtualSize = header(at + 8, 4);
            const std::uint64_t begin = header(at + 12, 4);
            const std::uint64_t rawSize = header(at + 16, 4);
            const std::uint64_t raw = header(at + 20, 4);
            const std::uint64_t size = pages(virtualSize != 0 ? virtualSize : rawSize);
            tSection section{begin, begin + size, raw / 512 * 512, std::min(sectors(raw % 512 + rawSize), size)};
            require(section.end <= imageSize && begin >= sections_.back().end);
            if (raw == 0) section.rawSize = 0;
            if (section.rawSize > 0) {
                require(raw < file_.size() && section.raw + section.rawSize <= sectors(file_.size()));
            }
            sections_.push_back(section);
        }
    }

    /// The byte in memory.
    std::uint8_t byteAt(std::uint64_t rva) const {
        for (const tSection& section : sections_) {
            if (rva < section.begin || rva >= section.end) continue;
            const std::uint64_t offset = rva - section.begin;
            const bool isInFile = offset < section.rawSize && section.raw + offset < file_.size();
            return isInFile ? static_cast<std::uint8_t>(file_[section.raw + offset]) : 0;
        }
        throw tRefused();
    }

    /// A number is within one section.
    std::uint64_t number(std::uint64_t rva, std::uint64_t size) {
        spend(size);
        const auto contains = [&](const tSection& section) {
            return rva >= section.begin && rva < section.end && section.end - rva >= size;
        };
        require(std::ranges::any_of(sections_, contains));
        std::uint64_t value = 0;
        for (std::uint64_t i = size; i > 0; --i) value = value << 8 | byteAt(rva + i - 1);
        return value;
    }

    /// A text ends with a zero in its section.
    std::string text(std::uint64_t rva) {
        const auto section = std::ranges::find_if(
            sections_, [rva](const tSection& candidate) { return rva >= candidate.begin && rva < candidate.end; });
        require(section != sections_.end());
        std::string value;
        for (;; ++rva) {
            spend(1);
            require(rva < section->end);
            const auto byte = static_cast<char>(byteAt(rva));
            if (byte == 0) return value;
            value += byte;
        }
    }

    void spend(std::uint64_t bytes) {
        bytesRead_ += bytes;
        require(bytesRead_ <= 2 * file_.size());
    }

    void readExports(std::uint64_t table) {
        const auto first = static_cast<std::uint32_t>(number(table + 16, 4));
        const std::uint64_t count = std::min<std::uint64_t>(number(table + 20, 4), 65536);
        const std::uint64_t functions = number(table + 28, 4);
        const std::uint64_t nameCount = number(table + 24, 4);
        const std::uint64_t names = number(table + 32, 4);
        const std::uint64_t indexes = number(table + 36, 4);
        std::vector<std::uint64_t> addresses;
        for (std::uint64_t i = 0; i < count; ++i) addresses.push_back(number(functions + 4 * i, 4));
        std::vector<bool> named(addresses.size());
        const auto add = [&](std::string name, std::uint64_t index) {
            const std::uint64_t address = addresses[index];
            const bool forwarded = address >= table && address < table + directory(0, 1);
            const auto ordinal = static_cast<std::uint32_t>(first + index);
            library_.exports.push_back({std::move(name), ordinal, forwarded ? text(address) : ""});
        };
        for (std::uint64_t i = 0; i < nameCount; ++i) {
            std::string name = text(number(names + 4 * i, 4));
            const std::uint64_t index = number(indexes + 2 * i, 2);
            if (name.empty() || index >= addresses.size() || addresses[index] == 0) continue;
            named[index] = true;
            add(std::move(name), index);
        }
        for (std::uint64_t i = 0; i < addresses.size(); ++i) {
            if (!named[i] && addresses[i] != 0) add("", i);
        }
    }

    nPe::tImportedSymbols symbols(std::uint64_t table, std::uint64_t base) {
        const std::uint64_t width = library_.pe32Plus ? 8 : 4;
        nPe::tImportedSymbols found;
        while (const std::uint64_t value = number(table, width)) {
            const bool byNumber = value >> (8 * width - 1) != 0;
            if (byNumber) found.add({"", static_cast<std::uint32_t>(value & 0xFFFF)});
            if (!byNumber) found.add({text(value - base + 2), 0});
            table += width;
        }
        return found;
    }

    void readImports(std::uint64_t at) {
        for (;; at += 20) {
            const std::uint64_t name = number(at + 12, 4);
            const std::uint64_t addresses = number(at + 16, 4);
            if (name == 0 || addresses == 0) return;
            const std::uint64_t lookUp = number(at, 4);
            library_.imports.push_back({text(name), false, symbols(lookUp != 0 ? lookUp : addresses, 0)});
        }
    }

    void readDelayedImports(std::uint64_t at) {
        for (;; at += 32) {
            const std::uint64_t name = number(at + 4, 4);
            if (name == 0) return;
            const std::uint64_t base = number(at, 4) % 2 == 1 ? 0 : base_;
            const std::uint64_t table = number(at + 16, 4);
            library_.imports.push_back({text(name - base), true, symbols(table - base, base)});
        }
    }

    std::string_view file_;
    std::uint64_t optional_ = 0, optionalSize_ = 0, firstDirectory_ = 0, directoryCount_ = 0;
    std::uint64_t base_ = 0;
    std::uint64_t bytesRead_ = 0;
    bool acceptsHeaders_ = false;
    std::vector<tSection> sections_;
    nPe::tLibrary library_;
};

std::variant<nPe::tLibrary, nPe::tUnreadable> expectedContent(std::string_view file) {
    tNaiveReader reader(file);
    try {
        return reader.read();
    } catch (const tRefused&) {
        return nPe::tUnreadable{"", !reader.acceptsHeaders()};
    }
}

void compare(const nPe::tLibrary& library, const nPe::tLibrary& expected) {
    check(library.machine == expected.machine && library.pe32Plus == expected.pe32Plus, "processor and format");
    check(library.isDll == expected.isDll && library.hasEntryPoint == expected.hasEntryPoint, "kind");
    const auto sameExport = [](const nPe::tExport& a, const nPe::tExport& b) {
        return a.name == b.name && a.ordinal == b.ordinal && a.forwarder == b.forwarder;
    };
    check(std::ranges::equal(library.exports, expected.exports, sameExport), "exports");
    const auto sameSymbol = [](const nPe::tImportedSymbol& a, const nPe::tImportedSymbol& b) {
        return a.name == b.name && a.ordinal == b.ordinal;
    };
    const auto sameImport = [&](const nPe::tImport& a, const nPe::tImport& b) {
        return a.library == b.library && a.delayed == b.delayed &&
               std::ranges::equal(a.symbols.list(), b.symbols.list(), sameSymbol);
    };
    check(std::ranges::equal(library.imports, expected.imports, sameImport), "imports");
}

/// A search by halves finds every name of a sorted table, and nothing else in any table.
void search(const nPe::tLibrary& library) {
    std::vector<std::string> names;
    for (const nPe::tExport& entry : library.exports) {
        if (!entry.name.empty()) names.push_back(entry.name);
    }
    const bool isSorted = std::ranges::is_sorted(names);
    for (const std::string& name : names) {
        const nPe::tExport* const found = findExport(library, name);
        check(found == nullptr ? !isSorted : found->name == name, "export that is found");
        for (const std::string& near : nearMisses(library, name)) {
            check(near != name && std::ranges::count(names, near) > 0, "near miss");
        }
        if (names.size() > 20) break;
    }
    const nPe::tExport* const found = findExport(library, "Start");
    check(found == nullptr || found->name == "Start", "export of a fixed name");
    check(debugRuntimes(library).size() <= library.imports.size(), "debug runtimes");
}

void follow(const nPe::tLibrary& library) {
    const std::variant<nPe::tLibrary, nPe::tUnreadable> content = library;
    nPe::tMachine machine;
    machine.searchFolders = {"a", "b"};
    machine.findFile = [](const std::string& folder, const std::string& name) -> std::optional<std::string> {
        if (folder != "b" || name.size() % 4 == 0) return std::nullopt;
        return folder + '/' + name;
    };
    machine.readLibrary = [&content](const std::string&) -> const auto& { return content; };
    machine.isSystemLibrary = [](const std::string& name) { return name.size() % 8 == 0; };
    const nPe::tLoad load = followImports({"b/library.dll", "a"}, machine);
    check(load.missing.size() <= nPe::mostMissing, "number of missing imports");
    for (const nPe::tMissing& missing : load.missing) {
        check(!missing.chain.empty() && missing.chain.front() == "library.dll", "chain");
        check(!missing.library.empty(), "missing library");
    }
    check(!load.loaded.empty() && load.loaded.front() == "b/library.dll", "loaded libraries");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // A copy of the exact size, so that an access beyond it is detected.
    const auto bytes = std::make_unique<std::byte[]>(size);
    std::copy_n(reinterpret_cast<const std::byte*>(data), size, bytes.get());
    const auto content = nPe::read(std::span(bytes.get(), size));
    const auto* const library = std::get_if<nPe::tLibrary>(&content);

    const auto expected = expectedContent(std::string_view(reinterpret_cast<const char*>(data), size));
    check(content.index() == expected.index(), "whether it is a library");
    if (library == nullptr) {
        const bool refused = std::get<nPe::tUnreadable>(content).refused;
        check(refused == std::get<nPe::tUnreadable>(expected).refused, "whether the loader refuses it");
        return 0;
    }
    compare(*library, std::get<nPe::tLibrary>(expected));
    search(*library);
    follow(*library);
    return 0;
}
