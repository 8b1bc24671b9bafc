// Reads all rows of a project file and checks every value. Failures are thrown as FileFailure:
// damaged, with the table and the row in the detail.
#pragma once

#include <cstdint>
#include <string>

#include "store/name_ledger.h"
#include "store/project_records.h"
#include "store/sqlite_connection.h"

namespace zorvel {

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
    NameLedger names;
};

// In the transaction that is open.
ReadProject readProject(Connection& connection);

}  // namespace zorvel
