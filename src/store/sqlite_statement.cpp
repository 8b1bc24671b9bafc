#include "store/sqlite_statement.h"

#include <new>

namespace zorvel {

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
    // Resetting returns the error once more, with what there is to tell of it.
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
