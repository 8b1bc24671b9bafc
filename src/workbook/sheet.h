// A sheet as its format's reader gives it: the rows that are not empty, one after the other.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "workbook/xml.h"

namespace zorvel {

class SheetRow {
  public:
    static constexpr std::size_t mostRows = 1 << 20;
    static constexpr std::size_t mostColumns = 1 << 14;

    void begin(std::size_t number);
    // Texts of cells, in the order of their columns, which count from 0. One that outlives the row:
    void add(std::size_t column, std::string_view text);
    // One that is copied, to several columns.
    void addCopy(std::size_t column, std::size_t count, std::string_view text);
    // Of the row's first cells, those that are merged with their left neighbour.
    // No more of them than a row has columns.
    void merge(std::size_t first, std::size_t end) {
        if (first >= mostColumns || merges_.size() == mostColumns) return;
        merges_.emplace_back(first, std::min(end, mostColumns));
    }
    void noteNumber() { hasNumber_ = true; }

    // The text of each merged cell stands in all of them from now on, except a title: one that
    // stands alone, or from the first column on.
    void lendTexts();
    // Cuts the blanks around texts; cells() is valid from here until the next row.
    void end();

    [[nodiscard]] const std::vector<std::string_view>& cells() const { return cells_; }
    [[nodiscard]] std::size_t filled() const { return filled_; }
    // Holds a cell that is a number and no date.
    [[nodiscard]] bool hasNumber() const { return hasNumber_; }
    [[nodiscard]] std::size_t textBytes() const { return textBytes_; }

    std::size_t number = 0;  // from 1
    std::size_t repeats = 1;

  private:
    struct Copy {
        std::size_t column = 0;
        std::size_t count = 0;
        std::size_t place = 0;
        std::size_t length = 0;
    };

    std::vector<std::string_view> cells_;
    std::string copied_;
    std::vector<Copy> copies_;
    std::vector<std::pair<std::size_t, std::size_t>> merges_;
    std::size_t filled_ = 0;
    std::size_t textBytes_ = 0;  // with repetitions
    bool hasNumber_ = false;
};

class SheetReader : public XmlReader {
  public:
    using XmlReader::XmlReader;
    // Of the last call of advance().
    [[nodiscard]] SheetRow& row() { return row_; }

  protected:
    // False, with a problem, where the sheet has no such cell.
    bool isPlace(std::size_t row, std::size_t column);
    // Ends the row; one without text is passed over.
    void endRow();

  private:
    SheetRow row_;
};

}  // namespace zorvel
