#include "workbook/ods.h"

#include <algorithm>
#include <cstdint>
#include <set>
#include <utility>

#include "workbook/values.h"

namespace zorvel {
namespace {

// "PT14H05M09S" as "14:05:09".
std::string durationText(std::string_view duration) {
    std::string text;
    std::string digits;
    for (const char c : duration) {
        if (c >= '0' && c <= '9') {
            digits += c;
        } else if (c == 'H' || c == 'M' || c == 'S' || c == '.') {
            if (c == 'S' && (digits == "00" || text.size() > 5)) break;
            if (!text.empty()) text += ':';
            text += digits.size() < 2 ? std::string(2 - digits.size(), '0') + digits : digits;
            digits.clear();
            if (c == '.') break;
        }
    }
    return text;
}

class OdsSheet final : public SheetReader {
  public:
    OdsSheet(ArchiveFile file, std::size_t sheet, const WorkbookLimits& limits,
             const std::stop_token& stop)
        : SheetReader(std::move(file), limits, stop), wanted_(sheet) {}

  private:
    // Elements of tables, while no cell is open.
    void start(std::string_view name, const XmlAttributes& attributes) override {
        if (inCell_) {
            startInCell(name, attributes);
        } else if (name == "table") {
            if (tables_++ == 0) inSheet_ = sheets_++ == wanted_;
        } else if (inSheet_ && tables_ == 1) {
            if (name == "table-row") {
                beginRow(attributes);
            } else if (inRow_ && (name == "table-cell" || name == "covered-table-cell")) {
                beginCell(attributes, name == "covered-table-cell");
            }
        }
    }

    void end(std::string_view name) override {
        if (inCell_) {
            endInCell();
        } else if (name == "table") {
            if (--tables_ == 0) inSheet_ = false;
        } else if (name == "table-row" && inRow_) {
            inRow_ = false;
            endRow();
        }
    }

    void text(std::string_view text) override {
        if (!inCell_ || paragraph_ == 0 || skipped_ != 0) return;
        for (const char c : text) {
            const bool blank = c == ' ' || c == '\t' || c == '\n' || c == '\r';
            if (!blank) {
                text_ += c;
            } else if (!text_.empty() && !afterBlank_) {
                text_ += ' ';
            }
            afterBlank_ = blank;
        }
        checkSize();
    }

    void checkSize() {
        if (text_.size() > limits().cellBytes) fail("has a cell of more than 1 MB");
    }

    void beginRow(const XmlAttributes& attributes) {
        const std::size_t number = next_;
        const std::size_t repeats = attributes.number("number-rows-repeated", 1);
        // Sheets end with empty rows that reach beyond the last.
        next_ += std::clamp<std::size_t>(repeats, 1, 2 * SheetRow::mostRows);
        next_ = std::min(next_, 4 * SheetRow::mostRows);
        column_ = 0;
        inRow_ = true;
        row().begin(number);
        row().repeats = next_ - number;
    }

    void beginCell(const XmlAttributes& attributes, bool covered) {
        inCell_ = true;
        level_ = 1;
        paragraph_ = 0;
        paragraphs_ = 0;
        skipped_ = 0;
        text_.clear();
        cell_ = column_;
        covered_ = covered;
        std::size_t repeats = 1;
        std::size_t spanned = 1;
        type_.clear();
        value_.clear();
        hasValue_ = false;
        formula_.clear();
        for (const char* const* pair = attributes.pairs(); *pair != nullptr; pair += 2) {
            const std::string_view name = withoutPrefix(pair[0]);
            if (std::string_view(pair[0]).starts_with("calcext:")) continue;
            if (name == "value-type") {
                type_ = pair[1];
            } else if (name == "formula") {
                formula_ = pair[1];
            } else if (name == "value" || name == "date-value" || name == "time-value" ||
                       name == "boolean-value" || name == "string-value") {
                value_ = pair[1];
                hasValue_ = true;
            } else if (name == "number-columns-repeated") {
                repeats = wholeNumber(pair[1], 1);
            } else if (name == "number-columns-spanned") {
                spanned = wholeNumber(pair[1], 1);
            }
        }
        column_ += std::clamp<std::size_t>(repeats, 1, 2 * SheetRow::mostColumns);
        column_ = std::min(column_, 4 * SheetRow::mostColumns);
        if (!covered && spanned > 1) {
            row().merge(cell_, cell_ + std::min(spanned, SheetRow::mostColumns));
        }
    }

    // Of the elements in a cell its paragraphs are its text, without remarks and the reading aids
    // of ruby text.
    void startInCell(std::string_view name, const XmlAttributes& attributes) {
        ++level_;
        if (skipped_ != 0) return;
        if (level_ == 2) {
            if (name == "p") {
                if (paragraphs_++ > 0) text_ += '\n';
                paragraph_ = level_;
                afterBlank_ = true;
            } else {
                skipped_ = level_;
            }
        } else if (name == "s") {
            const std::size_t count = attributes.number("c", 1);
            text_.append(std::min(count, limits().cellBytes + 1), ' ');
            checkSize();
        } else if (name == "tab") {
            text_ += '\t';
        } else if (name == "line-break") {
            text_ += '\n';
        } else if (name == "annotation" || name == "note" || name == "ruby-text") {
            skipped_ = level_;
        }
    }

    void endInCell() {
        if (skipped_ == level_) skipped_ = 0;
        if (paragraph_ == level_) paragraph_ = 0;
        if (--level_ > 0) return;
        inCell_ = false;
        if (covered_) return;
        const std::string text = cellText();
        if (text.empty()) return;
        if (!isPlace(row().number + row().repeats - 1, column_ - 1)) return;
        row().addCopy(cell_, column_ - cell_, text);
    }

    std::string cellText() {
        // The value of an error is 0 or empty.
        const bool error =
            text_.starts_with("Err:") || (text_.size() > 2 && text_[0] == '#' && text_[1] >= 'A' &&
                                          text_[1] <= 'Z' && !formula_.empty());
        if (error) return text_;
        if (hasValue_ && (type_ == "float" || type_ == "percentage" || type_ == "currency")) {
            row().noteNumber();
            return numberText(value_);
        }
        if (hasValue_ && type_ == "date") return isoDateText(value_);
        if (hasValue_ && type_ == "time") return durationText(value_);
        if (hasValue_ && type_ == "boolean") return value_ == "true" ? "TRUE" : "FALSE";
        if (paragraphs_ > 0) return text_;
        if (!hasValue_ && !formula_.empty()) {
            return formula_.substr(std::min(formula_.find('='), formula_.size()));
        }
        return value_;
    }

    std::size_t wanted_;
    std::size_t sheets_ = 0;  // begun
    std::size_t tables_ = 0;  // open
    std::size_t next_ = 1;    // row
    std::size_t column_ = 0;  // after the last cell
    bool inSheet_ = false;
    bool inRow_ = false;

    bool inCell_ = false;
    bool covered_ = false;
    std::size_t cell_ = 0;
    std::size_t level_ = 0;      // of open elements, the cell included
    std::size_t paragraph_ = 0;  // the level of the open one
    std::size_t paragraphs_ = 0;
    std::size_t skipped_ = 0;  // the level of an element that is left out
    bool afterBlank_ = false;
    bool hasValue_ = false;
    std::string type_;
    std::string value_;
    std::string formula_;
    std::string text_;
};

// Whether the name "table" at that place in the text may be that of a tag that begins an element.
bool mayBeginTable(std::string_view text, std::size_t name) {
    constexpr std::string_view word = "table";
    constexpr std::string_view ends = " \t\r\n/>";
    const bool isName = text.substr(name, word.size()) == word &&
                        ends.find(text[name + word.size()]) != std::string_view::npos;
    if (!isName || (text[name - 1] != '<' && text[name - 1] != ':')) return false;
    const std::size_t tag = text.rfind('<', name);
    return tag == std::string_view::npos || text[tag + 1] != '/';
}

// No more tables begin in the file. That is known by the names of its tags alone, in a tenth of the
// time that its XML takes, which then is read only until all were found. The number of sheets that
// the workbook states may be wrong.
Result<std::size_t> mostTables(ArchiveFile file, const std::stop_token& stop) {
    constexpr std::size_t pieceSize = 1 << 16;
    constexpr std::size_t kept = 64;          // of the piece before: most tags begin in it
    constexpr std::string_view rare = "ble";  // of the name, what the text holds least often
    constexpr std::size_t before = 2;
    std::string text(kept, ' ');
    std::size_t count = 0;
    while (!stop.stop_requested()) {
        text.resize(kept + pieceSize);
        text.resize(kept + file.read(text.data() + kept, pieceSize));
        if (file.problem()) return *file.problem();
        if (text.size() == kept) break;
        // UTF-16 is no text of bytes.
        if (text.find('\0') != std::string::npos) return SIZE_MAX;
        const std::size_t end = text.size() - rare.size();  // a name needs the byte that follows
        for (std::size_t at = text.find(rare, kept - rare.size()); at < end;
             at = text.find(rare, at + 1)) {
            count += mayBeginTable(text, at - before);
        }
        text.erase(0, text.size() - kept);
    }
    return count;
}

// Lists the tables of the document, without those within others.
class SheetList final : public XmlReader {
  public:
    // most: no more begin.
    SheetList(ArchiveFile file, std::size_t most, const WorkbookLimits& limits,
              const std::stop_token& stop)
        : XmlReader(std::move(file), limits, stop), most_(most) {}

    std::vector<SheetInfo> sheets;
    bool isSpreadsheet = false;

  private:
    void start(std::string_view name, const XmlAttributes& attributes) override {
        if (name == "style") {
            style_ = attributes.text("name");
        } else if (name == "table-properties" && attributes.text("display") == "false") {
            hidden_.insert(style_);
        } else if (name == "spreadsheet") {
            isSpreadsheet = true;
        } else if (name == "table" && isSpreadsheet && tables_++ == 0) {
            const bool hidden = hidden_.contains(std::string(attributes.text("style-name")));
            sheets.push_back({std::string(attributes.text("name")), hidden, true});
            if (sheets.size() > limits().entries) fail("has too many sheets");
        } else if (tables_ > 0 && (name == "p" || attributes.find("value-type"))) {
            sheets.back().empty = false;
            endWhereComplete();
        }
    }
    void end(std::string_view name) override {
        if (name == "table" && tables_ > 0 && --tables_ == 0) endWhereComplete();
    }
    void endWhereComplete() {
        if (sheets.size() == most_) finish();
    }

    std::size_t most_;
    std::size_t tables_ = 0;
    std::string style_;
    std::set<std::string> hidden_;
};

}  // namespace

bool isEncryptedOds(const Archive& archive, const WorkbookLimits& limits,
                    const std::stop_token& stop) {
    const char* const manifest = "META-INF/manifest.xml";
    if (archive.has("encrypted-package")) return true;
    bool encrypted = false;
    if (!archive.has(manifest)) return false;
    scanElements(archive.file(manifest), limits, stop,
                 [&encrypted](std::string_view name, const XmlAttributes& /*attributes*/) {
                     encrypted |= name == "encryption-data";
                     return !encrypted;
                 });
    return encrypted;
}

Result<std::vector<SheetInfo>> readOdsSheets(const Archive& archive, const WorkbookLimits& limits,
                                             const std::stop_token& stop) {
    Result<ArchiveFile> file = archive.file("content.xml");
    if (!file) return file.problem();
    const Result<std::size_t> most = mostTables(std::move(file).value(), stop);
    if (!most) return most.problem();
    file = archive.file("content.xml");
    if (!file) return file.problem();
    SheetList list(std::move(file).value(), most.value(), limits, stop);
    list.advance();
    if (list.problem()) return *list.problem();
    if (!list.isSpreadsheet) {
        return Problem{"is a document without sheets: save its table as .xlsx or .ods"};
    }
    return std::move(list.sheets);
}

std::unique_ptr<SheetReader> odsSheet(ArchiveFile file, std::size_t sheet,
                                      const WorkbookLimits& limits, const std::stop_token& stop) {
    return std::make_unique<OdsSheet>(std::move(file), sheet, limits, stop);
}

}  // namespace zorvel
