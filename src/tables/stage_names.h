// Names of species or censuses that differ in nothing but a sex or stage at their end.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "tables/reading.h"
#include "tables/row_reader.h"

namespace zorvel {

struct StageName {
    std::size_t place;  // by which the caller knows it
    std::string name;
    std::string attributes = {};  // names that differ in them are different anyway
};

// Of each of them, by its place, the name that they have in common: "Poa" of "Poa", "Poa M" and
// "Poa juv." Where they are nothing but a sex or stage it is the sheet, or "M + F" without one. A
// stage without others is a part of its name, and so are the letters of a series: "Plot A",
// "Plot F", "Plot M".
std::map<std::size_t, std::string> namesWithoutStages(const std::vector<StageName>& names,
                                                      const std::string& sheet = {});

// Of the columns of counts in a wide table. Columns of another date or place differ in more, unless
// these do not part censuses (sameCensus).
std::map<std::size_t, std::string> headersWithoutStages(const TableHeader& header,
                                                        const TableReading& reading);

}  // namespace zorvel
