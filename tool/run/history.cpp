#include "tool/run/history.h"

#include <algorithm>
#include <iterator>

namespace nRun {
namespace {

bool isAboutHandles(const tEvent& event) { return event.kind == tEventKind::leftHandles; }

bool isFinished(const std::vector<tEvent>& events) {
    return std::ranges::any_of(events, [](const tEvent& event) { return event.kind == tEventKind::finished; });
}

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
        case tEventKind::said:
            if (!lives.empty() && !event.text.empty()) lives.back()[event.plugin].said.push_back(&event);
            break;
        case tEventKind::left:
        case tEventKind::leftHandles:
            if (event.number < lives.size()) lives[event.number][event.plugin].left.push_back(&event);
            break;
        case tEventKind::lifeOver: lifeOver = true; break;
        case tEventKind::finished: history.finished = true; break;
        default:
            if (history.end == nullptr) history.end = &event;
    }
}

}  // namespace

bool leftHandles(const std::vector<tEvent>& events) {
    return isFinished(events) && std::ranges::any_of(events, isAboutHandles);
}

std::vector<tEvent> withHandlesOf(std::vector<tEvent> events, const std::vector<tEvent>& other) {
    if (!isFinished(other)) return events;
    std::erase_if(events, isAboutHandles);
    std::ranges::copy_if(other, std::back_inserter(events), isAboutHandles);
    return events;
}

tHistory historyOf(std::size_t plugins, const std::vector<tEvent>& events) {
    tHistory history;
    bool lifeOver = true;
    for (const tEvent& event : events) {
        if (event.plugin < plugins) add(history, plugins, lifeOver, event);
    }
    return history;
}

}  // namespace nRun
