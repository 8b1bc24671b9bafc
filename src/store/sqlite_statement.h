// One compiled SQL statement, to be run many times. Failures are thrown as FileFailure. It must go
// before its connection.
#pragma once

#include <sqlite3.h>

#include <cmath>
#include <cstdint>
#include <string_view>

#include "store/sqlite_connection.h"

namespace zorvel {

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
    // For kind and number of a cell with one look into the row; to be asked with
    // sqlite3_value_type() and sqlite3_value_int64() by the thread of the connection. Valid until
    // the next row.
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
