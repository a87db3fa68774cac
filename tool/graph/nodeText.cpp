#include "tool/graph/nodeText.h"

#include <algorithm>

#include "source/runMessages.h"
#include "tool/format.h"

namespace nGraph {
namespace {

/// Returns the reason that comes first on the way to a remedy.
std::string dependencyReason(const tGraph& graph, std::size_t index) {
    const tNode& node = graph.nodes[index];
    const auto links = linksOf(graph, index);
    if (std::any_of(links.begin(), links.end(), [](const tLink& link) { return link.dependant == link.dependency; })) {
        return "itself";
    }
    const auto has = [&](tLinkKind kind) {
        return std::any_of(links.begin(), links.end(), [kind](const tLink& link) { return link.kind == kind; });
    };
    if (has(tLinkKind::circular)) return fmt::format("circle {}", node.circle);
    if (has(tLinkKind::missing)) return "unknown name";
    if (has(tLinkKind::late)) return "too early";
    if (has(tLinkKind::repeated)) return "named twice";
    return has(tLinkKind::failed) ? "dependency" : "own result";
}

std::string reason(const tGraph& graph, std::size_t index, std::int32_t code) {
    switch (code) {
        case -52000: return ": memory";
        case -52002: return ": not allowed";
        case -52003: return ": exception";
        case -52005: return ": library";
        case -52006: return ": " + dependencyReason(graph, index);
        default: return {};
    }
}

std::string stateText(const tGraph& graph, std::size_t index) {
    const tNode& node = graph.nodes[index];
    if (!node.described) return "not described";
    // If only the code is uncertain, it is that of the library or of a dependency that may fail before it.
    if (!node.code) return node.mayStart ? "can start" : "fails: library";
    if (*node.code >= 0) return "starts";
    return fmt::format("fails {}{}", *node.code, reason(graph, index, *node.code));
}

std::size_t rejectedFiles(const tGraph& graph) {
    const auto count = std::count_if(graph.messages.begin(), graph.messages.end(), [](const std::string& message) {
        return message.starts_with(nRunMessages::descriptionNotParsed);
    });
    return static_cast<std::size_t>(count);
}

std::string counted(std::size_t count, std::string_view one, std::string_view many) {
    return fmt::format("{} {}", count, count == 1 ? one : many);
}

}  // namespace

std::string_view kindName(tLinkKind kind) noexcept {
    switch (kind) {
        case tLinkKind::fulfilled: return "fulfilled";
        case tLinkKind::repeated: return "repeated";
        case tLinkKind::failed: return "failed";
        case tLinkKind::late: return "late";
        case tLinkKind::circular: return "circular";
        case tLinkKind::missing: break;
    }
    return "missing";
}

std::string_view kindText(tLinkKind kind) noexcept {
    switch (kind) {
        case tLinkKind::fulfilled: return "starts first";
        case tLinkKind::repeated: return "named twice";
        case tLinkKind::failed: return "fails";
        case tLinkKind::late: return "starts too late";
        case tLinkKind::circular: return "in a circle";
        case tLinkKind::missing: break;
    }
    return "not described";
}

std::vector<std::string> stateTexts(const tGraph& graph) {
    std::vector<std::string> texts;
    texts.reserve(graph.nodes.size());
    for (std::size_t index = 0; index < graph.nodes.size(); ++index) texts.push_back(stateText(graph, index));
    return texts;
}

std::string summary(const tGraph& graph) {
    const auto plugins = std::span(graph.nodes).first(graph.pluginCount);
    const auto failing = static_cast<std::size_t>(
        std::count_if(plugins.begin(), plugins.end(), [](const tNode& node) { return node.fails(); }));
    const std::size_t missing = graph.nodes.size() - graph.pluginCount;
    std::string text = counted(graph.pluginCount, "plug-in", "plug-ins");
    if (failing > 0)
        text += fmt::format(": {} can start, {}", graph.pluginCount - failing, counted(failing, "fails", "fail"));
    if (!graph.circles.empty()) text += "; " + counted(graph.circles.size(), "circle", "circles");
    const std::size_t rejected = rejectedFiles(graph);
    if (rejected > 0) text += "; " + counted(rejected, "description", "descriptions") + " rejected";
    if (missing > 0) text += "; " + counted(missing, "dependency", "dependencies") + " without a description";
    return text;
}

}  // namespace nGraph
