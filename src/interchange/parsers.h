// The parsers of every import format: pure functions from UTF-8 text to records. A text holds no
// byte-order mark. On any problem there is no record at all, one or two console lines, and a place.
// Time is linear in the text. Memory is that of the records (24 bytes a taxon, 120 a census, and
// each text once), up to three times that while a list of them grows, and for a matrix its header:
// even a text made for it (one letter a line) takes under 200 bytes a byte, and a message quotes a
// cell once. The stop is looked at before each record: a parser that is told to stop returns
// nothing at all, neither records nor lines. The names of taxa come from the pool, if one is given,
// and are kept once each in any case.
#pragma once

#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "interchange/import_records.h"

namespace zorvel {

// A bare list of counts: one census, every taxon called "unnamed taxon".
Parsed<MockCensus> parseAbundanceList(std::string_view text, const std::stop_token& stop = {},
                                      NamePool* names = nullptr);

// Lines "name,abundance": one census.
Parsed<MockCensus> parseCensus(std::string_view text, const std::stop_token& stop = {},
                               NamePool* names = nullptr);

// Censuses by taxa, comma-separated, with a header of taxon names.
Parsed<std::vector<MockCensus>> parseCensusMatrix(std::string_view text,
                                                  const std::stop_token& stop = {},
                                                  NamePool* names = nullptr);

// The export of the companion phone application; possibly an empty list.
Parsed<std::vector<MockCensus>> parseIOSFile(std::string_view text,
                                             const std::stop_token& stop = {},
                                             NamePool* names = nullptr);

// "Mar 5, 2016 3:42 PM" in the computer's current time zone; second 0. A time that daylight saving
// skips moves forward; a day, hour or minute that the calendar does not have gives nothing.
Parsed<TimeStamp> parseIOSDate(std::string_view text);

// Taxon names for completion. No text (no file could be read) gives an empty list and a warning.
Parsed<std::vector<std::string>> parseSpeciesList(std::optional<std::string_view> text);

}  // namespace zorvel
