// Workbooks of Office Open XML: .xlsx, .xlsm and the like. One thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "workbook/sheet.h"
#include "workbook/values.h"
#include "workbook/workbook.h"

namespace zorvel {

// Texts that cells share, each kept once.
class SharedTexts {
  public:
    void add(std::string_view text);
    [[nodiscard]] std::size_t count() const { return ends_.size(); }
    [[nodiscard]] std::size_t bytes() const { return bytes_.size(); }
    [[nodiscard]] std::string_view text(std::size_t index) const;

  private:
    std::string bytes_;
    std::vector<std::uint32_t> ends_;
};

// What all sheets of a workbook use.
struct XlsxBook {
    std::vector<SheetInfo> sheets;   // in the order of the workbook
    std::vector<std::string> files;  // of each
    bool from1904 = false;
    bool isToBeComputed = false;  // all formulas: their results are out of date, or placeholders
    std::vector<NumberFormat> formats;  // by the number of the cell's style
    SharedTexts texts;
};

// The name of the file within the archive that lists the sheets; empty if it is no such workbook.
std::string xlsxBookFile(const Archive& archive, const WorkbookLimits& limits,
                         const std::stop_token& stop);

Result<XlsxBook> readXlsxBook(const Archive& archive, const std::string& bookFile,
                              const WorkbookLimits& limits, const std::stop_token& stop);

// Of the rows of a sheet's head, the columns (first and end) of the cells that are merged.
using XlsxMerges = std::multimap<std::size_t, std::pair<std::size_t, std::size_t>>;

// Up to that row. Takes as long as reading the sheet: merged cells are listed after the rows.
Result<XlsxMerges> readXlsxMerges(const Archive& archive, const std::string& sheetFile,
                                  std::size_t lastRow, const WorkbookLimits& limits,
                                  const std::stop_token& stop);

// book and merges outlive the reader.
std::unique_ptr<SheetReader> xlsxSheet(ArchiveFile file, const XlsxBook& book,
                                       const XlsxMerges& merges, const WorkbookLimits& limits,
                                       const std::stop_token& stop);

}  // namespace zorvel
