#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "source/nPluginData.h"
#include "tests/support/folder.h"
#include "tests/support/peFile.h"
#include "tool/check/prediction.h"
#include "tool/check/thisMachine.h"
#include "tool/rules.h"

namespace support {

/// Returns "ID" or "LINE ID" for each finding.
inline std::vector<std::string> idsOf(const std::vector<tFinding>& findings) {
    std::vector<std::string> ids;
    for (const tFinding& finding : findings) {
        ids.push_back(finding.line ? std::to_string(*finding.line) + ' ' + finding.id : finding.id);
    }
    return ids;
}

/// Returns the message of the first finding of this rule, or an empty text.
inline std::string messageOf(const std::vector<tFinding>& findings, std::string_view id) {
    for (const tFinding& finding : findings) {
        if (finding.id == id) return finding.message;
    }
    return {};
}

inline std::string remedyOf(const std::vector<tFinding>& findings, std::string_view id) {
    for (const tFinding& finding : findings) {
        if (finding.id == id) return finding.remedy;
    }
    return {};
}

inline tPluginDescription described(std::string name, std::vector<std::string> dependencies = {}) {
    tPluginDescription description;
    description.name = std::move(name);
    description.dependencies = std::move(dependencies);
    return description;
}

/// A library for x86-64 without code that runs when it is loaded, and without imports.
inline tPeFile plainLibrary(const std::vector<std::string>& exports = {}) {
    tPeFile file;
    for (const std::string& name : exports) {
        file.exports.push_back({name, static_cast<std::uint32_t>(file.exports.size() + 1), {}});
    }
    return file;
}

/// The bytes of such a library with code that runs when it is loaded, as compilers make them.
inline std::string usualLibrary(const std::vector<std::string>& exports = {}) {
    std::string bytes = plainLibrary(exports).bytes();
    put32(bytes, tPeFile::optionalHeader + 16, tPeFile::sectionRva);
    return bytes;
}

/// A plug-in directory and a folder of libraries.
class tPluginFolder {
public:
    /// Writes a file into the plug-in directory and returns its path.
    std::string add(const std::filesystem::path& name, std::string_view text) {
        return folder_.write("plugins" / name, text);
    }
    /// Writes a library and returns the path with which a description names it.
    std::string addLibrary(const std::filesystem::path& name, std::string_view bytes) {
        folder_.write("libraries" / name, bytes);
        return library(name);
    }
    /// Returns the path with which a description names a library. The host's machine is Windows, so on others the
    /// folder is mapped.
    [[nodiscard]] std::string library(const std::filesystem::path& name) const {
        if (nThisMachine::runsHost()) return folder_.utf8("libraries" / name);
        std::u8string text = name.u8string();
        std::replace(text.begin(), text.end(), u8'/', u8'\\');
        return "C:\\Libraries\\" + std::string(text.begin(), text.end());
    }
    [[nodiscard]] std::string path(const std::filesystem::path& name = {}) const {
        return folder_.utf8(name.empty() ? "plugins" : "plugins" / name);
    }
    [[nodiscard]] const tFolder& folder() const { return folder_; }

    [[nodiscard]] nCheck::tRequest request(std::uint32_t allowedMask = 0xFFFFFFFF) const {
        nCheck::tRequest request;
        request.places = {path()};
        request.allowedMask = allowedMask;
        request.folderMap = {{"C:\\Libraries", folder_.utf8("libraries")}};
        return request;
    }
    [[nodiscard]] nCheck::tPrediction predict(std::uint32_t allowedMask = 0xFFFFFFFF) const {
        return nCheck::predict(request(allowedMask));
    }

    /// Returns "NAME CODE" for each plug-in in start order, with "-" for a code that is not predicted.
    [[nodiscard]] static std::vector<std::string> codes(const nCheck::tPrediction& prediction) {
        std::vector<std::string> codes;
        for (const nCheck::tPredictedPlugin& plugin : prediction.plugins) {
            codes.push_back(plugin.description.name + ' ' + (plugin.code ? std::to_string(*plugin.code) : "-"));
        }
        return codes;
    }

private:
    tFolder folder_{"check"};
    std::filesystem::path plugins_ = folder_.makeFolder("plugins");
    std::filesystem::path libraries_ = folder_.makeFolder("libraries");
};

}  // namespace support
