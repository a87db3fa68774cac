#pragma once

#include <string>

#include "err/Exception.h"
#include "tests/support/report.h"

namespace support {

/// Returns the report of the program's exception that a call throws, "code constant file line component", or "none".
template <class Call>
std::string failureOf(Call call) {
    try {
        call();
        return "none";
    } catch (const zuerr::Exception& exception) {
        const auto report = report::parsed(exception.what());
        return std::to_string(exception.record.code) + " " + report.value("error_constant", "") + " " +
               report.value("file", "") + " " + std::to_string(report.value("line", 0)) + " " +
               report.value("component", "");
    }
}

inline constexpr const char* openFailed =
    "-52026 zukesterr_insufficientPermissions .\\source\\tService 207 zuZiptraRemoteService";
inline constexpr const char* writeFailed = "-52008 zukesterr_osFault .\\source\\tService 217 zuZiptraRemoteService";
inline constexpr const char* renameFailed =
    "-52026 zukesterr_insufficientPermissions .\\source\\tService 225 zuZiptraRemoteService";

}  // namespace support
