#include "tool/pe/image.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <iterator>
#include <string_view>

namespace nPe {
namespace {

static_assert(std::endian::native == std::endian::little, "the format's numbers are little-endian");

constexpr std::uint64_t peHeaderOffset = 0x3C;
constexpr std::uint64_t signatureSize = 4;
constexpr std::uint64_t fileHeaderSize = 20;
constexpr std::uint64_t sectionHeaderSize = 40;
constexpr std::uint16_t formatPe32 = 0x10B;
constexpr std::uint16_t formatPe32Plus = 0x20B;
constexpr std::uint16_t dllCharacteristic = 0x2000;
constexpr std::uint16_t mostSections = 96;
constexpr std::size_t mostDirectories = 16;

constexpr std::uint64_t pageSize = 0x1000;
constexpr std::uint64_t sectorSize = 0x200;

/// The largest tables that any library needs are a few megabytes: 65,536 functions with long C++ names.
constexpr std::uint64_t largestTables = 64 << 20;

constexpr std::uint64_t roundUp(std::uint64_t size, std::uint64_t unit) { return (size + unit - 1) / unit * unit; }

/// Reads a number of the headers. Throws tUnreadable if it is not in the file.
template <class Number>
Number headerNumber(std::span<const std::byte> file, std::uint64_t at) {
    Number number{};
    if (at > file.size() || file.size() - at < sizeof number) throw tUnreadable{"its headers are incomplete"};
    std::memcpy(&number, file.data() + at, sizeof number);
    return number;
}

bool fitsProcessor(std::uint16_t machine, bool pe32Plus) {
    if (machine == machineX86) return !pe32Plus;
    return pe32Plus || (machine != machineX64 && machine != machineArm64);
}

}  // namespace

tImage::tImage(std::span<const std::byte> bytes)
    : file_(bytes), unspent_(std::min<std::uint64_t>(2 * bytes.size(), largestTables)) {
    if (bytes.empty()) throw tUnreadable{"it is empty"};
    if (bytes.size() < 2 || headerNumber<std::uint16_t>(file_, 0) != 0x5A4D)
        throw tUnreadable{"it has no MZ signature"};
    const std::uint64_t pe = headerNumber<std::uint32_t>(file_, peHeaderOffset);
    if (headerNumber<std::uint32_t>(file_, pe) != 0x4550) throw tUnreadable{"it has no PE signature"};
    const std::uint64_t fileHeader = pe + signatureSize;
    machine_ = headerNumber<std::uint16_t>(file_, fileHeader);
    const auto sections = headerNumber<std::uint16_t>(file_, fileHeader + 2);
    const auto optionalHeaderSize = headerNumber<std::uint16_t>(file_, fileHeader + 16);
    isDll_ = (headerNumber<std::uint16_t>(file_, fileHeader + 18) & dllCharacteristic) != 0;
    const std::uint64_t optionalHeader = fileHeader + fileHeaderSize;
    readOptionalHeader(optionalHeader, optionalHeaderSize);
    mapSections(optionalHeader + optionalHeaderSize, sections);
}

void tImage::readOptionalHeader(std::uint64_t at, std::uint64_t size) {
    const auto format = headerNumber<std::uint16_t>(file_, at);
    if (format != formatPe32 && format != formatPe32Plus) throw tUnreadable{"its header is of an unknown format"};
    pe32Plus_ = format == formatPe32Plus;
    if (!fitsProcessor(machine_, pe32Plus_)) throw tUnreadable{"its header is not in the format of its processor"};
    hasCode_ = headerNumber<std::uint32_t>(file_, at + 4) != 0;
    hasEntryPoint_ = headerNumber<std::uint32_t>(file_, at + 16) != 0;
    base_ = pe32Plus_ ? headerNumber<std::uint64_t>(file_, at + 24) : headerNumber<std::uint32_t>(file_, at + 28);
    sectionAlignment_ = headerNumber<std::uint32_t>(file_, at + 32);
    imageSize_ = roundUp(headerNumber<std::uint32_t>(file_, at + 56), pageSize);
    headersSize_ = headerNumber<std::uint32_t>(file_, at + 60);
    readDirectories(at + (pe32Plus_ ? 108 : 92), at + size);
}

void tImage::readDirectories(std::uint64_t at, std::uint64_t end) {
    constexpr std::uint64_t entrySize = sizeof(tDirectory);
    const std::uint64_t first = at + 4;
    if (first > end) throw tUnreadable{"its header is too short"};
    const std::uint64_t count = std::min<std::uint64_t>(headerNumber<std::uint32_t>(file_, at), mostDirectories);
    const std::uint64_t size = std::min(count, (end - first) / entrySize) * entrySize;
    if (first > file_.size() || file_.size() - first < size) throw tUnreadable{"its headers are incomplete"};
    directories_ = file_.subspan(first, size);
}

void tImage::mapSections(std::uint64_t table, std::uint16_t count) {
    if (count > mostSections) throw tUnreadable{"it has more than 96 sections"};
    // An image that is aligned to less than a page is mapped as it is in the file.
    if (sectionAlignment_ % pageSize != 0) {
        regions_.push_back({0, std::max<std::uint64_t>(imageSize_, file_.size()), file_});
        return;
    }
    const std::uint64_t size = std::min<std::uint64_t>(headersSize_, file_.size());
    regions_.reserve(count + 1U);
    regions_.push_back({0, size, file_.first(size)});
    for (std::uint64_t i = 0; i < count; ++i) mapSection(table + i * sectionHeaderSize);
}

void tImage::mapSection(std::uint64_t header) {
    const auto [virtualSize, rva, rawSize, raw] = headerNumber<std::array<std::uint32_t, 4>>(file_, header + 8);
    tRegion region{rva, roundUp(virtualSize == 0 ? rawSize : virtualSize, pageSize), {}};
    if (rva + region.size > imageSize_) throw tUnreadable{"a section ends after the image"};
    if (rva < regions_.back().rva + regions_.back().size) throw tUnreadable{"its sections overlap"};
    // The loader reads whole sectors, whatever alignment the file claims.
    const std::uint64_t begin = raw / sectorSize * sectorSize;
    const std::uint64_t size = std::min(roundUp(raw % sectorSize + rawSize, sectorSize), region.size);
    if (raw != 0 && size != 0) {
        if (raw >= file_.size() || begin + size > roundUp(file_.size(), sectorSize))
            throw tUnreadable{"it is truncated"};
        region.bytes = file_.subspan(begin, std::min(size, file_.size() - begin));
    }
    regions_.push_back(region);
}

tDirectory tImage::directory(tTable table) const noexcept {
    const std::size_t at = static_cast<std::size_t>(table) * sizeof(tDirectory);
    tDirectory directory;
    if (at < directories_.size()) std::memcpy(&directory, directories_.data() + at, sizeof directory);
    return directory;
}

const tImage::tRegion& tImage::findRegion(std::uint64_t rva, std::uint64_t size) {
    const auto next =
        std::upper_bound(regions_.begin(), regions_.end(), rva,
                         [](std::uint64_t address, const tRegion& region) { return address < region.rva; });
    const tRegion& found = *std::prev(next);  // the first region begins at 0
    if (!found.contains(rva, size)) throw tUnreadable{"a table or a name is outside its sections"};
    return lastRegion_ = found;
}

std::string_view tImage::readTextToEnd(std::span<const std::byte> bytes, std::uint64_t size) {
    spend(bytes.size() + 1);
    if (bytes.size() == size) throw tUnreadable{"a name has no end"};
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

}  // namespace nPe
