#include "tool/check/fileNameOrder.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

#include "stdpath/path.h"
#include "stdpath/utf.h"
#include "tool/check/upperCase.h"

namespace nFileNameOrder {

std::u16string sortKey(const std::string& fileName) {
    std::u16string key = nStdPath::fileNameFromUtf8(fileName);
    for (char16_t& unit : key) unit = nUpperCase::toUpper(unit);
    return key;
}

void sort(std::vector<std::string>& paths) {
    std::vector<std::u16string> keys;
    keys.reserve(paths.size());
    for (const std::string& path : paths) {
        keys.push_back(sortKey(nStdPath::pathToUtf8(nStdPath::pathFromUtf8(path).filename())));
    }
    std::vector<std::size_t> order(paths.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, {}, [&keys](std::size_t i) -> const std::u16string& { return keys[i]; });
    std::vector<std::string> sorted;
    sorted.reserve(paths.size());
    for (const std::size_t i : order) sorted.push_back(std::move(paths[i]));
    paths.swap(sorted);
}

}  // namespace nFileNameOrder
