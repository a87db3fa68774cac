#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string_view>
#include <vector>

#include "tool/pe/library.h"

namespace nPe {

/// Where one of an image's tables is; rva is 0 if it has none. The size is the file's claim, checked by nobody.
struct tDirectory {
    std::uint32_t rva = 0;  ///< relative virtual address: the distance from the image's beginning in memory
    std::uint32_t size = 0;
};

/// The numbers of the directories.
enum class tTable : std::size_t { exports = 0, imports = 1, delayedImports = 13 };

/// A library's bytes at the addresses to which the loader maps them. It refers to the bytes without owning them. All
/// that is read from it is limited by the size of the file, so overlapping tables cannot make the caller's work
/// quadratic.
class tImage {
public:
    /// Reads the headers. Throws tUnreadable if the loader refuses them.
    explicit tImage(std::span<const std::byte> bytes);

    [[nodiscard]] std::uint16_t machine() const noexcept { return machine_; }
    [[nodiscard]] bool pe32Plus() const noexcept { return pe32Plus_; }
    [[nodiscard]] bool isDll() const noexcept { return isDll_; }
    [[nodiscard]] bool hasEntryPoint() const noexcept { return hasEntryPoint_; }
    [[nodiscard]] bool hasCode() const noexcept { return hasCode_; }
    /// Returns the address at which the linker expected the image to be loaded.
    [[nodiscard]] std::uint64_t base() const noexcept { return base_; }
    [[nodiscard]] tDirectory directory(tTable table) const noexcept;

    /// These return what is in memory at the address, where the end of a section without bytes in the file is zero.
    /// Throw tUnreadable if the address is outside the image, and if the tables overlap.
    [[nodiscard]] std::uint16_t read16(std::uint64_t rva) { return read<std::uint16_t>(rva); }
    [[nodiscard]] std::uint32_t read32(std::uint64_t rva) { return read<std::uint32_t>(rva); }
    [[nodiscard]] std::uint64_t read64(std::uint64_t rva) { return read<std::uint64_t>(rva); }
    /// Returns the bytes up to a zero. Borrows them.
    [[nodiscard]] std::string_view readText(std::uint64_t rva) {
        const tRegion& region = regionAt(rva, 1);
        const std::span<const std::byte> bytes = region.from(rva);
        // Most names are whole in the file, and there are so many of them that these few steps count.
        const auto* const text = reinterpret_cast<const char*>(bytes.data());
        const std::size_t limit = std::min<std::uint64_t>(bytes.size(), unspent_);
        const char* const end = std::char_traits<char>::find(text, limit, '\0');
        if (end == nullptr) return readTextToEnd(bytes, region.size - (rva - region.rva));
        unspent_ -= static_cast<std::size_t>(end - text) + 1;
        return {text, end};
    }

private:
    /// A part of the image: bytes of the file, followed by zeros.
    struct tRegion {
        std::uint64_t rva = 0;
        std::uint64_t size = 0;
        std::span<const std::byte> bytes;  ///< at most `size` of them

        [[nodiscard]] bool contains(std::uint64_t address, std::uint64_t length) const noexcept {
            const std::uint64_t offset = address - rva;  // larger than any size if the address precedes the region
            return offset <= size && size - offset >= length;
        }
        /// Returns the bytes from an address inside the region.
        [[nodiscard]] std::span<const std::byte> from(std::uint64_t address) const noexcept {
            return bytes.subspan(std::min<std::uint64_t>(address - rva, bytes.size()));
        }
    };

    void readOptionalHeader(std::uint64_t at, std::uint64_t size);
    void readDirectories(std::uint64_t at, std::uint64_t end);
    void mapSections(std::uint64_t table, std::uint16_t count);
    void mapSection(std::uint64_t header);
    /// Returns the region of the address. Throws tUnreadable if it does not contain `size` bytes from there.
    [[nodiscard]] const tRegion& regionAt(std::uint64_t rva, std::uint64_t size) {
        // Most tables and names are in the region of the previous one.
        return lastRegion_.contains(rva, size) ? lastRegion_ : findRegion(rva, size);
    }
    [[nodiscard]] const tRegion& findRegion(std::uint64_t rva, std::uint64_t size);
    void spend(std::uint64_t bytes) {
        if (bytes > unspent_) throw tUnreadable{"its tables overlap"};
        unspent_ -= bytes;
    }
    template <class Number>
    [[nodiscard]] Number read(std::uint64_t rva);
    /// Returns a text whose zero is not among the bytes that the file has of it. `size` is that of the memory.
    [[nodiscard]] std::string_view readTextToEnd(std::span<const std::byte> bytes, std::uint64_t size);

    std::span<const std::byte> file_;
    std::uint64_t unspent_;
    std::uint16_t machine_ = 0;
    bool pe32Plus_ = false;
    bool isDll_ = false;
    bool hasEntryPoint_ = false;
    bool hasCode_ = false;
    std::uint64_t base_ = 0;
    std::uint32_t sectionAlignment_ = 0;
    std::uint64_t imageSize_ = 0;
    std::uint64_t headersSize_ = 0;
    std::span<const std::byte> directories_;
    std::vector<tRegion> regions_;  ///< in ascending order, without overlaps
    tRegion lastRegion_;
};

template <class Number>
Number tImage::read(std::uint64_t rva) {
    spend(sizeof(Number));
    const tRegion& region = regionAt(rva, sizeof(Number));
    const std::uint64_t offset = rva - region.rva;
    Number number{};
    if (offset + sizeof number <= region.bytes.size()) {
        std::memcpy(&number, region.bytes.data() + offset, sizeof number);
    } else if (offset < region.bytes.size()) {
        std::memcpy(&number, region.bytes.data() + offset, region.bytes.size() - offset);
    }
    return number;
}

}  // namespace nPe
