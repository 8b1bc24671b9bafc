// The set of taxon names that feeds completion.
#pragma once

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "store/object_context.h"

namespace zorvel {

// The name of every taxon that has one, compared exactly; no list gives the empty set.
std::set<std::string, std::less<>> taxonNameSet(const std::optional<std::vector<Zorvel>>& taxa);

}  // namespace zorvel
