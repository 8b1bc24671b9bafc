// The files that SQLite looks for beside a database, to read them into it. Whoever can write to the
// folder can lay one there, so that they are looked at before SQLite does.
#pragma once

#include <array>
#include <string>

namespace zorvel {

// What their names have behind that of the database.
inline constexpr std::array<const char*, 3> companionEndings = {"-journal", "-wal", "-shm"};

// The one that holds a write that was cut off.
std::string journalOf(const std::string& path);

// Fails where a companion is none that this program leaves beside a project: SQLite would add a log
// to the file, and, when it has played a journal back, delete whatever file the journal names at
// its end.
void checkCompanions(const std::string& path);

}  // namespace zorvel
