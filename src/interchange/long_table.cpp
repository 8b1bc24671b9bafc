#include "base/numbers.h"
#include "interchange/writers.h"

namespace zorvel {
namespace {

constexpr std::size_t longTablePiece = std::size_t{1} << 18;  // what is handed on at once

std::string degreesText(double degrees) {
    return degrees == 0 ? std::string() : shortestText(degrees);
}

}  // namespace

void appendTableCell(std::string& text, std::string_view cell, char separator) {
    const std::string_view special = separator == ',' ? ",;\"\n\r\t" : "\"\n\r\t";
    const bool blankEnds = cell.starts_with(' ') || cell.ends_with(' ');
    if (!blankEnds && cell.find_first_of(special) == std::string_view::npos) {
        text += cell;
        return;
    }
    text += '"';
    for (const char c : cell) text.append(c == '"' ? 2 : 1, c);
    text += '"';
}

bool LongTableWriter::begin(const LongTableCensus& census, std::size_t taxa) {
    if (text_.size() >= longTablePiece) {
        if (!sink_(text_)) return false;
        text_.clear();
    }
    census_.clear();
    appendTableCell(census_, census.name);
    census_ += ',';
    if (census.timeStamp) census_ += isoLocalText(*census.timeStamp);
    census_ += ',' + degreesText(census.latitude) + ',' + degreesText(census.longitude) + ',';
    const bool isNew = known_.insert(census_).second;
    appendTableCell(census_, census.notes);
    // A row of commas alone is no census.
    if (taxa == 0 || !isNew) text_ += (census_ == ",,,," ? ",,0,," : census_) + ",,,\n";
    return true;
}

void LongTableWriter::add(std::string_view species, std::int64_t count, bool included) {
    text_ += census_;
    text_ += ',';
    appendTableCell(text_, species);
    text_ += ',' + integerText(count) + (included ? ",yes\n" : ",no\n");
}

bool LongTableWriter::finish() {
    return sink_(text_);
}

}  // namespace zorvel
