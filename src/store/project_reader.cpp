#include "store/project_reader.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <limits>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/text.h"
#include "store/chunk_list.h"
#include "store/file_failure.h"

namespace zorvel {
namespace {

// The names of a project while it is read: by their numbers, and each text once.
struct NameColumn {
    std::unordered_map<std::int64_t, SharedText> byNumber;
    std::shared_ptr<NamePool> texts = std::make_shared<NamePool>();
};

// Builds the blocks of a project from its censuses, and then its taxa in the order of their
// identities, whatever census each belongs to. Chunks take no more memory than they need.
class BlockBuilder {
  public:
    // Identities must ascend.
    void addCensus(RecordId id, CensusAttributes attributes) {
        auto block = std::make_shared<CensusBlock>();
        block->id = id;
        block->attributes = std::move(attributes);
        censuses_.push_back({id, std::move(block), {}});
    }

    // Whether that is the identity of a census. Identities must ascend from call to call.
    bool isCensus(RecordId id) {
        while (passed_ < censuses_.size() && censuses_[passed_].id < id) ++passed_;
        return passed_ < censuses_.size() && censuses_[passed_].id == id;
    }

    // False if there is no such census. Identities must ascend.
    bool addTaxon(RecordId census, TaxonRecord taxon) {
        if (current_ == censuses_.size() || censuses_[current_].id != census) {
            const auto found = recordPlace(censuses_.begin(), censuses_.end(), census);
            current_ = static_cast<std::size_t>(found - censuses_.begin());
            if (found == censuses_.end() || found->id != census) return false;
        }
        Open& open = censuses_[current_];
        if (open.taxa.size() == taxaPerChunk) closeChunk(open);
        open.taxa.push_back(std::move(taxon));
        return true;
    }

    std::vector<BlockPointer> take() {
        std::vector<BlockPointer> blocks;
        blocks.reserve(censuses_.size());
        for (Open& open : censuses_) {
            closeChunk(open);
            open.block->chunks.shrink_to_fit();
            blocks.push_back(std::move(open.block));
        }
        return blocks;
    }

  private:
    struct Open {
        RecordId id = 0;
        std::shared_ptr<CensusBlock> block;
        Chunk<TaxonRecord> taxa;
    };

    static void closeChunk(Open& open) {
        appendInChunks(open.block->chunks, std::exchange(open.taxa, {}), taxaPerChunk);
    }

    std::vector<Open> censuses_;
    std::size_t current_ = 0;  // the census of the last taxon
    std::size_t passed_ = 0;   // censuses that isCensus() has passed
};

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
        auto [name, isNew] = names.texts->add(rows.text(1, "text"));
        if (!isNew) rows.complain("text", "stands in another row too");
        names.byNumber.emplace(rows.id(), std::move(name));
    }
    return rows.id();
}

std::int64_t readCensuses(Connection& connection, NameColumn& names, BlockBuilder& blocks) {
    Rows rows(connection, "census",
              "SELECT id, name, latitude, longitude, notes, time_stamp FROM census ORDER BY id");
    while (rows.next()) {
        CensusAttributes attributes;
        if (!rows.isNull(1)) attributes.name = names.texts->intern(rows.text(1, "name"));
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
            const auto name = names.byNumber.find(*number);
            if (name == names.byNumber.end()) rows.complain("name", "is no row of the table name");
            taxon.values.name = name->second;
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
    project.records.names = names.texts;
    return project;
}

}  // namespace zorvel
