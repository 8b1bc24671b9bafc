// Writes the rows that differ between two states of a project, and nothing else. Keeps its
// statements, and knows the names that the file holds. Failures are thrown as FileFailure.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "store/change_set.h"
#include "store/name_ledger.h"
#include "store/project_reader.h"
#include "store/row_batch.h"
#include "store/sqlite_connection.h"

namespace zorvel {

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
