#include "tool/graph/columns.h"

#include <algorithm>
#include <map>
#include <numeric>

namespace nGraph {
namespace {

constexpr std::size_t orderingSweeps = 12;
constexpr std::size_t placingSweeps = 6;

/// Links that leave a node in the same manner and share their way; only those that run forwards do.
struct tBundle {
    std::size_t left = 0;
    tLinkKind kind = tLinkKind::fulfilled;
    std::vector<std::size_t> arcs;
    std::size_t lastLayer = 0;
};

std::vector<tBundle> bundleArcs(const tGraph& graph, const tLayers& layers) {
    std::vector<tBundle> bundles;
    std::map<std::pair<std::size_t, tLinkKind>, std::size_t> shared;
    for (std::size_t index = 0; index < layers.arcs.size(); ++index) {
        const tArc& arc = layers.arcs[index];
        const tLinkKind kind = graph.links[arc.link].kind;
        std::size_t bundle = bundles.size();
        if (!arc.backwards) bundle = shared.emplace(std::pair(arc.left, kind), bundle).first->second;
        if (bundle == bundles.size()) bundles.push_back({arc.left, kind, {}, 0});
        bundles[bundle].arcs.push_back(index);
        bundles[bundle].lastLayer = std::max(bundles[bundle].lastLayer, layers.layerOf[arc.right]);
    }
    return bundles;
}

class tArranger {
public:
    tArranger(const tGraph& graph, const tLayers& layers, const tSpacing& spacing)
        : layers_(layers), spacing_(spacing) {
        columns_.layers.resize(layers.count);
        for (std::size_t node = 0; node < graph.nodes.size(); ++node) addNode(node);
        addBundles(bundleArcs(graph, layers));
    }

    tColumns arrange() {
        for (std::size_t sweep = 0; sweep < orderingSweeps; ++sweep) orderAll(sweep % 2 == 0);
        stack();
        for (std::size_t sweep = 0; sweep < placingSweeps; ++sweep) placeAll(sweep % 2 == 0);
        return std::move(columns_);
    }

private:
    using tNeighbours = std::vector<std::size_t> tItem::*;

    void addNode(std::size_t node) {
        tItem item;
        item.node = node;
        item.layer = layers_.layerOf[node];
        item.height = spacing_.boxHeight;
        if (!layers_.alone[node]) columns_.layers[item.layer].push_back(node);
        columns_.items.push_back(std::move(item));
    }

    std::size_t addLine(std::size_t layer) {
        tItem item;
        item.layer = layer;
        item.height = spacing_.lineHeight;
        columns_.layers[layer].push_back(columns_.items.size());
        columns_.items.push_back(std::move(item));
        return columns_.items.size() - 1;
    }

    void connect(const tSegment& segment) {
        columns_.segments.push_back(segment);
        tItem& from = columns_.items[segment.from];
        tItem& to = columns_.items[segment.to];
        if (from.layer + 1 != to.layer) return;
        from.right.push_back(segment.to);
        to.left.push_back(segment.from);
    }

    /// Short bundles have the first claim on places.
    void addBundles(std::vector<tBundle> bundles) {
        const auto places = [this](const tBundle& bundle) {
            return bundle.lastLayer - layers_.layerOf[bundle.left] - 1;
        };
        std::stable_sort(bundles.begin(), bundles.end(),
                         [&](const tBundle& a, const tBundle& b) { return places(a) < places(b); });
        std::size_t available = 1000 + 16 * layers_.layerOf.size();
        for (const tBundle& bundle : bundles) {
            const bool direct = places(bundle) > available;
            addBundle(bundle, direct);
            if (!direct) available -= places(bundle);
        }
    }

    void addBundle(const tBundle& bundle, bool direct) {
        const std::size_t firstLayer = layers_.layerOf[bundle.left];
        const bool isOneLink = bundle.arcs.size() == 1;
        const bool backwards = layers_.arcs[bundle.arcs.front()].backwards;
        std::vector<std::size_t> way{bundle.left};
        while (!direct && firstLayer + way.size() < bundle.lastLayer) {
            way.push_back(addLine(firstLayer + way.size()));
            const std::size_t arc = isOneLink ? bundle.arcs.front() : noIndex;
            connect({way[way.size() - 2], way.back(), arc, bundle.kind, backwards});
        }
        for (const std::size_t arc : bundle.arcs) {
            const std::size_t right = layers_.arcs[arc].right;
            const std::size_t step = direct ? 0 : layers_.layerOf[right] - firstLayer - 1;
            connect({way[step], right, arc, bundle.kind, backwards});
        }
    }

    void orderAll(bool rightwards) {
        if (rightwards) {
            for (auto& layer : columns_.layers) order(layer, &tItem::left);
        } else {
            for (auto layer = columns_.layers.rbegin(); layer != columns_.layers.rend(); ++layer) {
                order(*layer, &tItem::right);
            }
        }
    }

    /// Sorts by the neighbours' average rank; an item without neighbours keeps its own. Uses `middle` for ranks.
    void order(std::vector<std::size_t>& layer, tNeighbours neighbours) {
        std::vector<std::pair<double, std::size_t>> keys;
        keys.reserve(layer.size());
        for (const std::size_t index : layer) keys.emplace_back(averageOf(index, neighbours), index);
        std::stable_sort(keys.begin(), keys.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
        for (std::size_t rank = 0; rank < keys.size(); ++rank) {
            layer[rank] = keys[rank].second;
            columns_.items[layer[rank]].middle = (static_cast<double>(rank) + 0.5) / static_cast<double>(keys.size());
        }
    }

    [[nodiscard]] double averageOf(std::size_t index, tNeighbours neighbours) const {
        const tItem& item = columns_.items[index];
        const auto& others = item.*neighbours;
        if (others.empty()) return item.middle;
        const double sum = std::accumulate(others.begin(), others.end(), 0.0, [this](double total, std::size_t other) {
            return total + columns_.items[other].middle;
        });
        return sum / static_cast<double>(others.size());
    }

    void stack() {
        for (const auto& layer : columns_.layers) {
            double bottom = 0;
            for (const std::size_t index : layer) {
                tItem& item = columns_.items[index];
                item.middle = bottom;  // the sweeps keep only the distances of boxes, which are of one height
                bottom += item.height + spacing_.gap;
            }
        }
    }

    void placeAll(bool rightwards) {
        if (rightwards) {
            for (const auto& layer : columns_.layers) place(layer, &tItem::left);
        } else {
            for (auto layer = columns_.layers.rbegin(); layer != columns_.layers.rend(); ++layer) {
                place(*layer, &tItem::right);
            }
        }
    }

    /// Moves each item as near to its neighbours' average as the order and the gaps allow: the positions with the
    /// smallest sum of squared distances. Items that would overlap form a block, which moves as one.
    void place(const std::vector<std::size_t>& layer, tNeighbours neighbours) {
        struct tBlock {
            double sum;  ///< of the wishes of its items, each relative to where the item is if all are stacked
            std::size_t count;
            [[nodiscard]] double wish() const { return sum / static_cast<double>(count); }
        };
        std::vector<tBlock> blocks;
        std::vector<double> stacked;
        double bottom = 0;
        for (const std::size_t index : layer) {
            const double height = columns_.items[index].height;
            stacked.push_back(bottom + height / 2);
            bottom += height + spacing_.gap;
            blocks.push_back({averageOf(index, neighbours) - stacked.back(), 1});
            while (blocks.size() > 1 && blocks[blocks.size() - 2].wish() > blocks.back().wish()) {
                const tBlock last = blocks.back();
                blocks.pop_back();
                blocks.back().sum += last.sum;
                blocks.back().count += last.count;
            }
        }
        std::size_t position = 0;
        for (const tBlock& block : blocks) {
            for (const std::size_t end = position + block.count; position < end; ++position) {
                columns_.items[layer[position]].middle = stacked[position] + block.wish();
            }
        }
    }

    const tLayers& layers_;
    const tSpacing& spacing_;
    tColumns columns_;
};

}  // namespace

tColumns arrangeColumns(const tGraph& graph, const tLayers& layers, const tSpacing& spacing) {
    return tArranger(graph, layers, spacing).arrange();
}

}  // namespace nGraph
