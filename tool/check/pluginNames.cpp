#include "tool/check/pluginNames.h"

#include <algorithm>
#include <string_view>

#include "tool/check/wording.h"

namespace nCheck {
namespace {

namespace nKeys = nDescriptionFormat::nKeys;
using nWording::quoted;

bool isLetterOrDigit(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9'); }

/// Returns whether "Dependencies" can name the plug-in.
bool isUsable(const std::string& name) {
    if (std::ranges::all_of(name, isLetterOrDigit)) return true;  // most names, which the host never splits
    std::vector<std::string> list;
    nPluginData::splitDependencies(name, list);
    return list.size() == 1 && list.front() == name;
}

void checkName(tCatalogue& catalogue, std::size_t plugin) {
    const std::string& name = catalogue.descriptions()[plugin].name;
    const std::optional<int> line = catalogue.lines(plugin).of(nKeys::name);
    if (name.empty()) {
        catalogue.findings(plugin).add("missing-name", line, "the plug-in has no name");
    } else if (!isUsable(name)) {
        const bool comma = name.find(',') != std::string::npos;
        catalogue.findings(plugin).add(
            "unusable-name", line,
            "nothing can depend on " + quoted(name) +
                (comma ? ", which contains a comma" : ", which begins or ends with a blank"));
    }
}

/// Reports every plug-in of the name but the first in the order of the files.
void checkRepeated(tCatalogue& catalogue, std::string_view name, std::vector<std::size_t> plugins) {
    std::sort(plugins.begin(), plugins.end());
    for (std::size_t i = 1; i < plugins.size(); ++i) {
        const std::size_t plugin = plugins[i];
        catalogue.findings(plugin).add(
            "duplicate-name", catalogue.lines(plugin).of(nKeys::name),
            quoted(name) + " is also the name of the plug-in in " + catalogue.path(plugins.front()));
    }
}

}  // namespace

void findInNames(tCatalogue& catalogue) {
    for (std::size_t plugin = 0; plugin < catalogue.size(); ++plugin) checkName(catalogue, plugin);
    for (const auto& [name, named] : catalogue.names()) {
        if (!name.empty() && named.plugins.size() > 1) checkRepeated(catalogue, name, named.plugins);
    }
}

void findWithoutEntries(tCatalogue& catalogue) {
    for (std::size_t plugin = 0; plugin < catalogue.size(); ++plugin) {
        const tPluginDescription& description = catalogue.descriptions()[plugin];
        const bool hasEntries =
            !description.initialize.empty() || !description.stop.empty() || !description.cleanup.empty();
        if (hasEntries || description.path.empty()) continue;
        catalogue.findings(plugin).add("no-entries", std::nullopt, "the host will call no function of the plug-in");
    }
}

}  // namespace nCheck
