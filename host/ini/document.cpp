#include "ini/document.h"

namespace nIni {

tDocument* create() noexcept { return new (std::nothrow) tDocument; }

void destroy(tDocument* document) noexcept { delete document; }

tSection* findSection(tDocument& document, std::string_view name) noexcept {
    const bool caseSensitive = document.caseSensitive != 0;
    tSection* const current = document.currentSection;
    if (current != nullptr && sameName(current->name, name, caseSensitive)) return current;

    const std::size_t position = document.sectionIndex.find(document.sections, name, caseSensitive);
    if (position == document.sections.size()) return nullptr;
    return document.currentSection = &document.sections[position];
}

tKey* findKey(tSection& section, bool caseSensitive, std::string_view name) noexcept {
    const std::size_t position = section.keyIndex.find(section.keys, name, caseSensitive);
    return position == section.keys.size() ? nullptr : &section.keys[position];
}

}  // namespace nIni
