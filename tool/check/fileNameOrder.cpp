#include "tool/check/fileNameOrder.h"

#include <algorithm>
#include <tuple>
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
    std::vector<std::pair<std::u16string, std::string>> keyed;
    keyed.reserve(paths.size());
    for (std::string& path : paths) {
        std::string name = nStdPath::pathToUtf8(nStdPath::pathFromUtf8(path).filename());
        keyed.emplace_back(sortKey(name), std::move(path));
    }
    std::stable_sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::transform(keyed.begin(), keyed.end(), paths.begin(), [](auto& item) { return std::move(item.second); });
}

}  // namespace nFileNameOrder
