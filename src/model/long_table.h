// The export of a project as a long table. Any thread.
#pragma once

#include <vector>

#include "base/files.h"
#include "store/object_context.h"

namespace zorvel {

// See LongTableWriter. Ends early once the sink takes no more.
void writeLongTable(const std::vector<Census>& censuses, const ByteSink& sink);

}  // namespace zorvel
