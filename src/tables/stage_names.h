// Columns of a wide table whose headers differ in nothing but a sex or stage at their end.
#pragma once

#include <cstddef>
#include <map>
#include <string>

#include "tables/reading.h"
#include "tables/row_reader.h"

namespace zorvel {

// Of each of them, the name that they have in common: "Poa" of "Poa", "Poa M" and "Poa juv." Where
// nothing but a sex or stage stands above them it is the sheet, or "M + F". A stage without others
// is a part of its name, and so are the letters of a series: "Plot A", "Plot F", "Plot M".
std::map<std::size_t, std::string> namesWithoutStages(const TableHeader& header,
                                                      const TableReading& reading);

}  // namespace zorvel
