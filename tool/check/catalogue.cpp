#include "tool/check/catalogue.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "source/nPluginOrder.h"

namespace nCheck {

tCatalogue::tCatalogue(std::vector<tDescriptionFile> files) : files_(std::move(files)) {
    descriptions_.reserve(files_.size());
    fileIndexes_.reserve(files_.size());
    for (std::size_t i = 0; i < files_.size(); ++i) {
        if (!files_[i].description) continue;
        descriptions_.push_back(std::move(*files_[i].description));
        fileIndexes_.push_back(i);
    }
    order_ = nPluginOrder::positionsInOrder(descriptions_);
    ranks_.resize(order_.size());
    for (std::size_t rank = 0; rank < order_.size(); ++rank) {
        const std::size_t plugin = order_[rank];
        ranks_[plugin] = rank;
        const auto [named, isNew] = names_.try_emplace(descriptions_[plugin].name);
        if (isNew) named->second.firstRank = rank;
        named->second.plugins.push_back(plugin);
    }
}

const tNamed* tCatalogue::named(std::string_view name) const {
    const auto found = names_.find(name);
    return found == names_.end() ? nullptr : &found->second;
}

std::vector<tFinding> tCatalogue::takeFindings() {
    std::vector<tFinding> all;
    std::size_t plugin = 0;
    for (std::size_t i = 0; i < files_.size(); ++i) {
        const bool described = plugin < fileIndexes_.size() && fileIndexes_[plugin] == i;
        std::vector<tFinding> findings =
            files_[i].findings.take(described ? descriptions_[plugin].name : files_[i].rejectedName);
        if (described) ++plugin;
        std::move(findings.begin(), findings.end(), std::back_inserter(all));
    }
    return all;
}

}  // namespace nCheck
