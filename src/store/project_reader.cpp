#include "store/project_reader.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <limits>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "base/text.h"
#include "store/chunk_list.h"
#include "store/file_failure.h"

namespace zorvel {
namespace {

// The names of a project while it is read: by their numbers, and each text once.
class NameColumn {
  public:
    // Numbers must ascend. False where the text has a number already.
    bool add(std::int64_t id, std::string_view text);
    // The name of that number, used once more; null if there is none.
    const SharedText* use(std::int64_t id);
    // A text without a number of its own: the same one as a name of these bytes.
    SharedText shared(std::string_view text) { return texts_->intern(text); }

    [[nodiscard]] NameLedger ledger() const;
    [[nodiscard]] std::shared_ptr<NamePool> pool() const { return texts_; }

  private:
    struct Row {
        std::int64_t id = 0;
        SharedText text;
        std::int64_t uses = 0;
    };
    std::vector<Row> rows_;
    std::shared_ptr<NamePool> texts_ = std::make_shared<NamePool>();
};

bool NameColumn::add(std::int64_t id, std::string_view text) {
    auto [name, isNew] = texts_->add(text);
    if (isNew) rows_.push_back({id, std::move(name), 0});
    return isNew;
}

const SharedText* NameColumn::use(std::int64_t id) {
    if (rows_.empty() || id < rows_.front().id) return nullptr;
    // Most numbers are in use, so that the row is at or shortly before the place that it would
    // have if all were.
    const std::int64_t first = rows_.front().id;
    const auto size = static_cast<std::int64_t>(rows_.size());
    auto row = rows_.begin() + std::min(id - first, size - 1);
    if (row->id != id) {
        row = recordPlace(rows_.begin(), rows_.end(), id);
    }
    if (row == rows_.end() || row->id != id) return nullptr;
    ++row->uses;
    return &row->text;
}

NameLedger NameColumn::ledger() const {
    NameLedger ledger;
    for (const Row& row : rows_) ledger.addStored(row.text, row.id, row.uses);
    return ledger;
}

// Builds the blocks of a project from its censuses, and then its taxa in the order of their
// identities, whatever census each belongs to. Chunks take no more memory than they need.
class BlockBuilder {
  public:
    // Identities must ascend.
    void addCensus(RecordId id, CensusAttributes attributes);
    // Whether that is the identity of a census. Identities must ascend from call to call.
    bool isCensus(RecordId id);
    // False if there is no such census. Identities must ascend.
    bool addTaxon(RecordId census, TaxonRecord taxon);

    std::vector<BlockPointer> take();

  private:
    struct Open {
        RecordId id = 0;
        std::shared_ptr<CensusBlock> block;
        // The block's last chunk, until it is full.
        std::shared_ptr<TaxonChunk> chunk;
    };

    std::vector<Open> censuses_;
    std::size_t current_ = 0;  // the census of the last taxon
    std::size_t passed_ = 0;   // censuses that isCensus() has passed
};

void BlockBuilder::addCensus(RecordId id, CensusAttributes attributes) {
    auto block = std::make_shared<CensusBlock>();
    block->id = id;
    block->attributes = std::move(attributes);
    censuses_.push_back({id, std::move(block), nullptr});
}

bool BlockBuilder::isCensus(RecordId id) {
    while (passed_ < censuses_.size() && censuses_[passed_].id < id) ++passed_;
    return passed_ < censuses_.size() && censuses_[passed_].id == id;
}

bool BlockBuilder::addTaxon(RecordId census, TaxonRecord taxon) {
    if (current_ == censuses_.size() || censuses_[current_].id != census) {
        const auto found = recordPlace(censuses_.begin(), censuses_.end(), census);
        current_ = static_cast<std::size_t>(found - censuses_.begin());
        if (found == censuses_.end() || found->id != census) return false;
    }
    Open& open = censuses_[current_];
    if (!open.chunk) {
        open.chunk = std::make_shared<TaxonChunk>();
        open.block->chunks.push_back(open.chunk);
    }
    open.chunk->push_back(std::move(taxon));
    if (open.chunk->size() < taxaPerChunk) return true;
    open.chunk->shrink_to_fit();
    open.chunk = nullptr;
    return true;
}

std::vector<BlockPointer> BlockBuilder::take() {
    std::vector<BlockPointer> blocks;
    blocks.reserve(censuses_.size());
    for (Open& open : censuses_) {
        if (open.chunk) open.chunk->shrink_to_fit();
        open.block->chunks.shrink_to_fit();
        blocks.push_back(std::move(open.block));
    }
    return blocks;
}

// The rows of one table, in the order of their identities, which are in column 0.
class Rows {
  public:
    Rows(Connection& connection, const char* table, const char* sql)
        : statement_(connection, sql), table_(table) {}

    bool next() {
        if (!statement_.next()) return false;
        sqlite3_value* cell = statement_.value(0);
        if (sqlite3_value_type(cell) != SQLITE_INTEGER) complain("id", "is no integer");
        const std::int64_t id = sqlite3_value_int64(cell);
        if (id <= id_ || id > highestNumber) complain("id", "is out of range or order");
        id_ = id;
        return true;
    }

    [[nodiscard]] std::int64_t id() const { return id_; }

    [[nodiscard]] std::int64_t integer(int column, const char* name) {
        const std::optional<std::int64_t> integer = integerOrNull(column, name);
        if (!integer) complainOfType(column, name);
        return *integer;
    }
    // Absent for NULL.
    [[nodiscard]] std::optional<std::int64_t> integerOrNull(int column, const char* name) {
        sqlite3_value* cell = statement_.value(column);
        const int type = sqlite3_value_type(cell);
        if (type == SQLITE_NULL) return std::nullopt;
        if (type != SQLITE_INTEGER) complainOfType(column, name);
        return sqlite3_value_int64(cell);
    }

    [[nodiscard]] bool isNull(int column) const { return statement_.type(column) == SQLITE_NULL; }

    // NULL stands for what is not a number.
    [[nodiscard]] double real(int column, const char* name) {
        const int type = statement_.type(column);
        if (type == SQLITE_NULL) return std::numeric_limits<double>::quiet_NaN();
        if (type != SQLITE_FLOAT && type != SQLITE_INTEGER) complainOfType(column, name);
        return statement_.real(column);
    }

    [[nodiscard]] std::string_view text(int column, const char* name) {
        if (statement_.type(column) != SQLITE_TEXT) complainOfType(column, name);
        const std::string_view text = statement_.text(column);
        if (text.size() > static_cast<std::size_t>(longestText)) complain(name, "is too long");
        if (firstInvalidUtf8(text)) complain(name, "is not UTF-8");
        return text;
    }

    [[noreturn]] void complain(const char* column, const std::string& what) const {
        fail(FileTrouble::damaged, std::string("table ") + table_ + ", row " +
                                       std::to_string(statement_.integer(0)) + ": " + column + " " +
                                       what);
    }

  private:
    [[noreturn]] void complainOfType(int column, const char* name) const {
        static constexpr std::array<const char*, 6> kinds = {
            "is of no kind", "is an integer", "is a real", "is a text", "is a blob", "is missing"};
        complain(name, kinds.at(static_cast<std::size_t>(statement_.type(column))));
    }

    Statement statement_;
    const char* table_;
    std::int64_t id_ = 0;
};

std::optional<TimeStamp> timeStampOf(Rows& rows, int column) {
    if (rows.isNull(column)) return std::nullopt;
    return TimeStamp(std::chrono::microseconds(rows.integer(column, "time_stamp")));
}

// Each of these returns the highest identity of its table.
std::int64_t readNames(Connection& connection, NameColumn& names) {
    Rows rows(connection, "name", "SELECT id, text FROM name ORDER BY id");
    while (rows.next()) {
        if (!names.add(rows.id(), rows.text(1, "text"))) {
            rows.complain("text", "stands in another row too");
        }
    }
    return rows.id();
}

std::int64_t readCensuses(Connection& connection, NameColumn& names, BlockBuilder& blocks) {
    Rows rows(connection, "census",
              "SELECT id, name, latitude, longitude, notes, time_stamp FROM census ORDER BY id");
    while (rows.next()) {
        CensusAttributes attributes;
        if (!rows.isNull(1)) attributes.name = names.shared(rows.text(1, "name"));
        attributes.latitude = rows.real(2, "latitude");
        attributes.longitude = rows.real(3, "longitude");
        if (!rows.isNull(4)) attributes.notes = SharedText(rows.text(4, "notes"));
        attributes.timeStamp = timeStampOf(rows, 5);
        blocks.addCensus(static_cast<RecordId>(rows.id()), std::move(attributes));
    }
    return rows.id();
}

std::int64_t readTaxa(Connection& connection, NameColumn& names, BlockBuilder& blocks) {
    Rows rows(connection, "taxon",
              "SELECT id, census, name, abundance, include FROM taxon ORDER BY id");
    while (rows.next()) {
        TaxonRecord taxon;
        taxon.id = static_cast<RecordId>(rows.id());
        if (blocks.isCensus(taxon.id)) rows.complain("id", "is that of a census too");
        if (const std::optional<std::int64_t> number = rows.integerOrNull(2, "name")) {
            const SharedText* name = names.use(*number);
            if (!name) rows.complain("name", "is no row of the table name");
            taxon.values.name = *name;
        }
        taxon.values.abundance = rows.integer(3, "abundance");
        const std::int64_t include = rows.integer(4, "include");
        if (include != 0 && include != 1) rows.complain("include", "is neither 0 nor 1");
        taxon.values.include = include == 1;
        const auto census = static_cast<RecordId>(rows.integer(1, "census"));
        if (!blocks.addTaxon(census, std::move(taxon))) {
            rows.complain("census", "is no row of the table census");
        }
    }
    return rows.id();
}

// Files are named after it, so it must not be a path.
bool isProjectIdentity(std::string_view text) {
    constexpr std::size_t longest = 64;
    constexpr std::string_view allowed =
        "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ-";
    return !text.empty() && text.size() <= longest &&
           text.find_first_not_of(allowed) == std::string_view::npos;
}

}  // namespace

ProjectRow readProjectRow(Connection& connection) {
    ProjectRow row;
    Rows rows(connection, "project", "SELECT id, identity, generation, token FROM project");
    if (!rows.next() || rows.id() != 1) fail(FileTrouble::damaged, "table project has no row 1");
    row.identity = rows.text(1, "identity");
    if (!isProjectIdentity(row.identity)) rows.complain("identity", "is not a plain word");
    row.generation = rows.integer(2, "generation");
    if (row.generation < 1 || row.generation > highestNumber) {
        rows.complain("generation", "is out of range");
    }
    row.token = rows.integer(3, "token");
    if (rows.next()) fail(FileTrouble::damaged, "table project has more than one row");
    return row;
}

ReadProject readProject(Connection& connection) {
    ReadProject project;
    project.row = readProjectRow(connection);
    NameColumn names;
    BlockBuilder blocks;
    for (const std::int64_t highest :
         {readNames(connection, names), readCensuses(connection, names, blocks),
          readTaxa(connection, names, blocks)}) {
        project.highestId = std::max(project.highestId, highest);
    }
    project.records.censuses = blocks.take();
    project.names = names.ledger();
    project.records.names = names.pool();
    return project;
}

}  // namespace zorvel
