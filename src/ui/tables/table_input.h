// A table that is to be imported: a text file, a workbook with its sheets, or a text that was
// pasted or dropped. A file stays open from the first look until the import, so that what was
// looked at is what is read. Any thread.
#pragma once

#include <cstddef>
#include <memory>
#include <stop_token>
#include <string>
#include <vector>

#include "base/result.h"
#include "interchange/text_file.h"
#include "tables/source.h"

namespace zorvel {

struct TableInput {
    struct Sheet {
        std::string name;  // empty for a text
        std::shared_ptr<const TableSource> rows;
    };
    std::vector<Sheet> sheets;  // at least one
    std::size_t first = 0;      // the sheet to show first
    bool isShort = true;        // enough to be read as a whole for each preview
};

// Waits for the disk. A file that is empty or no table is a problem; stopped: one without a
// message.
Result<TableInput> tableInput(Result<InputFile> file, const std::stop_token& stop = {});
TableInput tableInput(std::string text);

}  // namespace zorvel
