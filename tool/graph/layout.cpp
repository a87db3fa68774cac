#include "tool/graph/layout.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "tool/graph/columns.h"

namespace nGraph {
namespace {

constexpr double gutter = 72;  // between two columns, where lines change their height
constexpr double gap = 16;     // between two boxes
constexpr double lineHeight = 4;
constexpr double loopWidth = 28;

/// Where the lines meet a box: spread over most of its side, in the order of where they lead.
class tPorts {
public:
    explicit tPorts(std::size_t items) : wishes_(items) {}

    /// Returns a number by which to ask for the port's position later.
    std::size_t add(std::size_t item, double otherEnd) {
        wishes_[item].emplace_back(otherEnd, positions_.size());
        positions_.push_back(0);
        return positions_.size() - 1;
    }

    void spread(const std::vector<tItem>& items) {
        for (std::size_t index = 0; index < items.size(); ++index) {
            auto& wishes = wishes_[index];
            std::stable_sort(wishes.begin(), wishes.end(),
                             [](const auto& a, const auto& b) { return a.first < b.first; });
            const double side = items[index].node == noIndex ? 0 : items[index].height * 0.7;
            const double step = side / static_cast<double>(wishes.size() + 1);
            double y = items[index].middle - side / 2;
            for (const auto& [otherEnd, port] : wishes) positions_[port] = y += step;
        }
    }

    [[nodiscard]] double position(std::size_t port) const { return positions_[port]; }

private:
    std::vector<std::vector<std::pair<double, std::size_t>>> wishes_;
    std::vector<double> positions_;
};

class tDrawing {
public:
    tDrawing(const tGraph& graph, const tSizes& sizes)
        : graph_(graph),
          sizes_(sizes),
          layers_(assignLayers(graph)),
          columns_(arrangeColumns(graph, layers_, {sizes.boxHeight, gap, lineHeight})),
          leaving_(columns_.items.size()),
          arriving_(columns_.items.size()) {}

    tLayout layout() {
        layout_.boxes.resize(graph_.nodes.size());
        moveToTop();
        placeBoxes();
        placeAlone();
        addRoutes();
        addLoops();
        return std::move(layout_);
    }

private:
    [[nodiscard]] double leftOf(std::size_t layer) const {
        return static_cast<double>(layer) * (sizes_.boxWidth + gutter);
    }
    [[nodiscard]] double rightOf(std::size_t layer) const { return leftOf(layer) + sizes_.boxWidth; }

    template <class Use>
    void forEachPlaced(Use use) {
        for (const auto& layer : columns_.layers) {
            for (const std::size_t index : layer) use(columns_.items[index]);
        }
    }

    void moveToTop() {
        double top = 0;
        bool any = false;
        forEachPlaced([&](const tItem& item) {
            const double upper = item.middle - item.height / 2;
            top = any ? std::min(top, upper) : upper;
            any = true;
        });
        forEachPlaced([&](tItem& item) {
            item.middle -= top;
            layout_.height = std::max(layout_.height, item.middle + item.height / 2);
        });
    }

    void placeBoxes() {
        forEachPlaced([this](const tItem& item) {
            if (item.node == noIndex) return;
            layout_.boxes[item.node] = {leftOf(item.layer), item.middle - item.height / 2};
        });
        if (layers_.count > 0) layout_.width = rightOf(layers_.count - 1);
    }

    /// Nodes without links fill rows that are as wide as the layers, or about as wide as high if that is more.
    void placeAlone() {
        const auto count = static_cast<std::size_t>(std::count(layers_.alone.begin(), layers_.alone.end(), true));
        if (count == 0) return;
        const double cellWidth = sizes_.boxWidth + loopWidth + gap;
        const double cellHeight = sizes_.boxHeight + gap;
        const double square = std::sqrt(static_cast<double>(count) * cellHeight / cellWidth * 1.5);
        const double perRow =
            std::max({1.0, std::floor((layout_.width + loopWidth + gap) / cellWidth), std::ceil(square)});
        const double top = layout_.height > 0 ? layout_.height + 2 * gap : 0;
        double number = 0;
        for (std::size_t node = 0; node < layers_.alone.size(); ++node) {
            if (!layers_.alone[node]) continue;
            const double row = std::floor(number / perRow);
            layout_.boxes[node] = {(number - row * perRow) * cellWidth, top + row * cellHeight};
            layout_.width = std::max(layout_.width, layout_.boxes[node].x + sizes_.boxWidth + loopWidth);
            layout_.height = layout_.boxes[node].y + sizes_.boxHeight;
            columns_.items[node].middle = layout_.boxes[node].y + sizes_.boxHeight / 2;
            ++number;
        }
    }

    void addRoutes() {
        std::vector<std::pair<std::size_t, std::size_t>> ports;
        ports.reserve(columns_.segments.size());
        for (const tSegment& segment : columns_.segments) {
            const double fromY = columns_.items[segment.from].middle;
            const double toY = columns_.items[segment.to].middle;
            ports.emplace_back(leaving_.add(segment.from, toY), arriving_.add(segment.to, fromY));
        }
        leaving_.spread(columns_.items);
        arriving_.spread(columns_.items);
        for (std::size_t index = 0; index < ports.size(); ++index) {
            addRoute(columns_.segments[index], leaving_.position(ports[index].first),
                     arriving_.position(ports[index].second));
        }
    }

    void addRoute(const tSegment& segment, double fromY, double toY) {
        const tItem& from = columns_.items[segment.from];
        const tItem& to = columns_.items[segment.to];
        tRoute route;
        route.kind = segment.kind;
        route.points.push_back({rightOf(from.layer), fromY});
        route.points.push_back({leftOf(to.layer), toY});
        if (to.node == noIndex) route.points.push_back({rightOf(to.layer), toY});
        route.headAtLeft = segment.backwards && from.node != noIndex;
        route.headAtRight = !segment.backwards && to.node != noIndex;
        if (segment.arc != noIndex) route.link = layers_.arcs[segment.arc].link;
        layout_.routes.push_back(std::move(route));
    }

    void addLoops() {
        for (std::size_t index = 0; index < graph_.links.size(); ++index) {
            const tLink& link = graph_.links[index];
            if (link.dependant != link.dependency) continue;
            const tPoint box = layout_.boxes[link.dependant];
            const double right = box.x + sizes_.boxWidth;
            tRoute route;
            route.points = {{right, box.y + sizes_.boxHeight * 0.25}, {right, box.y + sizes_.boxHeight * 0.75}};
            route.kind = link.kind;
            route.link = index;
            route.headAtRight = route.loop = true;
            layout_.routes.push_back(std::move(route));
            layout_.width = std::max(layout_.width, right + loopWidth);
        }
    }

    const tGraph& graph_;
    const tSizes& sizes_;
    tLayers layers_;
    tColumns columns_;
    tPorts leaving_;
    tPorts arriving_;
    tLayout layout_;
};

}  // namespace

tLayout arrange(const tGraph& graph, const tSizes& sizes) { return tDrawing(graph, sizes).layout(); }

}  // namespace nGraph
