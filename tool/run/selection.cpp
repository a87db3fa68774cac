#include "tool/run/selection.h"

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <map>
#include <new>
#include <set>
#include <utility>

#include "source/descriptionFormat.h"
#include "source/nPluginOrder.h"
#include "stdpath/path.h"
#include "tool/format.h"

namespace nRun {
namespace {

tPlugin readNamed(const std::string& file) {
    tPlugin plugin{file, {}};
    try {
        nPluginData::readDescription(file, plugin.description);
    } catch (const std::exception&) {
        throw tCannotRun(fmt::format("The host cannot read '{}' as a description: 'ziptra check' says why", file));
    }
    return plugin;
}

std::vector<std::string> descriptionsIn(const boost::filesystem::path& directory) {
    std::vector<std::string> files;
    try {
        nPluginData::listDescriptionFiles(directory, nDescriptionFormat::extension, files);
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception&) {
        throw tCannotRun(fmt::format("The directory '{}' cannot be read", nStdPath::pathToUtf8(directory)));
    }
    return files;
}

bool isSameFile(const std::string& one, const std::string& other) {
    boost::system::error_code ignored;
    return boost::filesystem::equivalent(nStdPath::pathFromUtf8(one), nStdPath::pathFromUtf8(other), ignored);
}

/// The plug-ins that the directories of those that were named describe. Each directory is read when it is first needed.
class tNeighbours {
public:
    /// Returns those beside this plug-in that have the name.
    [[nodiscard]] std::vector<tPlugin> find(const tPlugin& plugin, const std::string& name) {
        const auto parent = nStdPath::pathFromUtf8(plugin.file).parent_path();
        const auto& directory = parent.empty() ? boost::filesystem::path(".") : parent;
        const std::string key = nStdPath::pathToUtf8(directory) + '\0';
        if (!plugins_.contains(key)) readAll(directory, key);
        const auto found = plugins_.find(key + name);
        return found != plugins_.end() ? found->second : std::vector<tPlugin>();
    }

private:
    /// The host skips a file that it cannot read.
    void readAll(const boost::filesystem::path& directory, const std::string& key) {
        plugins_[key];
        for (const std::string& file : descriptionsIn(directory)) {
            try {
                const tPlugin plugin = readNamed(file);
                plugins_[key + plugin.description.name].push_back(plugin);
            } catch (const tCannotRun&) {
                continue;
            }
        }
    }

    std::map<std::string, std::vector<tPlugin>> plugins_;  // by directory, a zero and the name
};

std::vector<tPlugin> inStartOrder(std::vector<tPlugin> plugins) {
    std::vector<tPluginDescription> descriptions;
    descriptions.reserve(plugins.size());
    for (const tPlugin& plugin : plugins) descriptions.push_back(plugin.description);
    std::vector<tPlugin> ordered;
    ordered.reserve(plugins.size());
    for (const std::size_t position : nPluginOrder::positionsInOrder(descriptions)) {
        ordered.push_back(std::move(plugins[position]));
    }
    return ordered;
}

}  // namespace

std::vector<tPlugin> select(const std::vector<std::string>& files) {
    std::vector<tPlugin> plugins;
    std::set<std::string> names;
    const auto add = [&](const tPlugin& plugin) {
        names.insert(plugin.description.name);
        plugins.push_back(plugin);
    };
    for (const std::string& file : files) {
        const bool repeated = std::ranges::any_of(plugins, [&](const tPlugin& p) { return isSameFile(p.file, file); });
        if (!repeated) add(readNamed(file));
    }
    tNeighbours neighbours;
    std::size_t next = 0;
    while (next < plugins.size()) {
        const tPlugin dependant = plugins[next++];  // a copy, because the list grows
        for (const std::string& name : dependant.description.dependencies) {
            if (names.contains(name)) continue;
            std::ranges::for_each(neighbours.find(dependant, name), add);
        }
    }
    return inStartOrder(std::move(plugins));
}

}  // namespace nRun
