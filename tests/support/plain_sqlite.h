// A database as any other program has it: without this program's precautions.
#pragma once

#include <sqlite3.h>

#include <stdexcept>
#include <string>

namespace zorvel {

// Begins a write so large that pages of it reach the file before its end.
inline const char* const largeWrite =
    "PRAGMA cache_size=4; BEGIN IMMEDIATE; CREATE TABLE big(a);"
    "INSERT INTO big WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n"
    " WHERE i < 2000) SELECT zeroblob(100) FROM n";

class PlainDatabase {
  public:
    explicit PlainDatabase(const std::string& path) {
        if (sqlite3_open(path.c_str(), &handle_) != SQLITE_OK) throw std::runtime_error(path);
    }
    ~PlainDatabase() { sqlite3_close(handle_); }
    PlainDatabase(const PlainDatabase&) = delete;
    PlainDatabase& operator=(const PlainDatabase&) = delete;

    // Throws where a statement fails.
    void run(const std::string& sql) {
        if (sqlite3_exec(handle_, sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
            throw std::runtime_error(sql + ": " + sqlite3_errmsg(handle_));
        }
    }

  private:
    sqlite3* handle_ = nullptr;
};

}  // namespace zorvel
