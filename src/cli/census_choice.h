// Finding the census that --census names.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "base/result.h"
#include "model/diversity_document.h"

namespace zorvel::cli {

// The place of the first census of this name (canonically equal), or of the first census if no name
// is given. If no census has the name, the problem lists the closest names, or else the first ones.
// names: at least one.
Result<std::size_t> chooseCensus(const NameList& names, const std::optional<std::string>& wanted);

}  // namespace zorvel::cli
