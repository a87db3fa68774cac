#pragma once

#include <cstdint>

/// The status codes of the program: 0 is success, a negative code an error, a positive one a warning.
/// Each error code comes with the text that reports contain for it as "error_constant".
namespace zuerr {

struct ErrorConstant {
    std::int32_t code;
    const char* text;
};

inline constexpr ErrorConstant outOfMemory{-52000, "-52000"};
inline constexpr ErrorConstant featureUnsupported{-52002, "zukesterr_featureUnsupported"};
inline constexpr ErrorConstant softwareFault{-52003, "zukesterr_softwareFaultKESTInternalUseOnly"};
inline constexpr ErrorConstant invalidParameter{-52005, "zukesterr_invalidParameter"};
inline constexpr ErrorConstant resourceNotFound{-52006, "zukesterr_resourceNotFound"};
inline constexpr ErrorConstant statusResourceNotFound{-52006, "kestStatusResourceNotFound"};
inline constexpr ErrorConstant osFault{-52008, "zukesterr_osFault"};
inline constexpr ErrorConstant insufficientPermissions{-52026, "zukesterr_insufficientPermissions"};

/// The component that every report of this program names.
inline constexpr const char* hostComponent = "zuZiptraRemoteService";

/// The source location that a report names. Support staff look these values up (docs/codes.md), so they are constants
/// maintained by hand: they stay the same when the code around a raise moves.
struct RaiseSite {
    const char* file;
    std::int32_t line;
};

/// The fixed part of a report. A file that raises errors defines its reports as named constants at the top. The texts
/// are borrowed.
struct RaiseReport {
    constexpr RaiseReport(const ErrorConstant& errorConstant, const RaiseSite& raiseSite)
        : code(errorConstant.code), constant(errorConstant.text), site(raiseSite), component(hostComponent) {}

    /// For a code that is known only at run time. A null constant or component is omitted from the report.
    constexpr RaiseReport(const char* constantText, const RaiseSite& raiseSite,
                          const char* componentText = hostComponent)
        : code(0), constant(constantText), site(raiseSite), component(componentText) {}

    std::int32_t code;  ///< of the error constant; 0 if the raise supplies it
    const char* constant;
    RaiseSite site;
    const char* component;
};

}  // namespace zuerr
