// Workbooks for tests: read as rows of texts, and made of files.
#pragma once

#include <string>
#include <vector>

#include "tests/support/zip_archive.h"
#include "workbook/workbook.h"

namespace zorvel::test {

using Cells = std::vector<std::vector<std::string>>;

// The bytes of a file of tests/data.
std::string bytesOfData(const std::string& name);

Result<Workbook> openBytes(std::string bytes, const WorkbookLimits& limits = {});

// The cells of all rows, or "problem" and its message as the last row.
Cells cellsOf(RowSource& source);
Cells cellsOf(const Result<Workbook>& workbook, std::size_t sheet);

// The files of a workbook with one sheet, of which this is the XML.
Files sheetFiles(const std::string& xml);

}  // namespace zorvel::test
