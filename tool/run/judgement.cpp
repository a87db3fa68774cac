#include "tool/run/judgement.h"

#include <algorithm>
#include <array>
#include <utility>

#include "err/ErrorConstants.h"
#include "tool/explain/code.h"
#include "tool/format.h"
#include "tool/run/history.h"
#include "tool/status/statusSummary.h"

namespace nRun {
namespace {

using nStatus::tPhase;

constexpr std::string_view endsService = "this would have ended the service";
constexpr std::string_view missesPlugin = "the service would run without it";

/// Returns the entry's name in the description; empty if the plug-in has no such entry.
const std::string& namedEntry(const tPlugin& plugin, tPhase phase) {
    const tPluginDescription& description = plugin.description;
    if (phase == tPhase::initialize) return description.initialize;
    return phase == tPhase::stop ? description.stop : description.cleanup;
}

std::string entryName(const tPlugin& plugin, tPhase phase) {
    constexpr std::array fallbacks{"Init", "Stop", "Cleanup"};  // as the status file shows them
    const std::string& name = namedEntry(plugin, phase);
    return name.empty() ? fallbacks[static_cast<std::size_t>(phase)] : name;
}

std::string joinedTexts(const std::vector<const tEvent*>& events) {
    std::string result;
    for (const tEvent* const event : events) result.append(result.empty() ? "" : ", ").append(event->text);
    return result;
}

/// Returns whether a process with this exit code was probably ended by an exception. Above the codes of exceptions are
/// those of programs that exit with a small negative number, such as -1.
bool isException(std::uint32_t exitCode) {
    constexpr std::uint32_t lowest = 0xC0000000;
    constexpr std::uint32_t highest = 0xEFFFFFFF;
    return exitCode >= lowest && exitCode <= highest;
}

/// Turns what was observed into outcomes.
class tJudge {
public:
    tJudge(const std::vector<tPlugin>& plugins, const tHistory& history, const tEnding& ending)
        : plugins_(plugins), history_(history), ending_(ending) {}

    [[nodiscard]] tLife judge(std::size_t life) const {
        const bool cutOff = !history_.finished && life + 1 == history_.lives.size();
        tLife result;
        for (std::size_t plugin = 0; plugin < plugins_.size(); ++plugin) {
            result.push_back(judge(life, plugin));
            if (cutOff) addEnd(plugin, history_.lives[life][plugin], result.back());
        }
        return result;
    }

private:
    [[nodiscard]] tPluginLife judge(std::size_t life, std::size_t plugin) const {
        const tRecord& record = history_.lives[life][plugin];
        tPluginLife result;
        for (const tEvent* const returned : record.returned) {
            if (returned == nullptr) continue;
            if (returned->code == 0 && namedEntry(plugins_[plugin], returned->phase).empty()) continue;
            result.calls.push_back(
                {entryName(plugins_[plugin], returned->phase), returned->phase, returned->number, returned->code});
            addCode(life, plugin, *returned, result);
        }
        for (const tEvent* const said : record.said) {
            result.said.push_back({entryName(plugins_[plugin], said->phase), said->number == 0, said->text});
        }
        if (record.left.empty()) return result;
        if (result.outcome == tOutcome::ok) result.outcome = tOutcome::leaked;
        addSentence(result, fmt::format("left behind after Cleanup: {}; the service would keep that until it ends",
                                        joinedTexts(record.left)));
        return result;
    }

    static void addSentence(tPluginLife& result, const std::string& sentence) {
        result.detail.append(result.detail.empty() ? "" : "; ").append(sentence);
    }

    /// Adds what the code of a call means.
    void addCode(std::size_t life, std::size_t plugin, const tEvent& returned, tPluginLife& result) const {
        const std::string name = entryName(plugins_[plugin], returned.phase);
        if (returned.code > 0) addSentence(result, fmt::format("{} returned the warning {}", name, returned.code));
        if (returned.code >= 0) return;
        if (returned.phase != tPhase::initialize) {
            result.outcome = tOutcome::failed;
            addSentence(result, fmt::format("{}; the service would stop nevertheless", failure(name, returned)));
            return;
        }
        const std::string refusal = whyNotStarted(life, plugin, returned.code);
        result.outcome = refusal.empty() ? tOutcome::failed : tOutcome::notStarted;
        addSentence(result, fmt::format("{}; {}", refusal.empty() ? failure(name, returned) : refusal, missesPlugin));
    }

    static std::string failure(const std::string& name, const tEvent& returned) {
        if (returned.code == zuerr::outOfMemory.code) return name + " ran out of memory";
        if (returned.code == zuerr::softwareFault.code) return name + " threw an exception derived from std::exception";
        if (returned.code == zuerr::invalidParameter.code) return "the library could not be unloaded";
        if (returned.phase == tPhase::initialize) return fmt::format("{} returned {}", name, returned.code);
        return fmt::format("{} threw an exception with the code {}", name, returned.code);
    }

    /// Returns why the host did not call Initialize, or an empty text if the code is the plug-in's own.
    [[nodiscard]] std::string whyNotStarted(std::size_t life, std::size_t plugin, std::int32_t code) const {
        const tPluginDescription& description = plugins_[plugin].description;
        if (code == zuerr::featureUnsupported.code) {
            return fmt::format("the machine allows none of the features that it requires ({})",
                               description.requiresMask);
        }
        if (code == zuerr::invalidParameter.code) {
            return "its library cannot be loaded or unloaded, or lacks an entry: 'ziptra check' may say why";
        }
        if (code != zuerr::resourceNotFound.code) return {};
        for (const std::string& name : description.dependencies) {
            const auto isMeant = [&name](const tPlugin& other) { return other.description.name == name; };
            const auto found = std::ranges::find_if(plugins_, isMeant);
            if (found == plugins_.end()) {
                return fmt::format("it depends on {}, which no readable description in its directory has as its name",
                                   name);
            }
            const tEvent* const start =
                history_.lives[life][static_cast<std::size_t>(found - plugins_.begin())].returned[0];
            if (start == nullptr || start->code < 0)
                return fmt::format("it depends on {}, which has not started", name);
        }
        return "a plug-in on which it depends comes later in the start order, or is named twice";
    }

    /// Adds how the process ended to a plug-in of the life in which it did.
    void addEnd(std::size_t plugin, const tRecord& record, tPluginLife& result) const {
        if (plugin == history_.last->plugin) {
            const auto [outcome, sentence] = end();
            result.outcome = outcome;
            addSentence(result, sentence);
            return;
        }
        const tEvent* const start = record.returned[0];
        const std::string culprit = plugins_[history_.last->plugin].description.name;
        if (start == nullptr) {
            result.outcome = tOutcome::notStarted;
            addSentence(result, fmt::format("the life had ended before, in {}", culprit));
        } else if (start->code >= 0 && record.returned.back() == nullptr) {
            addSentence(result,
                        fmt::format("it was not stopped and cleaned up, because the life ended in {}", culprit));
        }
    }

    /// Returns "in NAME" or "after NAME had returned".
    [[nodiscard]] std::string where() const {
        const std::string name = entryName(plugins_[history_.last->plugin], history_.last->phase);
        return history_.running ? "in " + name : fmt::format("after {} had returned", name);
    }

    [[nodiscard]] std::pair<tOutcome, std::string> end() const {
        if (history_.end != nullptr) return reportedEnd(*history_.end);
        if (!ending_.exitCode) return {tOutcome::hung, hang()};
        if (isException(*ending_.exitCode)) return {tOutcome::crashed, crash(*ending_.exitCode, {}, false)};
        constexpr std::uint32_t abortCode = 3;  // also of an abort in another C library, which reports nothing
        const std::string code =
            *ending_.exitCode == abortCode
                ? "exited with code 3, as abort does,"
                : fmt::format("ended with the exit code {}", static_cast<std::int32_t>(*ending_.exitCode));
        return {tOutcome::exited, fmt::format("the process {} {}; {}", code, where(), endsService)};
    }

    [[nodiscard]] std::pair<tOutcome, std::string> reportedEnd(const tEvent& event) const {
        switch (event.kind) {
            case tEventKind::aborted:
                return {tOutcome::crashed, fmt::format("a call of abort {}; {}", where(), endsService)};
            case tEventKind::threw:
                return {tOutcome::crashed,
                        fmt::format("an exception not derived from std::exception {}; {}", where(), endsService)};
            case tEventKind::endedThread:
                return {tOutcome::exited,
                        fmt::format("the host's thread was ended {}; the service could no longer be stopped", where())};
            case tEventKind::keptLibrary: return {tOutcome::failed, unloading()};
            default:
                return {tOutcome::crashed,
                        crash(static_cast<std::uint32_t>(event.code), event.text, event.number != 0)};
        }
    }

    [[nodiscard]] std::string unloading() const {
        return entryName(plugins_[history_.last->plugin], history_.last->phase) +
               " failed, and the library could not be unloaded; this would have ended the service's run";
    }

    [[nodiscard]] std::string crash(std::uint32_t code, const std::string& place, bool afterUnloading) const {
        const auto number = static_cast<std::int32_t>(code);
        const auto known = nExplain::findSystemCode(number);
        std::string text =
            fmt::format("{} ({})", known ? known->meaning : "an exception", nExplain::hexadecimal(number));
        if (!place.empty()) text += " at " + place;
        if (afterUnloading) text += unloadedText();
        return fmt::format("{} {}; {}", text, where(), endsService);
    }

    /// Returns whether Initialize failed in the last life, and was called at all.
    [[nodiscard]] bool hasFailed(std::size_t plugin, const tEvent& initialized) const {
        return initialized.code < 0 && whyNotStarted(history_.lives.size() - 1, plugin, initialized.code).empty();
    }

    /// Returns whether the plug-in's library has been unloaded in the last life, or is about to be.
    [[nodiscard]] bool isUnloaded(std::size_t plugin) const {
        const auto& [initialized, stopped, cleanedUp] = history_.lives.back()[plugin].returned;
        return cleanedUp != nullptr || (initialized != nullptr && hasFailed(plugin, *initialized)) ||
               (plugin == history_.last->plugin && history_.last->phase == tPhase::cleanup);
    }

    /// Names the plug-ins whose threads may run code of an unloaded library; empty if none has been unloaded.
    [[nodiscard]] std::string unloadedText() const {
        constexpr std::size_t mostNames = 3;
        std::string names;
        std::size_t count = 0;
        for (std::size_t plugin = 0; plugin < plugins_.size(); ++plugin) {
            if (!isUnloaded(plugin)) continue;
            names.append(names.empty() ? "" : " or ").append(plugins_[plugin].description.name);
            ++count;
        }
        if (count == 0) return {};
        return fmt::format(", perhaps on a thread of {}, whose library has been unloaded,",
                           count <= mostNames ? names : "one of the plug-ins");
    }

    [[nodiscard]] std::string hang() const {
        const bool starting = history_.last->phase == tPhase::initialize;
        std::string text = fmt::format("no return within {} {}", nStatus::durationText(ending_.limitMs), where());
        for (const std::string& title : ending_.windows)
            text += fmt::format(", where the window \"{}\" is open", title);
        if (history_.running && history_.last->phase == tPhase::cleanup && ending_.windows.empty()) {
            text += ", which may be waiting for a thread that does not end";
        }
        return fmt::format("{}; this would keep the service from {}", text,
                           starting ? "starting the other plug-ins, and from stopping" : "stopping");
    }

    const std::vector<tPlugin>& plugins_;
    const tHistory& history_;
    const tEnding& ending_;
};

/// Returns why the result would say nothing about the plug-ins, or an empty text if it does.
std::string whyUseless(const std::vector<tPlugin>& plugins, const tHistory& history, const tEnding& ending) {
    std::string reason;
    if (history.end != nullptr && history.end->kind == tEventKind::gaveUp) {
        reason = "their process gave up: " + history.end->text;
    } else if (ending.exitCode == lostReportsCode) {
        reason = "their process could not report";
    } else if (!history.ready || history.last == nullptr) {
        if (!ending.exitCode) return "their process hung before it called one";
        return fmt::format("their process ended with the exit code {} before it called one", *ending.exitCode);
    }
    if (reason.empty() || history.last == nullptr) return reason;
    const tPlugin& plugin = plugins[history.last->plugin];
    return fmt::format("{}, in life {}; its last call was that of {} of {}", reason, history.lives.size(),
                       entryName(plugin, history.last->phase), plugin.description.name);
}

}  // namespace

tResult judge(std::vector<tPlugin> plugins, std::size_t times, const std::vector<tEvent>& events,
              const tEnding& ending) {
    const tHistory history = historyOf(plugins.size(), events);
    const std::string useless = whyUseless(plugins, history, ending);
    if (!useless.empty()) throw tCannotRun("The plug-ins cannot be run: " + useless);
    tResult result{std::move(plugins), {}};
    const tJudge judge(result.plugins, history, ending);
    const std::size_t lives = history.lives.size();
    const std::size_t shown = history.finished ? std::min(lives, times) : lives;
    for (std::size_t life = 0; life < shown; ++life) result.lives.push_back(judge.judge(life));
    return result;
}

std::string_view outcomeName(tOutcome outcome) noexcept {
    constexpr std::array<std::string_view, 7> names{"ok",     "failed", "crashed",   "hung",
                                                    "exited", "leaked", "notStarted"};
    return names[static_cast<std::size_t>(outcome)];
}

std::string sentenceOf(const tSaid& said) {
    if (said.byHostThread) return fmt::format("{} said: \"{}\"", said.entry, said.text);
    return fmt::format("a thread said after {} was called: \"{}\"", said.entry, said.text);
}

bool passed(const tResult& result) noexcept {
    return std::ranges::all_of(result.lives, [](const tLife& life) {
        return std::ranges::all_of(life, [](const tPluginLife& plugin) { return plugin.outcome == tOutcome::ok; });
    });
}

}  // namespace nRun
