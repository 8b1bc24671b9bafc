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

// One line after the other, each ended by a single line-break character: CR LF ends two.
class Lines {
  public:
    explicit Lines(std::string_view text) : text_(text) {}

    // Absent once the text is used up. A text that ends in a line break has an empty last line.
    std::optional<std::string_view> next() {
        if (done_) return std::nullopt;
        start_ = position_;
        const std::size_t end = lineEnd(text_, start_);
        done_ = end == text_.size();
        position_ = end + lineBreakLength(text_, end);
        return text_.substr(start_, end - start_);
    }
    // True after the last line.
    [[nodiscard]] bool atEnd() const { return done_; }
    [[nodiscard]] std::size_t number() const { return lineNumber(text_, start_); }
    // The line is what stands between the two characters of CR LF.
    [[nodiscard]] bool splitsLineEnd() const {
        return start_ > 0 && text_.substr(start_ - 1, 2) == "\r\n";
    }

  private:
    std::string_view text_;
    std::size_t start_ = 0;
    std::size_t position_ = 0;
    bool done_ = false;
};

std::string without(std::string_view text, char unwanted) {
    std::string rest;
    rest.reserve(text.size());
    std::copy_if(text.begin(), text.end(), std::back_inserter(rest),
                 [&](char c) { return c != unwanted; });
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

// The values of a numeric tail, one per call.
class Values {
  public:
    explicit Values(std::string_view tail)
        : rest_(tail),
          count_(1 + static_cast<std::size_t>(std::count(tail.begin(), tail.end(), ','))) {}

    [[nodiscard]] std::size_t count() const { return count_; }
    std::string_view next() {
        const std::size_t end = rest_.find(',');
        const std::string_view value = rest_.substr(0, end);
        rest_ = end == std::string_view::npos ? std::string_view() : rest_.substr(end + 1);
        return value;
    }

  private:
    std::string_view rest_;
    std::size_t count_;
};

// Spaces do not count, even between the digits.
std::optional<std::int64_t> abundanceOf(std::string_view value) {
    if (value.find(' ') == std::string_view::npos) return parseWholeInteger(value);
    return parseWholeInteger(without(value, ' '));
}

// Reads one data line. The parsed result says what is wrong with it; its place has only the cell.
class DataLine {
  public:
    explicit DataLine(const std::vector<SharedText>& names) : names_(names) {}

    Parsed<MockCensus> read(std::string_view line) {
        std::array<std::string_view, 4> pieces;
        if (!cut(line, pieces)) {
            return refused<MockCensus>("WARNING: incorrect number of items in data line");
        }
        Parsed<MockCensus> result;
        MockCensus census;
        census.name = without(pieces[0], '"');
        Parsed<TimeStamp> date = parseIOSDate(without(pieces[1], '"'));
        census.notes = without(pieces[2], '"');
        if (!date.value) {
            result.consoleLines = std::move(date.consoleLines);
            result.consoleLines.emplace_back("WARNING: could not create date");
            result.place.cell = 2;
            return result;
        }
        census.timeStamp = date.value;
        return readTail(pieces[3], std::move(census));
    }

  private:
    static bool cut(std::string_view line, std::array<std::string_view, 4>& pieces) {
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            const std::size_t end = line.find(cellEnd);
            if ((end == std::string_view::npos) != (i + 1 == pieces.size())) return false;
            pieces[i] = line.substr(0, end);
            if (end != std::string_view::npos) line.remove_prefix(end + cellEnd.size());
        }
        return true;
    }

    Parsed<MockCensus> readTail(std::string_view tail, MockCensus census) {
        constexpr std::size_t latitudeCell = 4;
        Values values(tail);
        if (values.count() < 3) return refused<MockCensus>("WARNING: too few numerial components");
        const std::optional<double> latitude = parseWholeDouble(values.next());
        if (!latitude) {
            return refused<MockCensus>("WARNING: non-numerical value of latitude",
                                       {0, latitudeCell});
        }
        const std::optional<double> longitude = parseWholeDouble(values.next());
        if (!longitude) {
            return refused<MockCensus>("WARNING: non-numerical value of longitude",
                                       {0, latitudeCell + 1});
        }
        if (values.count() - 2 != names_.size()) {
            return refused<MockCensus>(
                "WARNING: number of species in sample doesn't equal the expected number of "
                "species");
        }
        census.latitude = *latitude;
        census.longitude = *longitude;
        return readAbundances(values, std::move(census));
    }

    Parsed<MockCensus> readAbundances(Values& values, MockCensus census) {
        constexpr std::size_t firstCell = 6;
        Parsed<MockCensus> result;
        for (std::size_t i = 0; i < names_.size(); ++i) {
            const std::optional<std::int64_t> abundance = abundanceOf(values.next());
            if (!abundance) {
                return refused<MockCensus>("WARNING: non-integer abundance detected",
                                           {0, firstCell + i});
            }
            if (*abundance >= 1) census.taxa.push_back({*abundance, names_[i]});
            if (*abundance == 0) ++result.leftOut.zeroCells;
            if (*abundance < 0) ++result.leftOut.negativeCells;
        }
        result.value = std::move(census);
        return result;
    }

    const std::vector<SharedText>& names_;
};

// A line without anything in it lacks its items, which says little about why.
std::string adviceOn(std::string_view line, const Lines& lines) {
    if (!line.empty()) return {};
    return lines.splitsLineEnd()
               ? "the lines end in CR LF, which this format does not allow; save the file with LF "
                 "line ends and try again"
               : "the line is empty, which this format does not allow; remove it and try again";
}

constexpr std::array<std::string_view, 12> monthNames = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// Fills the pieces between the separators; the number of pieces that there are, counted no further
// than one more than are wanted.
template <std::size_t Count>
std::size_t cut(std::string_view text, char separator,
                std::array<std::string_view, Count>& pieces) {
    std::size_t count = 0;
    for (std::size_t start = 0; count < Count; ++count) {
        const std::size_t end = text.find(separator, start);
        pieces[count] = text.substr(start, end - start);
        if (end == std::string_view::npos) return count + 1;
        start = end + 1;
    }
    return Count + 1;
}

std::optional<std::int64_t> integerWithoutCommas(std::string_view piece) {
    if (piece.find(',') == std::string_view::npos) return parseWholeInteger(piece);
    std::string digits(piece);
    std::erase(digits, ',');
    return parseWholeInteger(digits);
}

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

Parsed<Censuses> parseIOSFile(std::string_view text, const std::stop_token& stop, NamePool* names) {
    Lines lines(text);
    NamePool own;
    const auto header = taxonNames(*lines.next(), names ? *names : own);
    if (!header) {
        return refused<Censuses>("WARNING: fewer than six components on first line", {1, 0});
    }
    if (lines.atEnd()) return refused<Censuses>("WARNING: no data lines detected");
    Parsed<Censuses> result;
    Censuses censuses;
    DataLine reader(*header);
    // The last line is what follows the last line break: not a data line.
    auto line = lines.next();
    for (; !lines.atEnd(); line = lines.next()) {
        if (stop.stop_requested()) return {};
        Parsed<MockCensus> census = reader.read(*line);
        if (!census.value) {
            result.consoleLines = std::move(census.consoleLines);
            result.place = {lines.number(), census.place.cell};
            result.advice = adviceOn(*line, lines);
            return result;
        }
        censuses.push_back(std::move(*census.value));
        result.leftOut.zeroCells += census.leftOut.zeroCells;
        result.leftOut.negativeCells += census.leftOut.negativeCells;
    }
    if (!line->empty()) result.leftOut.unfinishedLines = 1;
    result.value = std::move(censuses);
    return result;
}

Parsed<TimeStamp> parseIOSDate(std::string_view text) {
    std::array<std::string_view, 5> pieces;
    if (cut(text, ' ', pieces) != pieces.size()) {
        return refused<TimeStamp>("WARNING: incorrect number of components in date");
    }
    const std::optional<int> month = monthNumber(pieces[0]);
    if (!month) {
        return refused<TimeStamp>("WARNING: unexpected string for month: " +
                                  std::string(pieces[0]));
    }
    const std::optional<std::int64_t> day = integerWithoutCommas(pieces[1]);
    if (!day) return refused<TimeStamp>("WARNING: unable to extract day");
    const std::optional<std::int64_t> year = integerWithoutCommas(pieces[2]);
    if (!year) return refused<TimeStamp>("WARNING: unable to extract day year");
    std::array<std::string_view, 2> time;
    if (cut(pieces[3], ':', time) != time.size()) {
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
