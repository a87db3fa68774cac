#include "err/PlatformStatus.h"

#include <cstddef>
#include <cstring>
#include <string_view>

namespace zuerr {
namespace {

static_assert(offsetof(PlatformStatus, size) == 0 && sizeof(PlatformStatus::size) == 4);
static_assert(offsetof(PlatformStatus, code) == 4 && sizeof(PlatformStatus::code) == 4);
static_assert(offsetof(PlatformStatus, component) == 8 && sizeof(PlatformStatus::component) == 10);
static_assert(offsetof(PlatformStatus, file) == 18 && sizeof(PlatformStatus::file) == 101);
static_assert(offsetof(PlatformStatus, line) == 120 && sizeof(PlatformStatus::line) == 4);
static_assert(offsetof(PlatformStatus, extension) == 128 && sizeof(PlatformStatus::extension) == 8);

/// Bytes that are reserved before each member is written: enough for any of them.
constexpr std::size_t bytesPerMember = 258;

template <std::size_t size>
void setText(std::array<char, size>& field, std::string_view text) noexcept {
    field.fill(0);
    text.copy(field.data(), size - 1);
}

/// Removes the middle of a path that is too long: the drive and the file name are its most useful parts.
void setPath(std::array<char, 101>& field, std::string_view path) noexcept {
    constexpr std::size_t kept = 49;
    setText(field, path);
    if (path.size() < field.size()) return;
    field[kept] = field[kept + 1] = '.';
    path.copy(field.data() + kept + 2, kept, path.size() - kept);
}

/// Reserves space for one member and returns a chain for it; the chain writes nothing if memory runs out.
JsonChain reserveAndAppend(StatusRecord& record) noexcept {
    const std::size_t used = record.json == nullptr ? sizeof("{}") : std::strlen(record.json) + 1;
    const bool enough = record.reallocJson(record, static_cast<std::uint32_t>(used + bytesPerMember + 1));
    return enough ? Append(record) : JsonChain(nullptr, nullptr, nullptr);
}

}  // namespace

void RaiseInto(PlatformStatus& record, std::int32_t code, const char* component, const RaiseSite& site) noexcept {
    if (record.failed()) return;
    record.code = code;
    if (record.size >= PlatformStatus::fullSize) {
        setText(record.component, component);
        setPath(record.file, site.file);
        record.line = site.line;
    }
    record.extension = 0;
}

void ConvertPlatformStatus(const PlatformStatus& platform, StatusRecord& record) noexcept {
    if (platform.code == 0 || !SetCode(record, platform.code)) return;
    if (platform.size < PlatformStatus::fullSize) return;
    if (platform.file[0] != 0) {
        if (reserveAndAppend(record).AddString("file", platform.file.data()).cursor() == nullptr) return;
        if (reserveAndAppend(record).AddInt("line", platform.line).cursor() == nullptr) return;
    }
    if (platform.component[0] != 0) reserveAndAppend(record).AddString("component", platform.component.data());
}

}  // namespace zuerr
