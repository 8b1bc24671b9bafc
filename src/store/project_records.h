// All records of a project as plain values: what is read from a file, on any thread, and then taken
// over by a context in one go.
#pragma once

#include <memory>
#include <vector>

#include "base/shared_text.h"
#include "store/change_set.h"

namespace zorvel {

struct ProjectRecords {
    // Ascending by identity, and so are the taxa within each; no identity stands twice.
    std::vector<BlockPointer> censuses;
    // What the names of the blocks were taken from; null where they come from several places.
    std::shared_ptr<NamePool> names;
};

}  // namespace zorvel
