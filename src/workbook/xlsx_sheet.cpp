// The cells of a sheet of Office Open XML.
#include <algorithm>
#include <charconv>
#include <utility>

#include "workbook/xlsx.h"

namespace zorvel {
namespace {

struct CellPlace {
    std::size_t row = 0;     // from 1
    std::size_t column = 0;  // from 0
};

// Of "AB12"; absent for anything else.
std::optional<CellPlace> placeOf(const char* reference) {
    CellPlace place;
    const char* at = reference;
    for (; *at >= 'A' && *at <= 'Z' && at - reference < 4; ++at) {
        place.column = place.column * 26 + static_cast<std::size_t>(*at - 'A') + 1;
    }
    const char* const letters = at;
    for (; *at >= '0' && *at <= '9' && at - letters < 8; ++at) {
        place.row = place.row * 10 + static_cast<std::size_t>(*at - '0');
    }
    if (letters == reference || at == letters || *at != '\0') return std::nullopt;
    --place.column;
    return place;
}

class XlsxSheet final : public SheetReader {
  public:
    XlsxSheet(ArchiveFile file, const XlsxBook& book, const XlsxMerges& merges,
              const WorkbookLimits& limits, const std::stop_token& stop)
        : SheetReader(std::move(file), limits, stop), book_(book), merges_(merges) {}

  private:
    enum class Part { none, value, inlineText, formula };

    void start(std::string_view name, const XmlAttributes& attributes) override {
        part_ = Part::none;
        if (name == "row") {
            beginRow(attributes);
        } else if (name == "c" && inRow_) {
            beginCell(attributes);
        } else if (inCell_) {
            if (name == "v") {
                part_ = Part::value;
                hasValue_ = true;
            } else if (name == "f") {
                part_ = Part::formula;
                hasFormula_ = true;
            } else if (name == "rPh") {
                ++phonetic_;
            } else if (name == "t" && phonetic_ == 0) {
                part_ = Part::inlineText;
                hasValue_ = true;
            }
        }
    }

    void end(std::string_view name) override {
        part_ = Part::none;
        if (name == "rPh" && inCell_) {
            --phonetic_;
        } else if (name == "c" && inCell_) {
            inCell_ = false;
            endCell();
        } else if (name == "row" && inRow_) {
            inRow_ = false;
            const auto [first, last] = merges_.equal_range(number_);
            for (auto each = first; each != last; ++each) {
                row().merge(each->second.first, each->second.second);
            }
            endRow();
        }
    }

    void text(std::string_view text) override {
        if (part_ == Part::none) return;
        (part_ == Part::formula ? formula_ : value_) += text;
        if (value_.size() + formula_.size() > limits().cellBytes) {
            fail("has a cell of more than 1 MB");
        }
    }

    void beginRow(const XmlAttributes& attributes) {
        const std::size_t number = attributes.number("r", number_ + 1);
        if (number <= number_) {
            fail("has rows that are not in order");
            return;
        }
        number_ = number;
        column_ = 0;
        inRow_ = isPlace(number_, 0);
        row().begin(number_);
    }

    // The commonest element by far: one pass over its attributes.
    void beginCell(const XmlAttributes& attributes) {
        std::size_t column = column_;
        style_ = {};
        type_ = {};
        for (const char* const* pair = attributes.pairs(); *pair != nullptr; pair += 2) {
            const char* const name = pair[0];
            if (name[1] != '\0') continue;
            if (name[0] == 'r') {
                const std::optional<CellPlace> place = placeOf(pair[1]);
                if (!place || place->row != number_ || place->column < column_) {
                    fail("has cells that are not in order");
                    return;
                }
                column = place->column;
            } else if (name[0] == 's') {
                style_ = wholeNumber(pair[1], 0);
            } else if (name[0] == 't') {
                type_ = pair[1];
            }
        }
        if (!isPlace(number_, column)) return;
        cell_ = column;
        column_ = column + 1;
        inCell_ = true;
        hasValue_ = false;
        hasFormula_ = false;
        phonetic_ = 0;
        value_.clear();
        formula_.clear();
    }

    void endCell() {
        // A text may be the empty result of a formula; other results are not empty.
        const bool isResult =
            hasValue_ && !book_.isToBeComputed && (!value_.empty() || type_ == "str");
        if (hasFormula_ && !isResult) {
            // The formula itself is no value, which is said where it stands.
            row().addCopy(cell_, 1, "=" + formula_);
        } else if (!hasValue_) {
            return;
        } else if (type_ == "s") {
            addShared();
        } else if (type_ == "str" || type_ == "inlineStr") {
            unescaped_.clear();
            appendUnescaped(unescaped_, value_);
            row().addCopy(cell_, 1, unescaped_);
        } else if (type_ == "b") {
            row().addCopy(cell_, 1, value_ == "0" ? "FALSE" : "TRUE");
        } else if (type_ == "d") {
            row().addCopy(cell_, 1, isoDateText(value_));
        } else if (type_ == "e") {
            row().addCopy(cell_, 1, value_);
        } else if (!value_.empty()) {
            addNumber();
        }
    }

    void addShared() {
        std::size_t index = book_.texts.count();
        std::from_chars(value_.data(), value_.data() + value_.size(), index);
        if (index >= book_.texts.count()) {
            fail("has a cell whose text is missing");
            return;
        }
        row().add(cell_, book_.texts.text(index));
    }

    void addNumber() {
        const NumberFormat format =
            style_ < book_.formats.size() ? book_.formats[style_] : NumberFormat::number;
        if (format != NumberFormat::number) {
            row().addCopy(cell_, 1, dateText(value_, format, book_.from1904));
            return;
        }
        row().noteNumber();
        row().addCopy(cell_, 1, numberText(value_));
    }

    const XlsxBook& book_;
    const XlsxMerges& merges_;
    std::size_t number_ = 0;
    std::size_t column_ = 0;  // after the last cell
    bool inRow_ = false;

    bool inCell_ = false;
    Part part_ = Part::none;
    std::size_t cell_ = 0;
    std::size_t style_ = 0;
    std::size_t phonetic_ = 0;
    bool hasValue_ = false;
    bool hasFormula_ = false;
    std::string type_;
    std::string value_;
    std::string formula_;
    std::string unescaped_;
};

}  // namespace

Result<XlsxMerges> readXlsxMerges(const Archive& archive, const std::string& sheetFile,
                                  std::size_t lastRow, const WorkbookLimits& limits,
                                  const std::stop_token& stop) {
    XlsxMerges merges;
    const auto problem = scanElements(
        archive.file(sheetFile), limits, stop,
        [&](std::string_view name, const XmlAttributes& attributes) {
            if (name != "mergeCell") return true;
            const std::string range(attributes.text("ref"));
            const std::size_t colon = std::min(range.find(':'), range.size());
            const auto first = placeOf(range.substr(0, colon).c_str());
            const auto last = placeOf(range.c_str() + std::min(colon + 1, range.size()));
            const bool ofHead = first && last && first->row <= lastRow &&
                                last->column > first->column &&
                                last->column < SheetRow::mostColumns;
            if (ofHead) merges.emplace(first->row, std::pair(first->column, last->column + 1));
            return merges.size() <= SheetRow::mostColumns;
        });
    if (problem) return *problem;
    return merges;
}

std::unique_ptr<SheetReader> xlsxSheet(ArchiveFile file, const XlsxBook& book,
                                       const XlsxMerges& merges, const WorkbookLimits& limits,
                                       const std::stop_token& stop) {
    return std::make_unique<XlsxSheet>(std::move(file), book, merges, limits, stop);
}

}  // namespace zorvel
