#include "tool/graph/graphText.h"

#include "tool/format.h"
#include "tool/graph/nodeText.h"
#include "tool/plainText.h"

namespace nGraph {
namespace {

constexpr std::size_t longestLabel = 60;

std::string idOf(std::size_t index) { return fmt::format("p{}", index + 1); }

std::string nameLabel(const tNode& node) {
    return nPlainText::shortened(nPlainText::printableInXml(node.name), longestLabel);
}

/// Graphviz reads backslashes as escapes and "&lt;" as a character.
std::string escapeDot(const std::string& text) {
    std::string result;
    for (const char character : text) {
        if (character == '"' || character == '\\') result += '\\';
        result += character;
        if (character == '&') result += "amp;";
    }
    return result;
}

std::string dotStyle(const tNode& node) {
    if (!node.described) return R"(, style="dashed", color="#9a6700")";
    if (node.circle != 0 && node.fails()) return R"(, style="rounded,bold,diagonals", color="#8250df", penwidth=2)";
    if (node.fails()) return R"(, style="rounded,bold", color="#cf222e", penwidth=2)";
    return {};
}

std::string_view dotStyle(tLinkKind kind) {
    switch (kind) {
        case tLinkKind::fulfilled: return {};
        case tLinkKind::repeated: return R"( [color="#cf222e:#cf222e", label="named twice"])";
        case tLinkKind::failed: return R"( [color="#cf222e", style=dashed])";
        case tLinkKind::late: return R"( [color="#9a6700", style=dashed, label="starts too late"])";
        case tLinkKind::circular: return R"( [color="#8250df", style=bold, label="circle"])";
        case tLinkKind::missing: break;
    }
    return R"( [color="#9a6700", style=dotted, label="missing"])";
}

/// Letters, digits, spaces and everything outside ASCII stay; Mermaid would see Markdown or its own syntax in the rest.
std::string escapeMermaid(const std::string& text) {
    std::string result;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        const bool plain = byte >= 0x80 || byte == ' ' || (byte >= '0' && byte <= '9') ||
                           (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
        if (plain) {
            result += character;
        } else {
            result += fmt::format("#{};", byte);
        }
    }
    return result;
}

std::string_view mermaidArrow(tLinkKind kind) {
    switch (kind) {
        case tLinkKind::fulfilled: return " --> ";
        case tLinkKind::repeated: return " -->|named twice| ";
        case tLinkKind::failed: return " -.-> ";
        case tLinkKind::late: return " -.->|starts too late| ";
        case tLinkKind::circular: return " ==>|circle| ";
        case tLinkKind::missing: break;
    }
    return " -.->|missing| ";
}

std::string_view mermaidClass(const tNode& node) {
    if (!node.described) return ":::missing";
    if (node.circle != 0 && node.fails()) return ":::circle";
    return node.fails() ? ":::failed" : "";
}

}  // namespace

std::string toDot(const tGraph& graph) {
    const std::vector<std::string> states = stateTexts(graph);
    std::string text =
        "digraph plugins {\n"
        "  rankdir=LR;\n"
        "  node [shape=box, style=\"rounded\", fontname=\"sans-serif\"];\n"
        "  edge [fontname=\"sans-serif\", fontsize=10];\n";
    for (std::size_t index = 0; index < graph.nodes.size(); ++index) {
        const tNode& node = graph.nodes[index];
        const std::string order = node.described ? fmt::format("{}. ", index + 1) : "";
        text += fmt::format("  {} [label=\"{}{}\\n{}\"{}];\n", idOf(index), order, escapeDot(nameLabel(node)),
                            states[index], dotStyle(node));
    }
    for (const tLink& link : graph.links) {
        text += fmt::format("  {} -> {}{};\n", idOf(link.dependency), idOf(link.dependant), dotStyle(link.kind));
    }
    return text.append("}\n");
}

std::string toMermaid(const tGraph& graph) {
    const std::vector<std::string> states = stateTexts(graph);
    std::string text = "flowchart LR\n";
    for (std::size_t index = 0; index < graph.nodes.size(); ++index) {
        const tNode& node = graph.nodes[index];
        const std::string order = node.described ? fmt::format("{}: ", index + 1) : "";
        text += fmt::format("  {}[\"{}<br/>{}\"]{}\n", idOf(index), escapeMermaid(nameLabel(node)),
                            escapeMermaid(order + states[index]), mermaidClass(node));
    }
    for (const tLink& link : graph.links) {
        text += fmt::format("  {}{}{}\n", idOf(link.dependency), mermaidArrow(link.kind), idOf(link.dependant));
    }
    return text.append(
        "  classDef failed stroke:#cf222e,stroke-width:3px\n"
        "  classDef circle stroke:#8250df,stroke-width:3px\n"
        "  classDef missing stroke:#9a6700,stroke-dasharray:4 3\n");
}

}  // namespace nGraph
