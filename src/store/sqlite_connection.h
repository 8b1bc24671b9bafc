// A connection to one SQLite database that is not trusted: no triggers, views, extensions or
// attached files, a rollback journal that is deleted at each commit, and a commit that returns when
// it is safe on the disk. Failures are thrown as FileFailure. One thread at a time.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "store/file_problem.h"

namespace zorvel {

// Of one text in a project file, in bytes.
inline constexpr int longestText = 100'000'000;

class Connection {
  public:
    enum class Access {
        read,
        write,
        // A new file under a temporary name: without a journal, so that a failure spoils it.
        build,
    };

    // vfs: see ProjectFileOptions. The path must be absolute.
    Connection(const std::string& path, Access access, const char* vfs);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    [[nodiscard]] sqlite3* handle() const { return handle_; }

    // Statements without rows. doing: what was tried, for the message of a failure.
    void run(const char* sql, const char* doing);

    // Fails if the code is an error.
    void check(int code, const char* doing) const;

    // To be called before each access to the file that may play a journal back: see
    // checkCompanions().
    void checkFilesBeside() const;

    // Makes the other, empty database a copy of this one as it was last committed.
    void copyPagesTo(Connection& other) const;

    // What follows is read from the file, not from memory. Outside transactions.
    void forgetPages();

    // Whether the file is no longer the one at its path.
    [[nodiscard]] bool hasMoved() const;

  private:
    void configure(Access access);
    std::string path_;
    sqlite3* handle_ = nullptr;
};

// All that is written until commit() is one change, which is undone if the object is destroyed
// before that.
class Transaction {
  public:
    enum class Kind { read, write };
    Transaction(Connection& connection, Kind kind);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    void commit();

  private:
    Connection& connection_;
    bool open_ = true;
};

// One compiled statement, to be run many times. It must be destroyed before its connection.
class Statement {
  public:
    Statement(Connection& connection, std::string_view sql);
    ~Statement() { sqlite3_finalize(statement_); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    // Places count from 1. A text must live until the statement has run.
    void bind(int place, std::int64_t value) {
        check(sqlite3_bind_int64(statement_, place, value));
    }
    void bindNull(int place) { check(sqlite3_bind_null(statement_, place)); }
    // SQLite stores what is not a number as NULL.
    void bind(int place, double value) { check(sqlite3_bind_double(statement_, place, value)); }
    void bind(int place, std::string_view text) {
        check(sqlite3_bind_text64(statement_, place, text.empty() ? "" : text.data(), text.size(),
                                  SQLITE_STATIC, SQLITE_UTF8));
    }

    // Runs a statement without rows.
    void run();
    // True while there is a row; the statement can be run again after the last.
    bool next();
    // Leaves the remaining rows unread.
    void reset() { sqlite3_reset(statement_); }

    // Columns count from 0.
    [[nodiscard]] int type(int column) const { return sqlite3_column_type(statement_, column); }
    [[nodiscard]] std::int64_t integer(int column) const {
        return sqlite3_column_int64(statement_, column);
    }
    [[nodiscard]] double real(int column) const {
        return sqlite3_column_double(statement_, column);
    }
    // Valid until the next row.
    [[nodiscard]] std::string_view text(int column) const;
    // For the type and the number of a cell (sqlite3_value_type(), sqlite3_value_int64()) with one
    // access to the row. Valid until the next row.
    [[nodiscard]] sqlite3_value* value(int column) const {
        return sqlite3_column_value(statement_, column);
    }

  private:
    void check(int code) {
        if (code != SQLITE_OK)
            connection_.check(code, sqlite3_stmt_readonly(statement_) != 0 ? "read" : "write");
    }
    Connection& connection_;
    sqlite3_stmt* statement_ = nullptr;
};

}  // namespace zorvel
