// What an error of SQLite means for a project file.
#pragma once

#include "store/file_problem.h"

struct sqlite3;

namespace zorvel {

// code: an extended result code just returned by the connection, which may be null. doing says what
// was tried.
FileProblem sqliteProblem(sqlite3* connection, int code, const char* doing);

}  // namespace zorvel
