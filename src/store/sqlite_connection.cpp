#include "store/sqlite_connection.h"

#include <cerrno>
#include <new>
#include <utility>

#include "store/file_failure.h"
#include "store/file_handle.h"
#include "store/project_format.h"

namespace zorvel {
namespace {

constexpr int busyMilliseconds = 250;

int openFlags(Connection::Access access) {
    return SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE | SQLITE_OPEN_PRIVATECACHE |
           (access == Connection::Access::read ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE);
}

void setLimits(sqlite3* handle) {
    // A row holds two texts at most.
    sqlite3_limit(handle, SQLITE_LIMIT_LENGTH, 2 * longestText + 10'000);
    sqlite3_limit(handle, SQLITE_LIMIT_SQL_LENGTH, 100'000);
    sqlite3_limit(handle, SQLITE_LIMIT_COLUMN, 100);
    sqlite3_limit(handle, SQLITE_LIMIT_EXPR_DEPTH, 50);
    sqlite3_limit(handle, SQLITE_LIMIT_VDBE_OP, 100'000);
    sqlite3_limit(handle, SQLITE_LIMIT_FUNCTION_ARG, 8);
    sqlite3_limit(handle, SQLITE_LIMIT_ATTACHED, 0);
    sqlite3_limit(handle, SQLITE_LIMIT_LIKE_PATTERN_LENGTH, 100);
    sqlite3_limit(handle, SQLITE_LIMIT_TRIGGER_DEPTH, 1);
    sqlite3_limit(handle, SQLITE_LIMIT_WORKER_THREADS, 0);
}

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

// connection: null if SQLite had no memory for one.
FileProblem sqliteProblem(sqlite3* connection, int code, const char* doing) {
    const int systemError = connection ? sqlite3_system_errno(connection) : 0;
    // Not sqlite3_errmsg(), which quotes the file's content and SQL.
    const std::string what = code == SQLITE_INTERRUPT ? "too much to read" : sqlite3_errstr(code);
    return {troubleOf(code, systemError),
            what + " (" + doing + ", code " + std::to_string(code) + ")", systemError};
}

}  // namespace

Connection::Connection(const std::string& path, Access access, const char* vfs) : path_(path) {
    useOurSystemCalls();
    checkFilesBeside();
    const int code = sqlite3_open_v2(path.c_str(), &handle_, openFlags(access), vfs);
    try {
        check(code, "open");
        configure(access);
    } catch (...) {
        sqlite3_close_v2(handle_);
        throw;
    }
}

Connection::~Connection() {
    sqlite3_close_v2(handle_);
}

void Connection::configure(Access access) {
    struct Switch {
        int option;
        int on;
    };
    // Before the defences, which do not allow this.
    if (access == Access::build) {
        run("PRAGMA journal_mode=OFF; PRAGMA locking_mode=EXCLUSIVE;", "configure");
    }
    for (const Switch& option :
         {Switch{SQLITE_DBCONFIG_DEFENSIVE, 1}, Switch{SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0},
          Switch{SQLITE_DBCONFIG_ENABLE_TRIGGER, 0}, Switch{SQLITE_DBCONFIG_ENABLE_VIEW, 0},
          Switch{SQLITE_DBCONFIG_DQS_DDL, 0}, Switch{SQLITE_DBCONFIG_DQS_DML, 0},
          Switch{SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0}}) {
        check(sqlite3_db_config(handle_, option.option, option.on, nullptr), "configure");
    }
    setLimits(handle_);
    sqlite3_busy_timeout(handle_, busyMilliseconds);
    // Some of these read the schema: some hundred instructions for a project, any number for a
    // hostile file.
    constexpr int mostInstructions = 1000;
    const auto stop = [](void*) { return 1; };
    sqlite3_progress_handler(handle_, mostInstructions, stop, nullptr);
    // EXTRA is FULL, and syncs the folder after the journal has been deleted: a power cut must not
    // bring back the journal, and with it the old state.
    run("PRAGMA cell_size_check=ON; PRAGMA mmap_size=0; PRAGMA temp_store=MEMORY;"
        "PRAGMA synchronous=EXTRA; PRAGMA cache_size=-8000;",
        "read the schema");
    sqlite3_progress_handler(handle_, 0, nullptr, nullptr);
}

void Connection::run(const char* sql, const char* doing) {
    check(sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr), doing);
}

void Connection::check(int code, const char* doing) const {
    const int primary = code & 0xFF;
    if (primary == SQLITE_OK || primary == SQLITE_ROW || primary == SQLITE_DONE) return;
    throw FileFailure{sqliteProblem(handle_, code, doing)};
}

void Connection::checkFilesBeside() const {
    checkCompanions(path_);
}

void Connection::copyPagesTo(Connection& other) const {
    checkFilesBeside();
    sqlite3_backup* const backup = sqlite3_backup_init(other.handle_, "main", handle_, "main");
    if (!backup) other.check(sqlite3_extended_errcode(other.handle_), "copy");
    sqlite3_backup_step(backup, -1);
    // Also returns the errors of the step.
    other.check(sqlite3_backup_finish(backup), "copy");
}

void Connection::forgetPages() {
    sqlite3_db_release_memory(handle_);
}

bool Connection::hasMoved() const {
    int moved = 0;
    const int code = sqlite3_file_control(handle_, "main", SQLITE_FCNTL_HAS_MOVED, &moved);
    return code == SQLITE_OK && moved != 0;
}

Transaction::Transaction(Connection& connection, Kind kind) : connection_(connection) {
    connection_.checkFilesBeside();
    connection_.run(kind == Kind::write ? "BEGIN IMMEDIATE" : "BEGIN", "begin");
}

Transaction::~Transaction() {
    // After some errors SQLite has rolled back already. Where rolling back fails, the
    // journal stays, and the next reader of the file rolls back.
    if (open_ && sqlite3_get_autocommit(connection_.handle()) == 0) {
        sqlite3_exec(connection_.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
    }
}

void Transaction::commit() {
    connection_.run("COMMIT", "commit");
    open_ = false;
}

Statement::Statement(Connection& connection, std::string_view sql) : connection_(connection) {
    const int code =
        sqlite3_prepare_v3(connection_.handle(), sql.data(), static_cast<int>(sql.size()),
                           SQLITE_PREPARE_PERSISTENT, &statement_, nullptr);
    if (code != SQLITE_OK) connection_.check(code, "prepare");
}

void Statement::run() {
    next();
    sqlite3_reset(statement_);
}

bool Statement::next() {
    const int code = sqlite3_step(statement_);
    if (code == SQLITE_ROW) return true;
    // Resetting returns the error again, with its extended code.
    const int outcome = sqlite3_reset(statement_);
    if (code != SQLITE_DONE) check(outcome != SQLITE_OK ? outcome : code);
    return false;
}

std::string_view Statement::text(int column) const {
    const auto* bytes = sqlite3_column_text(statement_, column);
    if (!bytes && sqlite3_column_type(statement_, column) != SQLITE_NULL) throw std::bad_alloc();
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(statement_, column));
    return bytes ? std::string_view(reinterpret_cast<const char*>(bytes), size)
                 : std::string_view();
}

}  // namespace zorvel
