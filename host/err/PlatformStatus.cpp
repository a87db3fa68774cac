#include "err/PlatformStatus.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace zuerr {
namespace {

/// Free bytes that a converted record has before each member is written: enough for any of them.
constexpr std::size_t memberRoom = 258;

template <std::size_t size>
void setText(std::array<char, size>& field, std::string_view text) noexcept {
    field.fill(0);
    std::copy_n(text.begin(), std::min(text.size(), size - 1), field.begin());
}

/// A path that is too long loses its middle: the drive and the file name tell most.
void setPath(std::array<char, 101>& field, std::string_view path) noexcept {
    constexpr std::size_t kept = 49;
    setText(field, path);
    if (path.size() < field.size()) return;
    field[kept] = field[kept + 1] = '.';
    std::copy_n(path.end() - kept, kept, field.begin() + kept + 2);
}

bool ensureRoom(StatusRecord& record) noexcept {
    const std::size_t used = record.json == nullptr ? sizeof("{}") : std::strlen(record.json) + 1;
    return record.reallocJson(record, static_cast<std::uint32_t>(used + memberRoom + 1));
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

void Convert(const PlatformStatus& platform, StatusRecord& record) noexcept {
    if (platform.code == 0 || !SetCode(record, platform.code)) return;
    if (platform.size < PlatformStatus::fullSize) return;
    if (platform.file[0] != 0) {
        if (ensureRoom(record)) Append(record).AddString("file", platform.file.data());
        if (ensureRoom(record)) Append(record).AddInt("line", platform.line);
    }
    if (platform.component[0] != 0 && ensureRoom(record)) {
        Append(record).AddString("component", platform.component.data());
    }
}

}  // namespace zuerr
