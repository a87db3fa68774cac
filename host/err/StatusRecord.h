#pragma once

#include <cstdint>

#include "err/ErrorConstants.h"
#include "err/JsonReport.h"
#include "err/RaiseReport.h"

namespace zuerr {

/// A status code and the JSON report that explains it. Low-level operations take one by reference, do nothing when it
/// already holds an error, and fill it when they fail: the first error wins.
///
/// The record owns its report buffer and releases it when it goes. Not thread-safe; usually a local of the caller.
struct StatusRecord {
    StatusRecord() = default;
    ~StatusRecord();
    StatusRecord(const StatusRecord&) = delete;
    StatusRecord& operator=(const StatusRecord&) = delete;

    /// The buffer manager: makes the buffer at least `capacity` bytes large, or releases it for 0. False when it
    /// cannot; the old text then stays.
    using ReallocJson = bool (*)(StatusRecord& record, std::uint32_t capacity);

    static bool reallocJsonDefault(StatusRecord& record, std::uint32_t capacity);

    std::int32_t code = 0;
    std::uint32_t capacity = 0;  ///< bytes of `json`, 0 when there is none
    ReallocJson reallocJson = reallocJsonDefault;
    char* json = nullptr;  ///< a JSON object as text, "{}" when empty; laid out as err/JsonReport.h says

    [[nodiscard]] bool failed() const noexcept { return code < 0; }
};

/// Code 0 and no buffer.
void Clear(StatusRecord& record) noexcept;

/// Takes the code if it says more than the one held: anything over success, an error over a warning. A taken code
/// resets the report to "{}". False when nothing changed.
bool SetCode(StatusRecord& record, std::int32_t code) noexcept;

/// Takes the source's code by SetCode's rule and, if taken, its report. Records with the same buffer manager hand the
/// buffer over (the source is left without one); others copy the text. False when the code was refused.
bool Copy(StatusRecord& destination, StatusRecord& source) noexcept;

/// Writes members at the end of the record's top-level object, growing its buffer as needed. A member for which there
/// is no memory is left out together with all that follow; the code is never touched.
JsonChain Append(StatusRecord& record) noexcept;

/// Gives the record the code and a report with error_constant, file, line and component, in this order. A null
/// constant or component is left out. Does nothing when the record holds an error already.
void RaiseInto(StatusRecord& record, std::int32_t code, const char* constant, const RaiseSite& site,
               const char* component) noexcept;

/// The same with a report that is ready.
void RaiseInto(StatusRecord& record, std::int32_t code, const RaiseReport& report) noexcept;

}  // namespace zuerr
