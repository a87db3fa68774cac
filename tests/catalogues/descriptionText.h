#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tests/catalogues/random.h"

namespace catalogues {

/// What a description file says, as its author wrote it. An empty text means that there is no such key.
struct tDescription {
    std::string name;
    std::string dependencies;
    std::string requiresText;
    std::string path;
    std::string initialize;
    std::string stop;
    std::string cleanup;
};

/// Returns the bytes of a description file: the keys in any order and spelling that the host may meet. The accidents
/// are how many of a hundred opportunities for a mistake are taken.
[[nodiscard]] std::string descriptionText(tRandom& random, const tDescription& description, int accidents);

/// Returns the bytes of a file that is hardly a description.
[[nodiscard]] std::string oddText(tRandom& random);

}  // namespace catalogues
