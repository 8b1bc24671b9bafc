// All records of a project as plain values: what is read from a file, on any thread, and then taken
// over by a context in one go.
#pragma once

#include <vector>

#include "base/shared_text.h"
#include "store/change_set.h"

namespace zorvel {

struct ProjectRecords {
    // Ascending by identity, and so are the taxa within each; no identity stands twice.
    std::vector<BlockPointer> censuses;
    // Each name of a census or taxon once, as the very texts that the blocks hold.
    std::vector<SharedText> names;
};

}  // namespace zorvel
