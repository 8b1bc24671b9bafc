#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "base/numbers.h"
#include "interchange/characters.h"
#include "interchange/parsers.h"

namespace zorvel {
namespace {

using Censuses = std::vector<MockCensus>;

constexpr std::string_view cellEnd = "\",";

std::string without(std::string_view text, char unwanted) {
    std::string rest(text);
    std::erase(rest, unwanted);
    return rest;
}

// The taxon names of the header: its cells from the sixth on. Absent if there are fewer.
std::optional<std::vector<SharedText>> taxonNames(std::string_view header, NamePool& pool) {
    constexpr std::size_t leadingCells = 5;
    std::vector<SharedText> names;
    std::size_t cell = 0;
    for (std::size_t start = 0; start != std::string_view::npos; ++cell) {
        const std::size_t end = header.find(cellEnd, start);
        if (cell >= leadingCells)
            names.push_back(pool.intern(without(header.substr(start, end - start), '"')));
        start = end == std::string_view::npos ? end : end + cellEnd.size();
    }
    if (names.empty()) return std::nullopt;
    return names;
}

// The pieces between the separators. False if there are more or fewer.
template <std::size_t Count>
bool split(std::string_view text, std::string_view separator,
           std::array<std::string_view, Count>& pieces) {
    for (std::size_t i = 0; i < Count; ++i) {
        const std::size_t end = text.find(separator);
        const bool isLast = end == std::string_view::npos;
        if (isLast != (i + 1 == Count)) return false;
        pieces[i] = text.substr(0, end);
        if (!isLast) text.remove_prefix(end + separator.size());
    }
    return true;
}

// The next of the values of a numeric tail, which is removed from it.
std::string_view takeValue(std::string_view& tail) {
    const std::size_t end = std::min(tail.find(','), tail.size());
    const std::string_view value = tail.substr(0, end);
    tail.remove_prefix(std::min(end + 1, tail.size()));
    return value;
}

// Spaces do not count, even between the digits.
Parsed<MockCensus> readAbundances(std::string_view tail, const std::vector<SharedText>& names,
                                  MockCensus census) {
    constexpr std::size_t firstCell = 6;
    Parsed<MockCensus> result;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const auto abundance = parseWholeInteger(without(takeValue(tail), ' '));
        if (!abundance) {
            return refused<MockCensus>("WARNING: non-integer abundance detected",
                                       {0, firstCell + i});
        }
        if (*abundance >= 1) census.taxa.push_back({*abundance, names[i]});
        if (*abundance == 0) ++result.leftOut.zeroCells;
        if (*abundance < 0) ++result.leftOut.negativeCells;
    }
    result.value = std::move(census);
    return result;
}

// Latitude, longitude and abundances.
Parsed<MockCensus> readTail(std::string_view tail, const std::vector<SharedText>& names,
                            MockCensus census) {
    constexpr std::size_t latitudeCell = 4;
    const auto commas = static_cast<std::size_t>(std::count(tail.begin(), tail.end(), ','));
    if (commas < 2) return refused<MockCensus>("WARNING: too few numerial components");
    const std::optional<double> latitude = parseWholeDouble(takeValue(tail));
    if (!latitude) {
        return refused<MockCensus>("WARNING: non-numerical value of latitude", {0, latitudeCell});
    }
    const std::optional<double> longitude = parseWholeDouble(takeValue(tail));
    if (!longitude) {
        return refused<MockCensus>("WARNING: non-numerical value of longitude",
                                   {0, latitudeCell + 1});
    }
    if (commas - 1 != names.size()) {
        return refused<MockCensus>(
            "WARNING: number of species in sample doesn't equal the expected number of species");
    }
    census.latitude = *latitude;
    census.longitude = *longitude;
    return readAbundances(tail, names, std::move(census));
}

// The result says what is wrong with the line; its place has only the cell.
Parsed<MockCensus> readDataLine(std::string_view line, const std::vector<SharedText>& names) {
    std::array<std::string_view, 4> pieces;
    if (!split(line, cellEnd, pieces)) {
        return refused<MockCensus>("WARNING: incorrect number of items in data line");
    }
    const Parsed<TimeStamp> date = parseIOSDate(without(pieces[1], '"'));
    if (!date.value) {
        auto result = refused<MockCensus>("WARNING: could not create date", {0, 2});
        result.consoleLines.insert(result.consoleLines.begin(), date.consoleLines.begin(),
                                   date.consoleLines.end());
        return result;
    }
    MockCensus census;
    census.name = without(pieces[0], '"');
    census.notes = without(pieces[2], '"');
    census.timeStamp = date.value;
    return readTail(pieces[3], names, std::move(census));
}

// A line without anything in it lacks its items, which says little about why. It may be what stands
// between the two characters of CR LF.
const char* adviceOnEmptyLine(std::string_view text, std::size_t start) {
    return text.substr(start - 1, 2) == "\r\n"
               ? "the lines end in CR LF, which this format does not allow; save the file with LF "
                 "line ends and try again"
               : "the line is empty, which this format does not allow; remove it and try again";
}

constexpr std::array<std::string_view, 12> monthNames = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// On the 24-hour clock; an hour that no day has stays one.
std::int64_t hourOfDay(std::int64_t hour, bool afternoon) {
    if (hour == 12) hour = 0;
    // Nothing is added to an hour past the day's last: it may be any 64-bit value.
    return afternoon && hour < 24 ? hour + 12 : hour;
}

std::optional<int> monthNumber(std::string_view piece) {
    const auto found = std::find(monthNames.begin(), monthNames.end(), piece);
    if (found == monthNames.end()) return std::nullopt;
    return static_cast<int>(found - monthNames.begin()) + 1;
}

}  // namespace

// Each line ends with a single line-break character: CR LF ends two.
Parsed<Censuses> parseIOSFile(std::string_view text, const std::stop_token& stop, NamePool* names) {
    NamePool own;
    std::size_t end = lineEnd(text, 0);
    const auto header = taxonNames(text.substr(0, end), names ? *names : own);
    if (!header) {
        return refused<Censuses>("WARNING: fewer than six components on first line", {1, 0});
    }
    if (end == text.size()) return refused<Censuses>("WARNING: no data lines detected");
    Parsed<Censuses> result;
    Censuses censuses;
    std::size_t start = end + lineBreakLength(text, end);
    // What follows the last line break is not a data line.
    for (; (end = lineEnd(text, start)) < text.size(); start = end + lineBreakLength(text, end)) {
        if (stop.stop_requested()) return {};
        Parsed<MockCensus> census = readDataLine(text.substr(start, end - start), *header);
        if (!census.value) {
            result.consoleLines = std::move(census.consoleLines);
            result.place = {lineNumber(text, start), census.place.cell};
            if (start == end) result.advice = adviceOnEmptyLine(text, start);
            return result;
        }
        censuses.push_back(std::move(*census.value));
        result.leftOut.zeroCells += census.leftOut.zeroCells;
        result.leftOut.negativeCells += census.leftOut.negativeCells;
    }
    if (start < text.size()) result.leftOut.unfinishedLines = 1;
    result.value = std::move(censuses);
    return result;
}

Parsed<TimeStamp> parseIOSDate(std::string_view text) {
    std::array<std::string_view, 5> pieces;
    if (!split(text, " ", pieces)) {
        return refused<TimeStamp>("WARNING: incorrect number of components in date");
    }
    const std::optional<int> month = monthNumber(pieces[0]);
    if (!month) {
        return refused<TimeStamp>("WARNING: unexpected string for month: " +
                                  std::string(pieces[0]));
    }
    const std::optional<std::int64_t> day = parseWholeInteger(without(pieces[1], ','));
    if (!day) return refused<TimeStamp>("WARNING: unable to extract day");
    const std::optional<std::int64_t> year = parseWholeInteger(without(pieces[2], ','));
    if (!year) return refused<TimeStamp>("WARNING: unable to extract day year");
    std::array<std::string_view, 2> time;
    if (!split(pieces[3], ":", time)) {
        return refused<TimeStamp>("WARNING time does not have two parts");
    }
    const std::optional<std::int64_t> hour = parseWholeInteger(time[0]);
    if (!hour) return refused<TimeStamp>("WARNING: could not extract hour");
    if (pieces[4] != "AM" && pieces[4] != "PM") {
        return refused<TimeStamp>("WARNING: neither AM nor PM");
    }
    const std::int64_t hourOf24 = hourOfDay(*hour, pieces[4] == "PM");
    const std::optional<std::int64_t> minute = parseWholeInteger(time[1]);
    Parsed<TimeStamp> date;
    if (minute) date.value = localTime({*year, *month, *day, hourOf24, *minute});
    return date;
}

}  // namespace zorvel
