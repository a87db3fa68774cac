// Checks a plug-in directory with any contents: nothing crashes, and the prediction agrees with what the host's own
// functions say about the files. The input is one byte for the machine's features and then the files' contents,
// separated by the byte 1E; the last one is a library, which descriptions name as C:\L\a.dll.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "check.h"
#include "err/Exception.h"
#include "source/nPluginOrder.h"
#include "tool/check/prediction.h"
#include "tool/check/render.h"
#include "tool/rules.h"

namespace {

constexpr std::size_t mostDescriptions = 6;

/// The folders of a run. All inputs share them, because creating folders takes longer than most inputs.
class tPluginFolder {
public:
    tPluginFolder() {
        create_directories(root_ / "plugins");
        create_directories(root_ / "libraries");
    }
    ~tPluginFolder() { remove_all(root_); }
    tPluginFolder(const tPluginFolder&) = delete;
    tPluginFolder& operator=(const tPluginFolder&) = delete;

    [[nodiscard]] std::filesystem::path description(std::size_t number) const {
        return root_ / "plugins" / (std::to_string(number) + ".ini");
    }
    [[nodiscard]] std::string plugins() const { return (root_ / "plugins").string(); }
    [[nodiscard]] std::string libraries() const { return (root_ / "libraries").string(); }

    void write(const std::vector<std::string_view>& parts) const {
        for (std::size_t i = 0; i < mostDescriptions; ++i) {
            if (i + 1 < parts.size()) {
                put(description(i), parts[i]);
            } else {
                std::filesystem::remove(description(i));
            }
        }
        put(root_ / "libraries" / "a.dll", parts.back());
    }

private:
    static void put(const std::filesystem::path& file, std::string_view bytes) {
        std::ofstream(file, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }

    std::filesystem::path root_ =
        std::filesystem::temp_directory_path() / ("fuzz-directory-" + std::to_string(std::random_device{}()));
};

std::vector<std::string_view> split(std::string_view text) {
    std::vector<std::string_view> parts;
    while (parts.size() < mostDescriptions) {
        const std::size_t end = text.find('\x1E');
        if (end == std::string_view::npos) break;
        parts.push_back(text.substr(0, end));
        text.remove_prefix(end + 1);
    }
    parts.push_back(text);
    return parts;
}

/// Returns what the host reads, or nullopt if it rejects the file.
std::optional<tPluginDescription> readAsHost(const std::filesystem::path& file) {
    try {
        tPluginDescription description;
        nPluginData::readDescription(file.string(), description);
        return description;
    } catch (const zuerr::Exception&) {
        return std::nullopt;
    }
}

void compare(const tPluginDescription& predicted, const tPluginDescription& hosts) {
    check(predicted.name == hosts.name, "name");
    check(predicted.dependencies == hosts.dependencies, "dependencies");
    check(predicted.path == hosts.path, "path");
    check(predicted.initialize == hosts.initialize, "initialize");
    check(predicted.stop == hosts.stop, "stop");
    check(predicted.cleanup == hosts.cleanup, "cleanup");
    // Windows' numbers have 32 bits.
    check(predicted.requiresMask == hosts.requiresMask || predicted.requiresMask == UINT32_MAX, "requires");
}

void comparePlugins(const nCheck::tPrediction& prediction, const tPluginFolder& folder, std::size_t count) {
    std::vector<tPluginDescription> descriptions;
    std::size_t rejected = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (std::optional<tPluginDescription> description = readAsHost(folder.description(i))) {
            descriptions.push_back(std::move(*description));
        } else {
            ++rejected;
        }
    }
    nPluginOrder::sort(descriptions);
    check(prediction.messages.size() == rejected, "messages");
    check(prediction.plugins.size() == descriptions.size(), "number of plug-ins");
    for (std::size_t i = 0; i < descriptions.size(); ++i) compare(prediction.plugins[i].description, descriptions[i]);
}

void checkCodes(const nCheck::tPrediction& prediction) {
    for (const nCheck::tPredictedPlugin& plugin : prediction.plugins) {
        if (!plugin.code || *plugin.code == 0) continue;
        check(*plugin.code == -52002 || *plugin.code == -52005 || *plugin.code == -52006, "code");
        const bool explained = std::any_of(prediction.findings.begin(), prediction.findings.end(),
                                           [&](const tFinding& finding) { return finding.file == plugin.file; });
        check(explained, "a finding for each code");
    }
    for (const tFinding& finding : prediction.findings) {
        check(nRules::find(finding.id) != nullptr && !finding.message.empty() && !finding.remedy.empty(), "finding");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    static const tPluginFolder folder;
    const std::vector<std::string_view> parts = split({reinterpret_cast<const char*>(data) + 1, size - 1});
    folder.write(parts);
    nCheck::tRequest request;
    request.places = {folder.plugins()};
    request.allowedMask = 0xFFFFFF00U | data[0];
    request.folderMap = {{"C:\\L", folder.libraries()}};
    const nCheck::tPrediction prediction = predict(request);
    comparePlugins(prediction, folder, parts.size() - 1);
    checkCodes(prediction);
    check(!toText(prediction, false).empty() && !toJson(prediction).empty(), "texts");
    return 0;
}
