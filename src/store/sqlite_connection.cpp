#include "store/sqlite_connection.h"

#include <sqlite3.h>

#include "store/companion_files.h"
#include "store/file_failure.h"
#include "store/sqlite_system_calls.h"
#include "store/sqlite_trouble.h"

namespace zorvel {
namespace {

constexpr int busyMilliseconds = 250;

int openFlags(Connection::Access access) {
    constexpr int common = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE | SQLITE_OPEN_PRIVATECACHE;
    switch (access) {
        case Connection::Access::read:
            return common | SQLITE_OPEN_READONLY;
        case Connection::Access::memory:
            return common | SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_MEMORY;
        default:
            return common | SQLITE_OPEN_READWRITE;
    }
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

}  // namespace

Connection::Connection(const std::string& path, Access access, const char* vfs)
    : path_(access == Access::memory ? std::string() : path) {
    useOurSystemCalls();
    lookBeside();
    const int code = sqlite3_open_v2(access == Access::memory ? ":memory:" : path.c_str(), &handle_,
                                     openFlags(access), access == Access::memory ? nullptr : vfs);
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
    // Before the defences, which do not let the journal go.
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
    // Some of these read the schema, which takes some hundred instructions of a project, and any
    // time of a file that has more in it.
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

void Connection::lookBeside() const {
    if (!path_.empty()) checkCompanions(path_);
}

void Connection::copyPagesTo(Connection& other) const {
    lookBeside();
    sqlite3_backup* const backup = sqlite3_backup_init(other.handle_, "main", handle_, "main");
    if (!backup) other.check(sqlite3_extended_errcode(other.handle_), "copy");
    sqlite3_backup_step(backup, -1);
    // Tells of every failure of the step too.
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
    connection_.lookBeside();
    connection_.run(kind == Kind::write ? "BEGIN IMMEDIATE" : "BEGIN", "begin");
}

Transaction::~Transaction() {
    // After some errors SQLite has rolled back of its own accord. Where rolling back fails, the
    // journal stays, and the next reader of the file rolls back.
    if (open_ && sqlite3_get_autocommit(connection_.handle()) == 0) {
        sqlite3_exec(connection_.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
    }
}

void Transaction::commit() {
    connection_.run("COMMIT", "commit");
    open_ = false;
}

}  // namespace zorvel
