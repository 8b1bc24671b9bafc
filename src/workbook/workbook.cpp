#include "workbook/workbook.h"

#include <algorithm>
#include <charconv>
#include <new>
#include <numeric>
#include <utility>

#include "workbook/ods.h"
#include "workbook/xlsx.h"

namespace zorvel {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view oleMark = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1";
constexpr std::string_view openDocument = "application/vnd.oasis.opendocument.";

// A name as the directory of an OLE container holds it.
bool hasOleName(std::string_view bytes, std::string_view name) {
    std::string wide;
    for (const char c : name) {
        wide += c;
        wide += '\0';
    }
    wide += "\0\0"sv;
    return bytes.find(wide) != std::string_view::npos;
}

Problem oleProblem(std::string_view bytes) {
    if (hasOleName(bytes, "EncryptedPackage")) {
        return {"is protected by a password: save it without one and try again"};
    }
    if (hasOleName(bytes, "Workbook") || hasOleName(bytes, "Book")) {
        return {
            "is a workbook of an old format (.xls): open it in a spreadsheet program and save it "
            "as .xlsx or .ods"};
    }
    return {"is a document of an old format, and not a workbook: save its table as .xlsx or .ods"};
}

// Of an archive that is neither format.
Problem otherArchive(const Archive& archive) {
    if (archive.has("xl/workbook.bin")) {
        return {"is a binary workbook (.xlsb): save it as .xlsx or .ods"};
    }
    if (archive.has("Index/Document.iwa") || archive.has("Index.zip")) {
        return {"is a document of Numbers or its like (.numbers): export it as .xlsx"};
    }
    if (archive.has("word/document.xml") || archive.has("ppt/presentation.xml") ||
        archive.start("mimetype").starts_with(openDocument)) {
        return {"is a document, but not a workbook: save its table as .xlsx or .ods"};
    }
    return {"is an archive (ZIP), and not a workbook: unpack it and choose the file within it"};
}

}  // namespace

bool looksLikeWorkbook(std::string_view start) {
    return start.starts_with("PK\x03\x04") || start.starts_with("PK\x05\x06") ||
           start.starts_with(oleMark);
}

// --- rows ---

struct SheetRows::Parts {
    std::shared_ptr<const XlsxBook> book;
    XlsxMerges merges;
    std::unique_ptr<SheetReader> reader;
};

SheetRows::SheetRows(std::unique_ptr<Parts> parts, std::stop_token stop,
                     const WorkbookLimits& limits)
    : parts_(std::move(parts)), stop_(std::move(stop)), limits_(limits) {}

SheetRows::SheetRows(Problem problem) : problem_(std::move(problem)) {}

SheetRows::~SheetRows() = default;

// The next row that is not empty.
bool SheetRows::readOn() {
    SheetReader& reader = *parts_->reader;
    if (!reader.advance()) {
        problem_ = reader.problem();
        return false;
    }
    if (headRows_ < mostHeadRows && !reader.row().hasNumber()) {
        ++headRows_;
        reader.row().lendTexts();
    } else {
        headRows_ = mostHeadRows;
    }
    left_ = reader.row().repeats;
    return true;
}

bool SheetRows::next(TableRow& row) {
    if (problem_ || stop_.stop_requested()) return false;
    try {
        if (left_ == 0 && !readOn()) return false;
        const SheetRow& present = parts_->reader->row();
        row.number = ++given_;
        row.line = row.number;
        row.cells.clear();
        if (given_ < present.number) return true;
        row.cells = present.cells();
        --left_;
        cells_ += present.filled();
    } catch (const std::bad_alloc&) {
        problem_ = Problem{"needs more memory than there is"};
    }
    if (cells_ > limits_.cells) {
        problem_ = Problem{"cannot be used: a sheet of it holds more than " +
                           std::to_string(limits_.cells) + " cells"};
    }
    return !problem_;
}

// --- workbook ---

Workbook::Workbook(std::shared_ptr<const std::string> bytes, std::shared_ptr<const XlsxBook> book,
                   std::vector<SheetInfo> sheets, const WorkbookLimits& limits)
    : bytes_(std::move(bytes)), book_(std::move(book)), places_(sheets.size()), limits_(limits) {
    std::iota(places_.begin(), places_.end(), 0);
    std::stable_partition(places_.begin(), places_.end(),
                          [&](std::size_t place) { return !sheets[place].hidden; });
    for (const std::size_t place : places_) {
        sheets_.push_back(std::move(sheets[place]));
        std::string& name = sheets_.back().name;
        if (name.empty()) name = "Sheet " + std::to_string(sheets_.size());
    }
}

Workbook::Workbook(Workbook&&) noexcept = default;
Workbook::~Workbook() = default;

Result<Workbook> Workbook::open(std::shared_ptr<const std::string> bytes,
                                const std::stop_token& stop, const WorkbookLimits& limits) {
    try {
        Result<Workbook> workbook = openArchive(std::move(bytes), stop, limits);
        if (stop.stop_requested()) return Problem{};
        if (workbook && workbook.value().sheets().empty()) {
            return Problem{"cannot be used: the workbook has no sheet"};
        }
        return workbook;
    } catch (const std::bad_alloc&) {
        return Problem{"needs more memory than there is"};
    }
}

Result<Workbook> Workbook::openArchive(std::shared_ptr<const std::string> bytes,
                                       const std::stop_token& stop, const WorkbookLimits& limits) {
    if (bytes->starts_with(oleMark)) return oleProblem(*bytes);
    if (!looksLikeWorkbook(*bytes)) return Problem{"is not a workbook"};
    const Result<Archive> opened = Archive::open(bytes, limits);
    if (!opened) return opened.problem();
    const Archive& archive = opened.value();
    const std::string bookFile = xlsxBookFile(archive, limits, stop);
    if (bookFile.ends_with(".xml") && !bookFile.starts_with("word/") &&
        !bookFile.starts_with("ppt/")) {
        Result<XlsxBook> book = readXlsxBook(archive, bookFile, limits, stop);
        if (!book) return book.problem();
        const auto shared = std::make_shared<const XlsxBook>(std::move(book).value());
        return Workbook(std::move(bytes), shared, shared->sheets, limits);
    }
    if (isEncryptedOds(archive, limits, stop)) {
        return Problem{"is protected by a password: save it without one and try again"};
    }
    const std::string type = archive.start("mimetype");
    const bool otherType = type.starts_with(openDocument) &&
                           !type.substr(openDocument.size()).starts_with("spreadsheet");
    if (!archive.has("content.xml") || otherType) return otherArchive(archive);
    Result<std::vector<SheetInfo>> sheets = readOdsSheets(archive, limits, stop);
    if (!sheets) return sheets.problem();
    return Workbook(std::move(bytes), nullptr, std::move(sheets).value(), limits);
}

std::optional<std::size_t> Workbook::findSheet(std::string_view nameOrNumber) const {
    for (std::size_t i = 0; i < sheets_.size(); ++i) {
        if (sheets_[i].name == nameOrNumber) return i;
    }
    std::size_t number = 0;
    const char* const end = nameOrNumber.data() + nameOrNumber.size();
    const auto read = std::from_chars(nameOrNumber.data(), end, number);
    const bool isNumber = read.ec == std::errc() && read.ptr == end;
    if (!isNumber || number < 1 || number > sheets_.size()) return std::nullopt;
    return number - 1;
}

std::optional<std::size_t> Workbook::usualSheet(const std::stop_token& stop) const {
    std::vector<std::size_t> filled;
    for (std::size_t i = 0; i < sheets_.size(); ++i) {
        if (!sheets_[i].hidden && !sheets_[i].empty) filled.push_back(i);
    }
    if (filled.empty()) return 0;
    const auto holdsTable = [&](std::size_t sheet) {
        const TableGuess seen = guess(sheet, {}, stop);
        const std::size_t counts =
            seen.reading.columnsOf(ColumnRole::count).size() + seen.unlikely.size();
        // Beside the words of notes may be a column with a year or a version.
        return seen.reading.layout == TableLayout::records || counts > 1 ||
               (counts == 1 && seen.doubts.empty());
    };
    if (filled.size() == 1 || holdsTable(filled.front())) return filled.front();
    std::optional<std::size_t> found;
    for (auto sheet = filled.begin() + 1; sheet != filled.end(); ++sheet) {
        if (!holdsTable(*sheet)) continue;
        if (found) return std::nullopt;
        found = *sheet;
    }
    return found.value_or(filled.front());
}

namespace {

// The last of the first rows that may be a header, where one of them may hold merged cells: a text
// with an empty cell to its right.
std::optional<std::size_t> lastHeadRow(SheetReader& reader) {
    std::size_t last = 0;
    std::size_t width = 0;
    std::vector<std::size_t> ends;  // of the texts that end a row or stand before an empty cell
    for (std::size_t rows = 0; rows < SheetRows::mostHeadRows && reader.advance(); ++rows) {
        const std::vector<std::string_view>& cells = reader.row().cells();
        width = std::max(width, cells.size());
        if (reader.row().hasNumber()) break;
        last = reader.row().number;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const bool before = i + 1 == cells.size() || cells[i + 1].empty();
            if (!cells[i].empty() && before) ends.push_back(i + 1);
        }
    }
    const bool any =
        std::any_of(ends.begin(), ends.end(), [width](std::size_t end) { return end < width; });
    return any ? std::optional(last) : std::nullopt;
}

}  // namespace

std::unique_ptr<SheetRows> Workbook::rows(std::size_t sheet, const std::stop_token& stop) const {
    const auto failed = [](Problem problem) {
        return std::unique_ptr<SheetRows>(new SheetRows(std::move(problem)));
    };
    try {
        const Result<Archive> archive = Archive::open(bytes_, limits_);
        if (!archive) return failed(archive.problem());
        const std::size_t place = places_[sheet];
        const std::string name = book_ ? book_->files[place] : "content.xml";
        Result<ArchiveFile> file = archive.value().file(name);
        if (!file) return failed(file.problem());
        auto parts = std::make_unique<SheetRows::Parts>();
        if (book_) {
            parts->book = book_;
            const auto head =
                lastHeadRow(*xlsxSheet(std::move(file).value(), *book_, {}, limits_, stop));
            if (head) {
                auto merges = readXlsxMerges(archive.value(), name, *head, limits_, stop);
                if (!merges) return failed(merges.problem());
                parts->merges = std::move(merges).value();
            }
            file = archive.value().file(name);
            if (!file) return failed(file.problem());
            parts->reader =
                xlsxSheet(std::move(file).value(), *book_, parts->merges, limits_, stop);
        } else {
            parts->reader = odsSheet(std::move(file).value(), place, limits_, stop);
        }
        return std::unique_ptr<SheetRows>(new SheetRows(std::move(parts), stop, limits_));
    } catch (const std::bad_alloc&) {
        return failed(Problem{"needs more memory than there is"});
    }
}

// --- table ---

std::unique_ptr<RowSource> SheetSource::rows(const TextForm& /*form*/,
                                             const std::stop_token& stop) const {
    return workbook_->rows(sheet_, stop);
}

TableGuess Workbook::guess(std::size_t sheet, const TableChoices& choices,
                           const std::stop_token& stop) const {
    const bool isBare = choices == TableChoices();
    if (isBare) {
        const std::lock_guard lock(guesses_->mutex);
        const auto known = guesses_->ofSheets.find(sheet);
        if (known != guesses_->ofSheets.end()) return known->second;
    }
    // Cells of workbooks cost more time than those of texts, and fewer tell enough.
    constexpr std::size_t mostCells = 1 << 16;
    TableSample sample = sampleRows(*rows(sheet, stop), true, mostCells);
    sample.sheet = sheets_[sheet].name;
    TableGuess guess = guessTable(sample, {}, choices);
    if (isBare && !stop.stop_requested()) {
        const std::lock_guard lock(guesses_->mutex);
        guesses_->ofSheets.emplace(sheet, guess);
    }
    return guess;
}

}  // namespace zorvel
