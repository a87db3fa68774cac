#include "tool/run/leftovers.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "tool/format.h"

namespace nRun {
namespace {

/// How many handles a later life of a plug-in may leave open if no other does. Runtimes open a few for each thread that
/// waits for the first time, such as an event; more than for a few threads are the plug-in's own.
constexpr std::int64_t mostForgiven = 8;

std::string counted(std::int64_t count, std::string_view what) {
    return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

}  // namespace

tLeftovers::tLeftovers(std::size_t plugins, tProcessState before)
    : atStart_(std::move(before)),
      last_(atStart_),
      opened_(plugins),
      firstOpened_(plugins),
      suspicions_(plugins),
      suspected_(plugins) {}

void tLeftovers::afterCall(std::size_t plugin, tProcessState now) {
    lastPlugin_ = plugin;
    for (const auto& [id, name] : now.things) {
        if (!last_.things.contains(id)) owners_[id] = plugin;
    }
    opened_[plugin] += static_cast<std::int64_t>(now.handles) - static_cast<std::int64_t>(last_.handles);
    last_ = std::move(now);
}

bool tLeftovers::hasNewThreads(const tProcessState& now) const {
    return std::ranges::any_of(now.things, [this](const auto& thing) {
        return thing.second == tProcessState::thread && !atStart_.things.contains(thing.first);
    });
}

std::vector<tLeft> tLeftovers::afterLife(const tProcessState& now) {
    // Threads change things between the calls, too.
    afterCall(lastPlugin_, now);
    tTexts texts(opened_.size());
    std::vector<tLeft> left;
    addHandles(now, left);
    addThings(now, texts);
    for (std::size_t plugin = 0; plugin < texts.size(); ++plugin) {
        for (std::string& text : texts[plugin]) left.push_back({life_, plugin, std::move(text)});
    }
    ++life_;
    atStart_ = last_;
    return left;
}

void tLeftovers::addThings(const tProcessState& now, tTexts& texts) const {
    std::vector<std::int64_t> threads(texts.size());
    for (const auto& [id, name] : now.things) {
        if (atStart_.things.contains(id)) continue;
        const std::size_t plugin = owners_.at(id);
        if (name == tProcessState::thread) {
            ++threads[plugin];
        } else {
            texts[plugin].push_back(name);
        }
    }
    for (std::size_t plugin = 0; plugin < threads.size(); ++plugin) {
        if (threads[plugin] > 0) texts[plugin].push_back(counted(threads[plugin], tProcessState::thread));
    }
}

void tLeftovers::addHandles(const tProcessState& now, std::vector<tLeft>& left) {
    undecided_ = life_ == 0 && now.handles > atStart_.handles;
    if (life_ == 0) {
        firstOpened_ = opened_;
    } else if (now.handles > mostHandles_) {
        for (std::size_t plugin = 0; plugin < opened_.size(); ++plugin) {
            if (opened_[plugin] > 0) suspect(plugin, left);
        }
    }
    mostHandles_ = std::max(mostHandles_, now.handles);
    std::ranges::fill(opened_, 0);
}

void tLeftovers::suspect(std::size_t plugin, std::vector<tLeft>& left) {
    std::vector<tLeft>& suspected = suspected_[plugin];
    const std::string text = counted(opened_[plugin], "handle");
    if (life_ == 1 && firstOpened_[plugin] >= opened_[plugin]) suspected.push_back({0, plugin, text, true});
    suspected.push_back({life_, plugin, text, true});
    if (++suspicions_[plugin] == 1 && opened_[plugin] <= mostForgiven) {
        undecided_ = true;
    } else {
        std::ranges::move(suspected, std::back_inserter(left));
        suspected.clear();
    }
}

}  // namespace nRun
