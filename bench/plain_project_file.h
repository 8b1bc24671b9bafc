// The plain form of saving and loading a project: bare loops over prepared statements, a row a
// statement, values neither checked nor kept. Names stand in the rows of the taxa.
#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "store/object_context.h"

namespace zorvel::plain {

class Database {
  public:
    explicit Database(const std::string& path) { require(sqlite3_open(path.c_str(), &handle_)); }
    ~Database() { sqlite3_close(handle_); }
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    void run(const char* sql) { require(sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr)); }
    sqlite3_stmt* prepare(const char* sql) {
        sqlite3_stmt* statement = nullptr;
        require(sqlite3_prepare_v2(handle_, sql, -1, &statement, nullptr));
        return statement;
    }

  private:
    void require(int code) {
        if (code == SQLITE_OK) return;
        std::fprintf(stderr, "%s\n", sqlite3_errmsg(handle_));
        std::abort();
    }
    sqlite3* handle_ = nullptr;
};

inline void bindText(sqlite3_stmt* statement, int place, std::string_view text) {
    sqlite3_bind_text(statement, place, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
}

// A new database of all records.
inline void save(const std::string& path, const ObjectContext& project) {
    std::remove(path.c_str());
    Database database(path);
    database.run(
        "PRAGMA synchronous=FULL; BEGIN;"
        "CREATE TABLE census(id INTEGER PRIMARY KEY, name TEXT, latitude REAL, longitude REAL);"
        "CREATE TABLE taxon(id INTEGER PRIMARY KEY, census INTEGER, name TEXT,"
        " abundance INTEGER, include INTEGER);");
    sqlite3_stmt* const census = database.prepare("INSERT INTO census VALUES(?,?,?,?)");
    sqlite3_stmt* const taxon = database.prepare("INSERT INTO taxon VALUES(?,?,?,?,?)");
    for (const BlockPointer& block : project.blocks()) {
        sqlite3_bind_int64(census, 1, static_cast<std::int64_t>(block->id));
        bindText(census, 2, block->attributes.name->view());
        sqlite3_bind_double(census, 3, block->attributes.latitude);
        sqlite3_bind_double(census, 4, block->attributes.longitude);
        sqlite3_step(census);
        sqlite3_reset(census);
        block->forEachTaxon([&](const TaxonRecord& record) {
            sqlite3_bind_int64(taxon, 1, static_cast<std::int64_t>(record.id));
            sqlite3_bind_int64(taxon, 2, static_cast<std::int64_t>(block->id));
            bindText(taxon, 3, record.values.name->view());
            sqlite3_bind_int64(taxon, 4, record.values.abundance);
            sqlite3_bind_int(taxon, 5, record.values.include ? 1 : 0);
            sqlite3_step(taxon);
            sqlite3_reset(taxon);
        });
    }
    sqlite3_finalize(census);
    sqlite3_finalize(taxon);
    database.run("COMMIT");
}

// Every value of the taxa of a file that save() wrote; the sum, so that nothing is left out.
inline std::int64_t load(const std::string& path) {
    Database database(path);
    std::int64_t sum = 0;
    sqlite3_stmt* const taxon =
        database.prepare("SELECT id, census, name, abundance, include FROM taxon");
    while (sqlite3_step(taxon) == SQLITE_ROW) {
        sum += sqlite3_column_int64(taxon, 0) + sqlite3_column_int64(taxon, 1) +
               sqlite3_column_text(taxon, 2)[0] + sqlite3_column_bytes(taxon, 2) +
               sqlite3_column_int64(taxon, 3) + sqlite3_column_int64(taxon, 4);
    }
    sqlite3_finalize(taxon);
    return sum;
}

}  // namespace zorvel::plain
