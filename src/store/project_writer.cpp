#include "store/project_writer.h"

#include <string>
#include <utility>

#include "base/text.h"
#include "store/file_failure.h"

namespace zorvel {
namespace {

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

void NameRow::bind(Statement& statement, int place) const {
    statement.bind(place, id);
    statement.bind(place + 1, text);
}

void TaxonRow::bind(Statement& statement, int place) const {
    statement.bind(place, id);
    statement.bind(place + 1, census);
    if (name == 0) {
        statement.bindNull(place + 2);
    } else {
        statement.bind(place + 2, name);
    }
    statement.bind(place + 3, abundance);
    statement.bind(place + 4, std::int64_t{include});
}

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

ProjectWriter::ProjectWriter(Connection& connection, NameLedger names)
    : names_(std::move(names)),
      nameRows_(connection, "name(id, text)"),
      taxonRows_(connection, "taxon(id, census, name, abundance, include)"),
      censusRow_(connection,
                 "INSERT OR REPLACE INTO census(id, name, latitude, longitude, notes, time_stamp)"
                 " VALUES (?,?,?,?,?,?)"),
      projectRow_(connection,
                  "INSERT OR REPLACE INTO project(id, identity, generation, token)"
                  " VALUES (1,?,?,?)"),
      removeCensus_(connection, "DELETE FROM census WHERE id = ?"),
      removeTaxa_(connection, "DELETE FROM taxon WHERE id BETWEEN ? AND ?"),
      removeName_(connection, "DELETE FROM name WHERE id = ?") {}

void ProjectWriter::write(const ChangeSet& changes) {
    for (const CensusChange& change : changes) {
        writeCensus(change);
        writeTaxa(change);
    }
    flush();
}

void ProjectWriter::revert() noexcept {
    names_.revert();
    nameRows_.forget();
    taxonRows_.forget();
}

NameLedger ProjectWriter::takeNames() {
    names_.accept();
    return std::move(names_);
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

std::int64_t ProjectWriter::nameId(const std::optional<SharedText>& name) {
    return name ? names_.use(*name) : 0;
}

void ProjectWriter::writeTaxa(const CensusChange& change) {
    Removal removal(removeTaxa_);
    const auto visit = [&](const TaxonRecord* before, const TaxonRecord* after) {
        if (before && before->values.name) names_.release(*before->values.name);
        if (after) {
            taxonRows_.add({stored(after->id), stored(change.census), nameId(after->values.name),
                            after->values.abundance, after->values.include});
        } else if (before) {
            removal.add(before->id);
        }
    };
    forEachTaxonChange(change.before.get(), change.after.get(), visit);
    removal.flush();
}

void ProjectWriter::flush() {
    taxonRows_.flush();
    names_.forEachRowChange(
        [this](std::int64_t id, const SharedText& text) {
            checkText(text.view(), "the name of a taxon");
            nameRows_.add({id, text.view()});
        },
        [this](std::int64_t id) {
            removeName_.bind(1, id);
            removeName_.run();
        });
    nameRows_.flush();
}

}  // namespace zorvel
