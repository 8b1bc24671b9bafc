// The set of taxon names that feeds completion.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "store/object_context.h"

namespace zorvel {

// The name of every taxon that has one, compared exactly; no list gives the empty set.
std::set<std::string> taxonNameSet(const std::optional<std::vector<Zorvel>>& taxa);

}  // namespace zorvel
