#pragma once

namespace support {

/// The failures of WriteStatusFile, as caughtReport returns them.
inline constexpr const char* openFailed =
    R"(-52026 {"error_constant":"zukesterr_insufficientPermissions","file":".\\source\\tService","line":207,)"
    R"("component":"zuZiptraRemoteService"})";
inline constexpr const char* writeFailed =
    R"(-52008 {"error_constant":"zukesterr_osFault","file":".\\source\\tService","line":217,)"
    R"("component":"zuZiptraRemoteService"})";
inline constexpr const char* renameFailed =
    R"(-52026 {"error_constant":"zukesterr_insufficientPermissions","file":".\\source\\tService","line":225,)"
    R"("component":"zuZiptraRemoteService"})";

}  // namespace support
