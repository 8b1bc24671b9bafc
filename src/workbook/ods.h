// Workbooks of Open Document: .ods. One thread.
#pragma once

#include <cstddef>
#include <memory>
#include <stop_token>
#include <vector>

#include "workbook/sheet.h"
#include "workbook/workbook.h"

namespace zorvel {

bool isEncryptedOds(const Archive& archive, const WorkbookLimits& limits,
                    const std::stop_token& stop);

// In the order of the workbook. The XML is read only until all are known.
Result<std::vector<SheetInfo>> readOdsSheets(const Archive& archive, const WorkbookLimits& limits,
                                             const std::stop_token& stop);

// sheet: its place in that list.
std::unique_ptr<SheetReader> odsSheet(ArchiveFile file, std::size_t sheet,
                                      const WorkbookLimits& limits, const std::stop_token& stop);

}  // namespace zorvel
