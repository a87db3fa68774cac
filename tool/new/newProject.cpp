#include "tool/new/newProject.h"

#include <algorithm>

#include "tool/new/newTemplates.h"

namespace nNew {
namespace {

std::string filledIn(std::string_view text, std::string_view name) {
    constexpr std::string_view placeholder = "@NAME@";
    std::string filled(text);
    for (std::size_t at = 0; (at = filled.find(placeholder, at)) != std::string::npos; at += name.size()) {
        filled.replace(at, placeholder.size(), name);
    }
    return filled;
}

}  // namespace

std::vector<tFile> filesOf(std::string_view name, std::string_view language) {
    std::vector<tFile> files;
    for (const tTemplate& each : templates()) {
        if (each.language != language && each.language != "common") continue;
        files.push_back({filledIn(each.file, name), filledIn(each.content, name)});
    }
    std::ranges::sort(files, {}, &tFile::name);
    return files;
}

}  // namespace nNew
