// Writes the rows that differ between two states of a project, and nothing else. Keeps its
// statements, and knows the names that the file holds: a name gets its row with its first use and
// loses it with the last. Failures are thrown as FileFailure.
#pragma once

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

#include "base/shared_text.h"
#include "store/change_set.h"
#include "store/object_context.h"
#include "store/project_reader.h"
#include "store/sqlite_connection.h"

namespace zorvel {

class ProjectWriter {
  public:
    // state: the records in the file, from which the names are read too. In the transaction that is
    // open. The connection must outlive the writer.
    ProjectWriter(Connection& connection, const ObjectContext& state);

    // In the transaction that is open: makes these changes. If that fails, or the transaction does
    // not take place, the writer no longer knows the names in the file and must not be used again.
    void write(const ChangeSet& changes);
    void writeProjectRow(const ProjectRow& row);

  private:
    class Removal;
    struct Name {
        std::int64_t id = 0;
        std::int64_t uses = 0;
    };
    struct TaxonRow {
        std::int64_t id = 0;
        std::int64_t census = 0;
        std::optional<std::int64_t> name;
        std::int64_t abundance = 0;
        bool include = true;
    };
    void writeCensus(const CensusChange& change);
    void writeTaxa(const CensusChange& change);
    void addTaxonRow(const TaxonRow& row);
    static void bind(Statement& statement, int place, const TaxonRow& row);
    std::optional<std::int64_t> use(const std::optional<SharedText>& name);
    void release(const std::optional<SharedText>& name);
    void removeUnusedNames();

    Statement censusRow_;
    Statement taxonRow_;
    Statement taxonRows_;
    Statement nameRow_;
    Statement projectRow_;
    Statement removeCensus_;
    Statement removeTaxa_;
    Statement removeName_;
    std::vector<TaxonRow> waiting_;  // to be written by one statement
    std::unordered_map<SharedText, Name, BytesHash> names_;
    std::vector<SharedText> perhapsUnused_;
    std::int64_t nextName_ = 1;
};

}  // namespace zorvel
