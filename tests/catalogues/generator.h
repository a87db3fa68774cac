#pragma once

#include "tests/catalogues/catalogue.h"
#include "tests/catalogues/libraries.h"

namespace catalogues {

/// Returns the plug-in directory of this seed. What it contains is meant to be as surprising as what people and
/// programs leave in such directories, but it does not use the product's parser, order or rules.
[[nodiscard]] tCatalogue generate(std::uint64_t seed, const tLibraryPaths& libraries);

}  // namespace catalogues
