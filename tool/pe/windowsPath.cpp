#include "tool/pe/windowsPath.h"

#include <algorithm>

namespace nPe {
namespace {

constexpr std::size_t prefixLength = 4;

constexpr char toLower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

constexpr bool isSeparator(char c) { return c == '\\' || c == '/'; }

bool hasDrive(std::string_view path) { return path.size() >= 2 && path[1] == ':'; }

/// Returns the position after the last separator.
std::size_t nameStart(std::string_view path) {
    const auto separator = std::find_if(path.rbegin(), path.rend(), isSeparator);
    return static_cast<std::size_t>(path.rend() - separator);
}

}  // namespace

std::string toLowerAscii(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), toLower);
    return lower;
}

std::string folderOf(std::string_view path) {
    const std::size_t start = nameStart(path);
    const bool isRoot = start == 1 || (start == 3 && hasDrive(path));
    return std::string(path.substr(0, isRoot || start == 0 ? start : start - 1));
}

std::string fileNameOf(std::string_view path) { return std::string(path.substr(nameStart(path))); }

std::string joined(std::string_view folder, std::string_view name) {
    std::string path;
    path.reserve(folder.size() + 1 + name.size());
    path.append(folder);
    const bool isWindows = hasDrive(folder) || folder.find('\\') != std::string_view::npos;
    if (!folder.empty() && !isSeparator(folder.back())) path += isWindows ? '\\' : '/';
    path.append(name);
    return path;
}

std::vector<std::string> partsOf(std::string_view path) {
    if (path.starts_with(R"(\\?\)") || isNative(path)) path.remove_prefix(prefixLength);
    std::vector<std::string> parts;
    parts.reserve(8);  // few paths have more
    while (!path.empty()) {
        const auto end = static_cast<std::size_t>(std::ranges::find_if(path, isSeparator) - path.begin());
        const std::string_view part = path.substr(0, end);
        path.remove_prefix(std::min(end + 1, path.size()));
        if (part == "..") {
            if (parts.size() > 1) parts.pop_back();
            continue;
        }
        const std::size_t length = part.find_last_not_of(". ") + 1;
        if (length > 0) parts.emplace_back(part.substr(0, length));
    }
    return parts;
}

bool isInside(const std::vector<std::string>& parts, const std::vector<std::string>& folder) {
    const auto isSame = [](const std::string& a, const std::string& b) {
        return a == b || std::ranges::equal(a, b, {}, toLower, toLower);
    };
    return parts.size() >= folder.size() && std::equal(folder.begin(), folder.end(), parts.begin(), isSame);
}

std::string withExtension(std::string_view path) {
    std::string file(path.substr(0, path.find_last_not_of(' ') + 1));
    const auto last = std::find_if(file.rbegin(), file.rend(), [](char c) { return c == '.' || isSeparator(c); });
    if (last == file.rend() || *last != '.') file += ".dll";
    return file;
}

bool isSearched(std::string_view path) noexcept {
    return !path.empty() && !isSeparator(path.front()) && !hasDrive(path);
}

bool isNative(std::string_view path) noexcept { return path.starts_with(R"(\??\)"); }

std::string absolutePath(std::string_view path, std::string_view currentFolder) {
    if (isNative(path)) return R"(\\?\)" + std::string(path.substr(prefixLength));
    const std::string_view drive = currentFolder.substr(0, 2);
    if (isSearched(path)) return joined(currentFolder, path);
    if (hasDrive(path)) {
        if (path.size() > 2 && isSeparator(path[2])) return std::string(path);
        const std::string_view relative = path.substr(2);
        const bool isCurrent = toLower(path[0]) == toLower(drive[0]);
        return isCurrent ? joined(currentFolder, relative)
                         : std::string(path.substr(0, 2)) + '\\' + std::string(relative);
    }
    const bool hasServer = path.size() > 1 && isSeparator(path[1]);
    return hasServer ? std::string(path) : std::string(drive) + std::string(path);
}

}  // namespace nPe
