#include "err/StatusRecord.h"

#include <cstdlib>
#include <cstring>
#include <string_view>

namespace zuerr {
namespace {

constexpr std::uint32_t largestCapacity = 0x7FFFFFFF;
constexpr std::uint32_t smallestCapacity = 512;
constexpr std::uint32_t emptyReportSize = 4;  // "{}", its terminator and the sentinel

std::uint32_t roundedCapacity(std::uint32_t request) noexcept {
    std::uint32_t capacity = smallestCapacity;
    while (capacity < request) capacity *= 2;
    return capacity;
}

/// A JsonChain's way to more room: doubles the record's buffer and finds the cursor's place in it again.
char* growRecord(void* argument, const char* cursor) {
    StatusRecord& record = *static_cast<StatusRecord*>(argument);
    const std::uint32_t before = record.capacity;
    if (2 * before - 4 > largestCapacity - 2) return nullptr;
    const auto offset = cursor - record.json;
    // A manager that answers yes and gives nothing would be asked for ever.
    if (!record.reallocJson(record, 2 * before - 2) || record.capacity <= before) return nullptr;
    return FindEnd(record.json) == nullptr ? nullptr : record.json + offset;
}

/// Makes sure of a text and the marker behind it. A manager may say yes and give nothing.
bool ensureText(StatusRecord& record) noexcept {
    return record.reallocJson(record, emptyReportSize) && record.capacity >= emptyReportSize;
}

/// Puts a text in the place of "{}" if that is what there is, and if there is room.
bool replaceEmpty(char* json, std::string_view text) noexcept {
    if (std::string_view(json) != "{}") return false;
    // As for any member: the room lies between the terminator and the sentinel.
    const std::size_t needed = text.size() + 1 - sizeof("{}");
    if (std::memchr(json + sizeof("{}"), jsonSentinel, needed) != nullptr) return false;
    text.copy(json, text.size());
    return true;
}

void addMembers(JsonChain chain, const char* constant, const RaiseSite& site, const char* component) noexcept {
    if (constant != nullptr) chain.AddString("error_constant", constant);
    chain.AddString("file", site.file).AddInt("line", site.line);
    if (component != nullptr) chain.AddString("component", component);
}

}  // namespace

StatusRecord::~StatusRecord() { Clear(*this); }

bool StatusRecord::reallocJsonDefault(StatusRecord& record, std::uint32_t capacity) {
    if (capacity == 0) {
        std::free(record.json);
        record.json = nullptr;
        record.capacity = 0;
        return true;
    }
    if (capacity <= record.capacity) return true;
    if (capacity > largestCapacity) return false;
    const std::uint32_t size = roundedCapacity(capacity);
    char* const buffer = static_cast<char*>(std::malloc(size));
    if (buffer == nullptr) return false;
    CopyText(buffer, size, record.json == nullptr ? "{}" : record.json);
    std::free(record.json);
    record.json = buffer;
    record.capacity = size;
    return true;
}

void Clear(StatusRecord& record) noexcept {
    record.code = 0;
    record.reallocJson(record, 0);
}

bool SetCode(StatusRecord& record, std::int32_t code) noexcept {
    const bool newError = code < 0 && !record.failed();
    const bool newWarning = code > 0 && record.code == 0;
    if (!newError && !newWarning) return false;
    record.code = code;
    if (record.json == nullptr) return true;
    if (record.capacity < sizeof("{}")) record.reallocJson(record, sizeof("{}"));
    if (record.capacity < sizeof("{}")) return true;
    std::memcpy(record.json, "{}", sizeof("{}"));
    CopyText(record.json, record.capacity, nullptr);
    return true;
}

bool Copy(StatusRecord& destination, StatusRecord& source) noexcept {
    if (!SetCode(destination, source.code)) return false;
    if (destination.reallocJson == source.reallocJson) {
        destination.reallocJson(destination, 0);
        destination.json = source.json;
        destination.capacity = source.capacity;
        source.json = nullptr;
        source.capacity = 0;
        return true;
    }
    const char* const text = source.json == nullptr ? "{}" : source.json;
    const std::size_t length = std::strlen(text);
    if (length <= largestCapacity - 2 && destination.reallocJson(destination, static_cast<std::uint32_t>(length + 2))) {
        CopyText(destination.json, destination.capacity, text);
    }
    return true;
}

JsonChain Append(StatusRecord& record) noexcept {
    return {ensureText(record) ? FindEnd(record.json) : nullptr, growRecord, &record};
}

void RaiseInto(StatusRecord& record, std::int32_t code, const char* constant, const RaiseSite& site,
               const char* component) noexcept {
    if (record.failed()) return;
    SetCode(record, code);
    addMembers(Append(record), constant, site, component);
}

void RaiseInto(StatusRecord& record, std::int32_t code, const RaiseReport& report) noexcept {
    if (record.failed()) return;
    SetCode(record, code);
    if (!ensureText(record)) return;
    if (replaceEmpty(record.json, report.text())) return;
    addMembers(Append(record), report.constant(), report.site(), report.component());
}

}  // namespace zuerr
