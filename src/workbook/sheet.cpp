#include "workbook/sheet.h"

#include <algorithm>

#include "tables/rows.h"

namespace zorvel {

void SheetRow::begin(std::size_t rowNumber) {
    number = rowNumber;
    repeats = 1;
    cells_.clear();
    copied_.clear();
    copies_.clear();
    merges_.clear();
    filled_ = 0;
    textBytes_ = 0;
    hasNumber_ = false;
}

void SheetRow::add(std::size_t column, std::string_view text) {
    cells_.resize(std::max(cells_.size(), column + 1));
    cells_[column] = text;
    textBytes_ += text.size();
}

void SheetRow::addCopy(std::size_t column, std::size_t count, std::string_view text) {
    copies_.push_back({column, count, copied_.size(), text.size()});
    copied_ += text;
    cells_.resize(std::max(cells_.size(), column + count));
    textBytes_ += text.size() * count;
}

void SheetRow::end() {
    for (const Copy& copy : copies_) {
        const auto text = std::string_view(copied_).substr(copy.place, copy.length);
        std::fill_n(cells_.begin() + static_cast<std::ptrdiff_t>(copy.column), copy.count, text);
    }
    for (std::string_view& cell : cells_) {
        cell = withoutBlanks(cell);
        filled_ += !cell.empty();
    }
}

void SheetRow::lendTexts() {
    constexpr std::size_t longestLent = 4096;
    if (filled_ < 2) return;
    std::size_t room = mostColumns;  // merged cells do not overlap
    for (const auto& [first, end] : merges_) {
        if (end - first > room) return;
        room -= end - first;
        if (first == 0 || first >= cells_.size() || cells_[first].size() > longestLent) continue;
        cells_.resize(std::max(cells_.size(), end));
        for (std::size_t column = first + 1; column < end; ++column) {
            if (cells_[column].empty()) cells_[column] = cells_[first];
        }
    }
}

bool SheetReader::isPlace(std::size_t row, std::size_t column) {
    if (row >= 1 && row <= SheetRow::mostRows && column < SheetRow::mostColumns) return true;
    fail("has a cell beyond the last row (1048576) or column (XFD) of a sheet");
    return false;
}

void SheetReader::endRow() {
    row_.end();
    if (row_.textBytes() > limits().rowBytes) {
        fail("has a row of more than " + std::to_string(limits().rowBytes >> 20) + " MB of text");
    } else if (row_.filled() > 0) {
        pause();
    }
}

}  // namespace zorvel
