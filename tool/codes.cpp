#include "tool/codes.h"

#include <algorithm>
#include <array>

namespace nCodes {
namespace {

constexpr std::string_view allocator = "zubrx/err/Allocator";
constexpr std::string_view event = "zukest/quarks/synchronization";
constexpr std::string_view library = "zukest/quarks/library";
constexpr std::string_view pluginData = R"(.\source\nPluginData)";
constexpr std::string_view pluginManager = R"(.\source\tPluginManager)";
constexpr std::string_view service = R"(.\source\tService)";
constexpr std::string_view standardPaths = R"(zutolq\stdpath)";
constexpr std::string_view none;

constexpr std::string_view directoryMessage = "message `Failed to open plugins directory.`";
constexpr std::string_view fileMessage = "message `Failed to parse service description file: …`";
constexpr std::string_view oldStatusFile = "a status file that is old or missing";
constexpr std::string_view noService = "a service that does not start";

constexpr std::array table{
    // What the INI parser returns for a description.
    tCode{-3, pluginData, 261, "a description file is UTF-16 or UTF-32 text", fileMessage,
          "save the file as UTF-8, with or without a byte-order mark"},
    tCode{-12, pluginData, 261, "memory ran out while a description file was read", fileMessage,
          "free memory; look for a plug-in that leaks"},
    tCode{-22, pluginData, 261, "a description file disappeared after it had been listed", fileMessage,
          "restart the service when no program is changing the plug-in directory"},
    tCode{-5001, pluginData, 261, "a description file cannot be opened", fileMessage,
          "give the service read access to the file; close what has it open"},
    tCode{-5002, pluginData, 261, "a description file was opened, but cannot be read", fileMessage,
          "copy the file anew; check the disk"},

    tCode{-52000, none, 0, "memory ran out in one of the plug-in's entry points or while the host was starting it",
          inCodeLine, "free memory; look for a plug-in that leaks"},
    tCode{-52000, allocator, 31, "memory ran out while a text was read from the system",
          "message `Failed to open plugins directory.`, or a status file that is old or missing",
          "free memory; look for a plug-in that leaks"},
    tCode{-52002, pluginManager, 41, "the machine allows none of the features that the plug-in requires", inCodeLine,
          "allow remote deployment on the machine, or correct `Requires`: with 0 a plug-in never starts"},
    tCode{-52003, none, 0, "an exception derived from `std::exception` left one of the plug-in's entry points",
          inCodeLine, "report it to the plug-in's maker: an entry point must catch its exceptions and return a code"},
    tCode{-52003, pluginData, 138, "the plug-in directory does not exist or is not a directory", directoryMessage,
          "create `ZiptraRemoteService\\plugins` in the shared directory, or give the service access to it"},
    tCode{-52005, pluginData, 268, "a description file has a malformed line", fileMessage,
          "correct the file that the message names; a blank line counts as malformed"},
    tCode{-52005, library, 134, "the plug-in's library cannot be loaded", inCodeLine,
          "check `Path`, that the library is 64-bit, and that the libraries which it needs are present"},
    tCode{-52005, library, 225, "the plug-in's library cannot be unloaded", inCodeLine,
          "restart the service; report it to the plug-in's maker"},
    tCode{-52005, library, 280, "an entry point was requested from a library that is not loaded", inCodeLine,
          "report it: a fault of the host"},
    tCode{-52005, library, 299, "the plug-in's library lacks an entry point that its description names", inCodeLine,
          "correct `Initialize`, `Stop` or `Cleanup` in the description, or install the matching library"},
    tCode{-52006, pluginManager, 48, "a plug-in on which this one depends has not started", inCodeLine,
          "look at that plug-in's own code first; check the names in `Dependencies`, and that each is there once"},
    tCode{-52006, standardPaths, 232, "the registry key of the shared directory cannot be opened", directoryMessage,
          "reinstall the product that sets `ZUSHAREDDIR64`"},
    tCode{-52006, standardPaths, 256, "the registry value `ZUSHAREDDIR64` cannot be read", directoryMessage,
          "reinstall the product that sets it"},
    tCode{-52006, standardPaths, 293, "the machine-wide application-data folder is not known to the system",
          "no status file", "repair the user profile folders of Windows; without it no status file can be written"},
    tCode{-52008, service, 217, "the status file cannot be written", oldStatusFile,
          "free disk space on the system drive"},
    tCode{-52008, event, 1598, "the stop event cannot be created", noService,
          "restart the machine: the system is out of resources"},
    tCode{-52026, service, 207, "the status file's temporary file cannot be opened", oldStatusFile,
          "give the service write access to the `Corvell` folder, which must exist; close what has the file open"},
    tCode{-52026, service, 225, "the new status file cannot take the old one's place", oldStatusFile,
          "close what has the status file open"},

    tCode{0, pluginManager, 55, "the plug-in's Initialize returned this negative code", inCodeLine,
          "look it up in the plug-in's documentation"},
};

}  // namespace

std::span<const tCode> all() noexcept { return table; }

std::vector<const tCode*> find(std::int32_t code) {
    std::vector<const tCode*> found;
    if (code >= 0) return found;
    const bool mayBePluginsOwn = code < firstReserved || code > lastReserved;
    for (const tCode& entry : table) {
        if (entry.code == code || (entry.code == 0 && mayBePluginsOwn)) found.push_back(&entry);
    }
    std::stable_partition(found.begin(), found.end(), [](const tCode* entry) { return entry->shownAs == inCodeLine; });
    return found;
}

}  // namespace nCodes
