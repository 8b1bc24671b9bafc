#include "store/project_writer.h"

#include <algorithm>
#include <string>
#include <utility>

#include "base/text.h"
#include "store/file_failure.h"

namespace zorvel {
namespace {

// A hundred rows per statement take a fifth of the time that one row per statement takes.
constexpr std::size_t rowsPerStatement = 100;
constexpr int taxonColumns = 5;

std::string taxonSql(std::size_t rows) {
    std::string sql =
        "INSERT OR REPLACE INTO taxon(id, census, name, abundance, include) VALUES (?,?,?,?,?)";
    for (std::size_t row = 1; row < rows; ++row) sql += ",(?,?,?,?,?)";
    return sql;
}

std::int64_t stored(RecordId id) {
    return static_cast<std::int64_t>(id);
}

// What could not be read again must not get into the file.
void checkText(std::string_view text, const char* what) {
    if (text.size() > static_cast<std::size_t>(longestText)) {
        fail(FileTrouble::other, std::string(what) + " is too long for a project file");
    }
    if (firstInvalidUtf8(text)) fail(FileTrouble::other, std::string(what) + " is not UTF-8");
}

void bindText(Statement& statement, int place, const std::optional<SharedText>& text,
              const char* what) {
    if (!text) return statement.bindNull(place);
    checkText(text->view(), what);
    statement.bind(place, text->view());
}

}  // namespace

// Gathers identities that follow one another, to remove each run of them at once.
class ProjectWriter::Removal {
  public:
    explicit Removal(Statement& remove) : remove_(remove) {}
    void add(RecordId id) {
        if (first_ != 0 && id != last_ + 1) flush();
        if (first_ == 0) first_ = id;
        last_ = id;
    }
    void flush() {
        if (first_ == 0) return;
        remove_.bind(1, stored(first_));
        remove_.bind(2, stored(last_));
        remove_.run();
        first_ = 0;
    }

  private:
    Statement& remove_;
    RecordId first_ = 0;
    RecordId last_ = 0;
};

ProjectWriter::ProjectWriter(Connection& connection, const ObjectContext& state)
    : censusRow_(connection,
                 "INSERT OR REPLACE INTO census(id, name, latitude, longitude, notes, time_stamp)"
                 " VALUES (?,?,?,?,?,?)"),
      taxonRow_(connection, taxonSql(1)),
      taxonRows_(connection, taxonSql(rowsPerStatement)),
      nameRow_(connection, "INSERT INTO name(id, text) VALUES (?,?)"),
      projectRow_(connection,
                  "INSERT OR REPLACE INTO project(id, identity, generation, token)"
                  " VALUES (1,?,?,?)"),
      removeCensus_(connection, "DELETE FROM census WHERE id = ?"),
      removeTaxa_(connection, "DELETE FROM taxon WHERE id BETWEEN ? AND ?"),
      removeName_(connection, "DELETE FROM name WHERE id = ?") {
    waiting_.reserve(rowsPerStatement);
    Statement rows(connection, "SELECT id, text FROM name");
    while (rows.next()) {
        names_.emplace(rows.text(1), Name{rows.integer(0), 0});
        nextName_ = std::max(nextName_, rows.integer(0) + 1);
    }
    for (const BlockPointer& block : state.blocks()) {
        block->forEachTaxon([this](const TaxonRecord& taxon) {
            if (taxon.values.name) ++names_.at(*taxon.values.name).uses;
        });
    }
    for (const auto& [text, name] : names_) {
        if (name.uses == 0) perhapsUnused_.push_back(text);
    }
}

void ProjectWriter::write(const ChangeSet& changes) {
    for (const CensusChange& change : changes) {
        writeCensus(change);
        writeTaxa(change);
    }
    for (const TaxonRow& row : waiting_) {
        bind(taxonRow_, 1, row);
        taxonRow_.run();
    }
    waiting_.clear();
    removeUnusedNames();
}

void ProjectWriter::writeProjectRow(const ProjectRow& row) {
    projectRow_.bind(1, std::string_view(row.identity));
    projectRow_.bind(2, row.generation);
    projectRow_.bind(3, row.token);
    projectRow_.run();
}

void ProjectWriter::writeCensus(const CensusChange& change) {
    if (change.deleted()) {
        removeCensus_.bind(1, stored(change.census));
        removeCensus_.run();
        return;
    }
    const CensusAttributes& now = change.after->attributes;
    if (!change.inserted() && sameAttributes(change.before->attributes, now)) return;
    censusRow_.bind(1, stored(change.census));
    bindText(censusRow_, 2, now.name, "the name of a census");
    censusRow_.bind(3, now.latitude);
    censusRow_.bind(4, now.longitude);
    bindText(censusRow_, 5, now.notes, "the notes of a census");
    if (now.timeStamp) {
        censusRow_.bind(6, std::int64_t{now.timeStamp->time_since_epoch().count()});
    } else {
        censusRow_.bindNull(6);
    }
    censusRow_.run();
}

void ProjectWriter::writeTaxa(const CensusChange& change) {
    Removal removal(removeTaxa_);
    const auto visit = [&](const TaxonRecord* before, const TaxonRecord* after) {
        if (after) {
            addTaxonRow({stored(after->id), stored(change.census), use(after->values.name),
                         after->values.abundance, after->values.include});
        } else {
            removal.add(before->id);
        }
        if (before) release(before->values.name);
    };
    forEachTaxonChange(change.before.get(), change.after.get(), visit);
    removal.flush();
}

void ProjectWriter::addTaxonRow(const TaxonRow& row) {
    waiting_.push_back(row);
    if (waiting_.size() < rowsPerStatement) return;
    int place = 1;
    for (const TaxonRow& each : waiting_) {
        bind(taxonRows_, place, each);
        place += taxonColumns;
    }
    taxonRows_.run();
    waiting_.clear();
}

void ProjectWriter::bind(Statement& statement, int place, const TaxonRow& row) {
    statement.bind(place, row.id);
    statement.bind(place + 1, row.census);
    if (row.name) {
        statement.bind(place + 2, *row.name);
    } else {
        statement.bindNull(place + 2);
    }
    statement.bind(place + 3, row.abundance);
    statement.bind(place + 4, std::int64_t{row.include});
}

std::optional<std::int64_t> ProjectWriter::use(const std::optional<SharedText>& name) {
    if (!name) return std::nullopt;
    const auto [place, isNew] = names_.try_emplace(*name, Name{nextName_, 0});
    Name& used = place->second;
    if (isNew) {
        checkText(name->view(), "the name of a taxon");
        nameRow_.bind(1, nextName_++);
        nameRow_.bind(2, name->view());
        nameRow_.run();
    }
    ++used.uses;
    return used.id;
}

void ProjectWriter::release(const std::optional<SharedText>& name) {
    if (name && --names_.at(*name).uses == 0) perhapsUnused_.push_back(*name);
}

void ProjectWriter::removeUnusedNames() {
    for (const SharedText& text : std::exchange(perhapsUnused_, {})) {
        const auto name = names_.find(text);
        if (name == names_.end() || name->second.uses > 0) continue;
        removeName_.bind(1, name->second.id);
        removeName_.run();
        names_.erase(name);
    }
}

}  // namespace zorvel
