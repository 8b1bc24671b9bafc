#include "store/sqlite_trouble.h"

#include <sqlite3.h>

#include <cerrno>
#include <string>

#include "store/file_failure.h"

namespace zorvel {
namespace {

FileTrouble troubleOfCannotOpen(int systemError) {
    if (systemError == 0) return FileTrouble::inputOutput;
    const FileTrouble trouble = troubleOfErrno(systemError);
    // The file itself was there and could be opened: it is its companion that may not be made.
    if (trouble == FileTrouble::noPermission) return FileTrouble::readOnlyFolder;
    return trouble == FileTrouble::notFound ? FileTrouble::moved : trouble;
}

FileTrouble troubleOfReadOnly(int code) {
    switch (code) {
        case SQLITE_READONLY_DBMOVED:
            return FileTrouble::moved;
        case SQLITE_READONLY_DIRECTORY:
            return FileTrouble::readOnlyFolder;
        case SQLITE_READONLY_ROLLBACK:
            return FileTrouble::interruptedWrite;
        default:
            return FileTrouble::readOnlyFile;
    }
}

FileTrouble troubleOfInputOutput(int code, int systemError) {
    if (code == SQLITE_IOERR_NOMEM) return FileTrouble::other;
    const FileTrouble trouble = troubleOfErrno(systemError);
    const bool known = trouble == FileTrouble::diskFull || trouble == FileTrouble::noLocks;
    return known ? trouble : FileTrouble::inputOutput;
}

FileTrouble troubleOf(int code, int systemError) {
    switch (code & 0xFF) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
        case SQLITE_PROTOCOL:
            return FileTrouble::busy;
        case SQLITE_PERM:
        case SQLITE_AUTH:
            return FileTrouble::noPermission;
        case SQLITE_READONLY:
            return troubleOfReadOnly(code);
        case SQLITE_IOERR:
            return troubleOfInputOutput(code, systemError);
        // Of statements that are right, such as all of ours: the file is not what they expect.
        case SQLITE_ERROR:
        case SQLITE_TOOBIG:
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
        case SQLITE_FORMAT:
            return FileTrouble::damaged;
        case SQLITE_FULL:
            return FileTrouble::diskFull;
        case SQLITE_CANTOPEN:
            return troubleOfCannotOpen(systemError);
        case SQLITE_INTERRUPT:
            return FileTrouble::hostile;
        default:
            return FileTrouble::other;
    }
}

}  // namespace

FileProblem sqliteProblem(sqlite3* connection, int code, const char* doing) {
    const int systemError = connection ? sqlite3_system_errno(connection) : 0;
    // Not sqlite3_errmsg(), which repeats what stands in the file, and SQL.
    std::string detail = code == SQLITE_INTERRUPT ? "too much to read" : sqlite3_errstr(code);
    detail += " (";
    detail += doing;
    detail += ", code ";
    detail += std::to_string(code) + ")";
    return {troubleOf(code, systemError), std::move(detail), systemError};
}

}  // namespace zorvel
