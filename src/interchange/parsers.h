// The parsers of every import format: pure functions from UTF-8 text to records. A text holds no
// byte-order mark. On any problem there is no record at all, one or two console lines, and a place.
// Time is linear in the text. Memory is that of the records (24 bytes per taxon, 144 per census,
// and each text once), up to three times that while a list of them grows, and for a matrix its
// header. The worst text (one letter per line) takes less than 200 bytes per byte; a message quotes
// a cell once. The stop is checked before each record; a stopped parser returns neither records nor
// lines. Each name of a taxon is kept once, in the pool if one is given.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/shared_text.h"
#include "base/time_stamp.h"

namespace zorvel {

struct MockTaxon {
    std::int64_t abundance = 0;
    SharedText name;

    friend bool operator==(const MockTaxon&, const MockTaxon&) = default;
};

struct MockCensus {
    double latitude = 0;   // decimal degrees
    double longitude = 0;  // decimal degrees
    std::string name;
    std::string notes;
    std::vector<MockTaxon> taxa;  // in the order of the file
    std::optional<TimeStamp> timeStamp;
    // The places of the taxa that the metrics do not include, ascending.
    std::vector<std::size_t> excluded = {};

    friend bool operator==(const MockCensus&, const MockCensus&) = default;
};

// The name of a census whose file gives none.
inline constexpr const char* importedCensusName = "imported census";

// The place of a problem in a text. Lines count from 1 by line feeds, carriage returns and the
// other line breaks (CR LF is one); cells count from 1 within the line. 0: not known, or the whole
// text.
struct TextPlace {
    std::size_t line = 0;
    std::size_t cell = 0;

    friend bool operator==(const TextPlace&, const TextPlace&) = default;
};

// What a format leaves out by its rules, without a console line.
struct LeftOut {
    std::size_t unfinishedLines = 0;  // a last line that lacks its value, or its line break
    std::size_t markedRows = 0;       // of a matrix, called importedCensusName
    std::size_t shortRows = 0;        // of a matrix, with fewer cells than names: kept, the rest 0
    std::size_t zeroCells = 0;        // of the censuses kept: absent taxa
    std::size_t negativeCells = 0;    // taken as absent taxa too

    friend bool operator==(const LeftOut&, const LeftOut&) = default;
};

// What a parser returns: its records, or none with the place of the problem; and its console lines
// in order. A parser prints nothing itself.
template <class T>
struct Parsed {
    std::optional<T> value;
    std::vector<std::string> consoleLines;
    TextPlace place;
    std::string advice;  // how to solve the problem, if known: not for the console
    LeftOut leftOut;     // of the records

    friend bool operator==(const Parsed&, const Parsed&) = default;
};

using ParsedCensuses = Parsed<std::vector<MockCensus>>;

// The result of a parser that found a problem: only the line that describes it.
template <class T>
Parsed<T> refused(std::string consoleLine, TextPlace place = {}) {
    Parsed<T> result;
    result.consoleLines.push_back(std::move(consoleLine));
    result.place = place;
    return result;
}

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
// skips moves forward; a day, hour or minute that does not exist has no result.
Parsed<TimeStamp> parseIOSDate(std::string_view text);

// Taxon names for completion. No text (no file could be read) gives an empty list and a warning.
Parsed<std::vector<std::string>> parseSpeciesList(std::optional<std::string_view> text);

}  // namespace zorvel
