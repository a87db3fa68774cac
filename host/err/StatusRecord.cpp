#include "err/StatusRecord.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>

namespace zuerr {
namespace {

static_assert(offsetof(StatusRecord, code) == 0 && sizeof(StatusRecord::code) == 4);
static_assert(offsetof(StatusRecord, capacity) == 4 && sizeof(StatusRecord::capacity) == 4);
static_assert(offsetof(StatusRecord, reallocJson) == 8 && sizeof(StatusRecord::reallocJson) == 8);
static_assert(offsetof(StatusRecord, json) == 16 && sizeof(StatusRecord) == 24);

constexpr std::uint32_t largestCapacity = 0x7FFFFFFF;
constexpr std::uint32_t largestToGrow = 0x40000000;
constexpr std::uint32_t smallestCapacity = 512;
constexpr std::uint32_t emptyReportSize = 4;  // "{}", its terminator and the sentinel

std::uint32_t roundedCapacity(std::uint32_t request) noexcept {
    std::uint32_t capacity = smallestCapacity;
    while (capacity < request) capacity *= 2;
    return capacity;
}

/// The chain's growth function: doubles the record's buffer and returns the cursor's position in the new one.
char* growRecord(void* argument, const char* cursor) noexcept {
    StatusRecord& record = *static_cast<StatusRecord*>(argument);
    if (record.capacity > largestToGrow) return nullptr;
    const auto offset = cursor - record.json;
    if (!record.reallocJson(record, 2 * record.capacity - 2)) return nullptr;
    return FindEnd(record.json) == nullptr ? nullptr : record.json + offset;
}

}  // namespace

StatusRecord::~StatusRecord() { Clear(*this); }

bool StatusRecord::reallocJsonDefault(StatusRecord& record, std::uint32_t capacity) noexcept {
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
    if (record.capacity < sizeof("{}") && !record.reallocJson(record, sizeof("{}"))) return true;
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
    // The text, its terminator and the sentinel were in the source's buffer, so their size fits 32 bits.
    const auto needed = static_cast<std::uint32_t>(std::strlen(text) + 2);
    if (destination.reallocJson(destination, needed)) CopyText(destination.json, destination.capacity, text);
    return true;
}

JsonChain Append(StatusRecord& record) noexcept {
    return {record.reallocJson(record, emptyReportSize) ? FindEnd(record.json) : nullptr, growRecord, &record};
}

JsonChain RaiseInto(StatusRecord& record, std::int32_t code, const RaiseReport& report) noexcept {
    if (record.failed()) return {nullptr, growRecord, &record};
    SetCode(record, code);
    JsonChain chain = Append(record);
    if (report.constant != nullptr) chain.AddString("error_constant", report.constant);
    chain.AddString("file", report.site.file).AddInt("line", report.site.line);
    if (report.component != nullptr) chain.AddString("component", report.component);
    return chain;
}

}  // namespace zuerr
