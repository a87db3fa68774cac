#pragma once

/// The texts of the messages that the status file shows, each on a line of its own.
namespace nRunMessages {

inline constexpr const char* directoryNotOpened = "Failed to open plugins directory.";
inline constexpr const char* descriptionNotParsed = "Failed to parse service description file: ";  ///< the path follows
inline constexpr const char* frameworkNotReached = "Cannot init system framework";
inline constexpr const char* settingNotFound = "Deployment setting not found";

}  // namespace nRunMessages
