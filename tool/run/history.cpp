#include "tool/run/history.h"

namespace nRun {
namespace {

void add(tHistory& history, std::size_t plugins, bool& lifeOver, const tEvent& event) {
    auto& lives = history.lives;
    switch (event.kind) {
        case tEventKind::ready: history.ready = event.number == plugins; break;
        case tEventKind::called:
            if (lifeOver) lives.emplace_back(plugins);
            lifeOver = false;
            history.last = &event;
            history.running = true;
            break;
        case tEventKind::returned:
            if (!lives.empty()) lives.back()[event.plugin].returned[static_cast<std::size_t>(event.phase)] = &event;
            history.running = false;
            break;
        case tEventKind::left:
            if (event.number < lives.size()) lives[event.number][event.plugin].left.push_back(&event);
            break;
        case tEventKind::lifeOver: lifeOver = true; break;
        case tEventKind::finished: history.finished = true; break;
        default:
            if (history.end == nullptr) history.end = &event;
    }
}

}  // namespace

tHistory historyOf(std::size_t plugins, const std::vector<tEvent>& events) {
    tHistory history;
    bool lifeOver = true;
    for (const tEvent& event : events) {
        if (event.plugin < plugins) add(history, plugins, lifeOver, event);
    }
    return history;
}

}  // namespace nRun
