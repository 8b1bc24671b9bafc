// Words for how a table was understood and read, the same in the window and on the command line.
#pragma once

#include <string>
#include <vector>

#include "tables/guess.h"
#include "tables/reader.h"

namespace zorvel {

// Of each separator that has one: "comma".
struct SeparatorName {
    char separator;
    const char* name;
    const char* plural;
};
const std::vector<SeparatorName>& separatorNames();

// "semicolons, decimal comma, Windows-1252", or "sheet "North"".
std::string formText(const TableReading& reading);

// "semicolons, decimal comma, Windows-1252; a row for each census".
std::string understoodText(const TableReading& reading);

// "; names of censuses from columns A and B; counts of columns D and E added", as far as it is so.
std::string joinedText(const TableReading& reading);

// What is taken by a rule rather than by its letter, a line each.
std::vector<std::string> noticeTexts(const TableNotices& notices, const TableReading& reading);

// The question that is in doubt: "whether the columns are species or censuses".
const char* doubtText(TableDoubt doubt);

}  // namespace zorvel
