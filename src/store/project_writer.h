// Writes the rows that differ between two states of a project, and nothing else. Keeps its
// statements, and knows the names that the file holds. Failures are thrown as FileFailure.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "store/change_set.h"
#include "store/name_ledger.h"
#include "store/project_reader.h"
#include "store/sqlite_connection.h"

namespace zorvel {

// Writes rows of one table, many with each statement: a hundred rows per statement take a fifth of
// the time that one row per statement takes. Row has a static constexpr int columns, and
// bind(Statement&, int place), which binds that many values from place on. A row that is there
// already is replaced.
template <class Row>
class RowBatch {
  public:
    // target: "name(id, text)".
    RowBatch(Connection& connection, const char* target)
        : one_(connection, sql(target, 1)), many_(connection, sql(target, rowsPerStatement)) {
        rows_.reserve(rowsPerStatement);
    }

    void add(const Row& row) {
        rows_.push_back(row);
        if (rows_.size() == rowsPerStatement) writeMany();
    }

    // Writes the rows that wait.
    void flush() {
        for (const Row& row : rows_) {
            row.bind(one_, 1);
            one_.run();
        }
        rows_.clear();
    }

    // Drops the rows that wait, after a failure.
    void forget() { rows_.clear(); }

  private:
    static std::string sql(const char* target, std::size_t rows) {
        std::string values = "(?";
        for (int column = 1; column < Row::columns; ++column) values += ",?";
        values += ")";
        std::string statement =
            std::string("INSERT OR REPLACE INTO ") + target + " VALUES" + values;
        for (std::size_t row = 1; row < rows; ++row) statement += "," + values;
        return statement;
    }

    void writeMany() {
        int place = 1;
        for (const Row& row : rows_) {
            row.bind(many_, place);
            place += Row::columns;
        }
        many_.run();
        rows_.clear();
    }

    static constexpr std::size_t rowsPerStatement = 100;
    Statement one_;
    Statement many_;
    std::vector<Row> rows_;
};

struct NameRow {
    static constexpr int columns = 2;
    std::int64_t id = 0;
    std::string_view text;
    void bind(Statement& statement, int place) const;
};

struct TaxonRow {
    static constexpr int columns = 5;
    std::int64_t id = 0;
    std::int64_t census = 0;
    std::int64_t name = 0;  // 0 stands for none
    std::int64_t abundance = 0;
    bool include = true;
    void bind(Statement& statement, int place) const;
};

class ProjectWriter {
  public:
    // names: those of the file. The connection must outlive the writer.
    ProjectWriter(Connection& connection, NameLedger names);

    // In the transaction that is open: makes these changes. accept() or revert() must follow when
    // it is known what became of the transaction.
    void write(const ChangeSet& changes);
    void writeProjectRow(const ProjectRow& row);
    void accept() noexcept { names_.accept(); }
    void revert() noexcept;
    // What the file holds after a write that took place; the writer is of no use afterwards.
    NameLedger takeNames();

  private:
    class Removal;
    void writeCensus(const CensusChange& change);
    void writeTaxa(const CensusChange& change);
    std::int64_t nameId(const std::optional<SharedText>& name);
    void flush();

    NameLedger names_;
    RowBatch<NameRow> nameRows_;
    RowBatch<TaxonRow> taxonRows_;
    Statement censusRow_;
    Statement projectRow_;
    Statement removeCensus_;
    Statement removeTaxa_;
    Statement removeName_;
};

}  // namespace zorvel
