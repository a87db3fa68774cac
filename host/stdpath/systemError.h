#pragma once

#include <cstdint>

#include "err/StatusRecord.h"

namespace nStdPath {

/// Describes a failed system call in a report.
struct tSystemError {
    enum class tKind { win32, hresult };

    tKind kind = tKind::win32;
    std::uint32_t code = 0;         ///< reported as unsigned; an HRESULT as signed
    const char* message = nullptr;  ///< the system's text for a Win32 error; null if there is none
};

/// Raises -52006 with the source line, the system's error and a description of the failed operation. Does nothing if
/// the record already contains an error.
void raiseSystemError(zuerr::StatusRecord& status, std::int32_t line, const tSystemError& error,
                      const char* description) noexcept;

}  // namespace nStdPath
