#pragma once

#include <string>
#include <vector>

#include "tool/run/judgement.h"

namespace support {

/// Makes the events of a process that runs plug-ins, in the order of the calls.
class tLifeEvents {
public:
    using tPhase = nStatus::tPhase;
    using tKind = nRun::tEventKind;

    explicit tLifeEvents(std::size_t plugins) { events.push_back({tKind::ready, 0, {}, plugins}); }

    tLifeEvents& begin(std::size_t plugin, tPhase phase) {
        events.push_back({tKind::called, plugin, phase});
        return *this;
    }
    tLifeEvents& call(std::size_t plugin, tPhase phase, std::int32_t code = 0, std::uint64_t ms = 1) {
        begin(plugin, phase);
        events.push_back({tKind::returned, plugin, phase, ms, code});
        return *this;
    }
    /// All calls of a plug-in that goes well.
    tLifeEvents& calls(std::size_t plugin) {
        return call(plugin, tPhase::initialize).call(plugin, tPhase::stop).call(plugin, tPhase::cleanup);
    }
    tLifeEvents& said(std::size_t plugin, tPhase phase, std::string text, bool byHostThread = true) {
        events.push_back({tKind::said, plugin, phase, byHostThread ? 0U : 1U, 0, std::move(text)});
        return *this;
    }
    tLifeEvents& left(std::size_t life, std::size_t plugin, std::string text) {
        events.push_back({tKind::left, plugin, {}, life, 0, std::move(text)});
        return *this;
    }
    tLifeEvents& leftHandles(std::size_t life, std::size_t plugin, std::string text) {
        events.push_back({tKind::leftHandles, plugin, {}, life, 0, std::move(text)});
        return *this;
    }
    tLifeEvents& add(tKind kind, std::int32_t code = 0, std::string text = {}) {
        events.push_back({kind, 0, {}, 0, code, std::move(text)});
        return *this;
    }
    tLifeEvents& over() { return add(tKind::lifeOver); }
    tLifeEvents& finished() { return over().add(tKind::finished); }

    std::vector<nRun::tEvent> events;
};

/// A plug-in with all three entries, described by "plugins/NAME.ini".
inline nRun::tPlugin livingPlugin(const std::string& name, std::vector<std::string> dependencies = {}) {
    nRun::tPlugin plugin{"plugins/" + name + ".ini", {}};
    plugin.description.name = name;
    plugin.description.dependencies = std::move(dependencies);
    plugin.description.initialize = name + "Initialize";
    plugin.description.stop = name + "Stop";
    plugin.description.cleanup = name + "Cleanup";
    return plugin;
}

}  // namespace support
