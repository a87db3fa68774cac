#include "tool/check/dependencyFindings.h"

#include <algorithm>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "tool/check/chainRemedy.h"
#include "tool/check/circles.h"
#include "tool/check/similarNames.h"
#include "tool/check/wording.h"
#include "tool/plainText.h"

namespace nCheck {
namespace {

namespace nKeys = nDescriptionFormat::nKeys;
using nWording::quoted;

std::vector<bool> mayStart(const std::vector<tOutcome>& outcomes) {
    std::vector<bool> result;
    result.reserve(outcomes.size());
    for (const tOutcome& outcome : outcomes) result.push_back(outcome.start != tStart::no);
    return result;
}

std::vector<std::string_view> allNames(const tCatalogue& catalogue) {
    std::vector<std::string_view> names;
    for (const auto& [name, named] : catalogue.names()) {
        if (!name.empty()) names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

/// Returns the lists of dependencies in which the case of a name is wrong, with the right names.
std::vector<tChainRemedies::tChange> corrections(const tCatalogue& catalogue, const nSimilarNames::tNames& names) {
    std::vector<tChainRemedies::tChange> changes;
    for (std::size_t plugin = 0; plugin < catalogue.size(); ++plugin) {
        tChainRemedies::tChange change{plugin, catalogue.descriptions()[plugin].dependencies};
        bool isChanged = false;
        for (std::string& name : change.dependencies) {
            const auto other = catalogue.named(name) == nullptr ? names.differingInCase(name) : std::nullopt;
            if (!other) continue;
            name = *other;
            isChanged = true;
        }
        if (!isChanged) continue;
        std::sort(change.dependencies.begin(), change.dependencies.end());
        changes.push_back(std::move(change));
    }
    return changes;
}

std::string describeCircle(const std::vector<std::size_t>& circle, const tCatalogue& catalogue) {
    constexpr std::size_t longestName = 100;
    const auto nameOf = [&](std::size_t member) {
        return nPlainText::shortened(catalogue.descriptions()[member].name, longestName);
    };
    std::string text = "circular dependency: ";
    for (const std::size_t member : circle) text += nameOf(member) + " -> ";
    return text + nameOf(circle.front());
}

/// Examines one plug-in after another.
class tExamination {
public:
    tExamination(tCatalogue& catalogue, const std::vector<tOutcome>& outcomes, const std::vector<std::string>& assumed)
        : catalogue_(catalogue),
          circles_(catalogue, mayStart(outcomes)),
          assumed_(assumed.begin(), assumed.end()),
          firstStart_(catalogue.size(), catalogue.size()) {
        for (const tDescriptionFile& file : catalogue.files()) {
            if (!file.rejectedName.empty()) rejected_.emplace(file.rejectedName, file.findings.file());
        }
        for (const auto& [name, named] : catalogue.names()) {
            const auto first = std::ranges::find_if(
                named.plugins, [&](std::size_t plugin) { return outcomes[plugin].start != tStart::no; });
            if (first != named.plugins.end()) firstStart_[named.plugins.front()] = catalogue.rank(*first);
        }
    }

    void examine(std::size_t plugin);

private:
    void add(std::size_t plugin, std::string_view rule, std::string message, std::string remedy = {}) {
        catalogue_.findings(plugin).add(rule, catalogue_.lines(plugin).of(nKeys::dependencies), std::move(message),
                                        std::move(remedy));
    }
    void examineUnknown(std::size_t plugin, const std::string& name);
    void examineKnown(std::size_t plugin, const std::string& name, const tNamed& named);
    void reportCircle(std::size_t plugin, const std::vector<std::size_t>& circle);
    [[nodiscard]] nSimilarNames::tNames& names();
    [[nodiscard]] tChainRemedies& remedies();

    tCatalogue& catalogue_;
    tCircles circles_;
    std::optional<nSimilarNames::tNames> names_;  ///< none until they are needed
    std::optional<tChainRemedies> remedies_;      ///< none until one is needed
    std::unordered_set<std::string> assumed_;
    std::unordered_map<std::string, std::string> rejected_;  ///< the files that the host rejects, by the plug-in's name
    /// Of each name, by the position of its first plug-in: the first rank that may start, or the number of plug-ins.
    std::vector<std::size_t> firstStart_;
};

void tExamination::examine(std::size_t plugin) {
    const tPluginDescription& description = catalogue_.descriptions()[plugin];
    const std::vector<std::size_t>* const circle = circles_.of(plugin);
    if (circle != nullptr) reportCircle(plugin, *circle);
    const std::string* previous = nullptr;
    const std::string* repeated = nullptr;
    for (const std::string& name : description.dependencies) {
        const bool isRepeated = previous != nullptr && *previous == name;
        previous = &name;
        if (isRepeated) {
            if (repeated == nullptr || *repeated != name)
                add(plugin, "repeated-dependency", quoted(name) + " is named twice: such a plug-in never starts");
            repeated = &name;
            continue;
        }
        const tNamed* const named = catalogue_.named(name);
        if (named != nullptr) {
            examineKnown(plugin, name, *named);
        } else if (!assumed_.contains(name)) {
            examineUnknown(plugin, name);
        }
    }
}

void tExamination::examineUnknown(std::size_t plugin, const std::string& name) {
    if (const auto rejected = rejected_.find(name); rejected != rejected_.end()) {
        add(plugin, "unknown-dependency", "the host rejects the description of " + quoted(name),
            "Correct " + rejected->second + ".");
        return;
    }
    if (const auto other = names().differingInCase(name)) {
        add(plugin, "dependency-case",
            "no description has the name " + quoted(name) + "; there is " + quoted(*other) + ", and case matters",
            "Write " + quoted(*other) + ".");
        return;
    }
    const std::string message = "no description has the name " + quoted(name);
    if (nSimilarNames::hasOtherSeparator(name)) {
        add(plugin, "unknown-dependency", message, "Separate the names by commas.");
    } else if (const auto similar = names().similarTo(name)) {
        add(plugin, "unknown-dependency", message + "; there is " + quoted(*similar));
    } else {
        add(plugin, "unknown-dependency", message);
    }
}

void tExamination::examineKnown(std::size_t plugin, const std::string& name, const tNamed& named) {
    const std::size_t rank = catalogue_.rank(plugin);
    if (firstStart_[named.plugins.front()] < rank) return;
    const std::vector<std::size_t>* const circle = circles_.of(plugin);
    if (named.plugins.size() == 1 && named.plugins.front() == plugin) {
        add(plugin, "self-dependency", "the plug-in depends on itself");
    } else if (circle != nullptr && circles_.of(named.plugins.front()) == circle) {
        return;  // the circle has been reported
    } else if (named.firstRank < rank) {
        add(plugin, "dependency-fails", "its dependency " + quoted(name) + " does not start");
    } else {
        add(plugin, "chain-order", "the plug-in comes before its dependency " + quoted(name) + " in the start order",
            remedies().remedyFor(plugin));
    }
}

nSimilarNames::tNames& tExamination::names() {
    if (!names_) names_.emplace(allNames(catalogue_));
    return *names_;
}

tChainRemedies& tExamination::remedies() {
    if (!remedies_) remedies_.emplace(catalogue_, corrections(catalogue_, names()));
    return *remedies_;
}

/// Lists a large circle only once.
void tExamination::reportCircle(std::size_t plugin, const std::vector<std::size_t>& circle) {
    constexpr std::size_t small = 20;
    if (circle.size() <= small || circle.front() == plugin) {
        add(plugin, "circular-dependency", describeCircle(circle, catalogue_));
    } else {
        add(plugin, "circular-dependency",
            "circular dependency with " + quoted(catalogue_.descriptions()[circle.front()].name) + ", see " +
                catalogue_.path(circle.front()));
    }
}

}  // namespace

void findInDependencies(tCatalogue& catalogue, const std::vector<tOutcome>& outcomes,
                        const std::vector<std::string>& assumed) {
    tExamination examination(catalogue, outcomes, assumed);
    for (const std::size_t plugin : catalogue.order()) examination.examine(plugin);
}

}  // namespace nCheck
