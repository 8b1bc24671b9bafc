// Reads all rows of a project file and checks every value. Failures are thrown as FileFailure:
// damaged, with the table and the row in the detail.
#pragma once

#include <cstdint>
#include <string>

#include "store/census_block.h"
#include "store/sqlite_connection.h"

namespace zorvel {

// Of identities and generations. Above half of it, a project gets no new records.
inline constexpr std::int64_t highestNumber = (std::int64_t{1} << 62) - 1;

// The one row of the table project.
struct ProjectRow {
    std::string identity;
    // How often the file has been written, and a random number of the last time.
    std::int64_t generation = 0;
    std::int64_t token = 0;
};

ProjectRow readProjectRow(Connection& connection);

struct ReadProject {
    ProjectRow row;
    ProjectRecords records;
    std::int64_t highestId = 0;  // of all tables
};

// In the transaction that is open.
ReadProject readProject(Connection& connection);

}  // namespace zorvel
