#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <utility>

#include "tables/guess_parts.h"

namespace zorvel {
namespace {

constexpr double doubtfulLead = 0.15;
constexpr std::string_view separators = "\t;,|";  // of equal scores, the first wins

// With a copy of its text, of which the cells are parts, one after the other.
SampleRow copyOf(const TableRow& row) {
    SampleRow copy{row.number, row.cells, nullptr, filledCells(row.cells)};
    if (copy.cells.empty()) return copy;
    const char* const start = row.cells.front().data();
    const char* const end = row.cells.back().data() + row.cells.back().size();
    copy.text = std::make_unique<char[]>(static_cast<std::size_t>(end - start));
    std::copy(start, end, copy.text.get());
    for (std::string_view& cell : copy.cells) {
        cell = {copy.text.get() + (cell.data() - start), cell.size()};
    }
    return copy;
}

SampleRows firstRows(std::string_view head, const TextForm& form) {
    TextRows source(bytesOf(head), form);
    SampleRows rows;
    TableRow row;
    while (rows.size() < TableSample::mostRows && source.next(row)) rows.push_back(copyOf(row));
    return rows;
}

bool isSeparator(char c) {
    return c == '\t' || c == ';' || c == ',' || c == '|';
}

// Holds no other separator, unless as a mark of a number or, before a blank, of a sentence.
bool isClean(std::string_view cell, char separator) {
    if (cell.size() == 1) return !isSeparator(cell.front());
    for (std::size_t i = 0; i < cell.size(); ++i) {
        const bool parts = isSeparator(cell[i]) && cell[i] != separator;
        const bool ofSentence = i + 1 < cell.size() && cell[i + 1] == ' ';
        if (parts && !ofSentence) return cell[i] == ',' && isNumberOfAnyForm(cell);
    }
    return true;
}

// How well a text falls into even rows of clean cells: 0 to 1.
double scoreOf(const SampleRows& rows, char separator) {
    std::map<std::size_t, std::size_t> widths;  // of rows, and how many have them
    std::size_t rowCount = 0;
    std::size_t cells = 0;
    std::size_t clean = 0;
    for (const SampleRow& row : rows) {
        const bool isRemark = row.cells.size() == 1 && isComment(row);
        if (row.filled == 0 || isRemark) continue;
        ++rowCount;
        ++widths[row.cells.size()];
        cells += row.cells.size();
        for (const std::string_view cell : row.cells) clean += isClean(cell, separator);
    }
    std::size_t width = 0;
    for (const auto& [value, times] : widths) {
        if (width == 0 || times >= widths[width]) width = value;
    }
    if (width < 2) return 0;
    const auto share = [](std::size_t part, std::size_t all) {
        return static_cast<double>(part) / static_cast<double>(all);
    };
    const std::size_t same = widths[width];
    const auto shorter = widths.find(width - 1);
    const std::size_t near = same + (shorter == widths.end() ? 0 : shorter->second);
    return (0.7 * share(same, rowCount) + 0.3 * share(near, rowCount)) *
           std::pow(share(clean, cells), 4) *
           std::min(1.0, 0.8 + 0.05 * static_cast<double>(width));
}

// A cell that begins with a quote and does not end with one, or has one inside, was never quoted.
bool isNotQuoted(std::string_view cell) {
    return cell.starts_with('"') && (cell.size() < 2 || !cell.ends_with('"'));
}

// Takes quotes in a text with tabs for letters if they were never meant otherwise.
void settleQuotes(std::string_view head, FormGuess& guess) {
    if (guess.form.separator != '\t' || head.find('"') == std::string_view::npos) return;
    TextForm form = guess.form;
    form.quotes = false;
    SampleRows rows = firstRows(head, form);
    const bool areLetters = std::any_of(rows.begin(), rows.end(), [](const SampleRow& row) {
        return std::any_of(row.cells.begin(), row.cells.end(), isNotQuoted);
    });
    if (!areLetters) return;
    guess.form = form;
    guess.rows = std::move(rows);
}

// Without rows if the text has no such separator.
FormGuess scored(std::string_view head, TextForm form, char separator) {
    FormGuess guess;
    form.separator = separator;
    guess.form = form;
    if (separator != ' ' && head.find(separator) == std::string_view::npos) return guess;
    guess.rows = firstRows(head, form);
    guess.score = scoreOf(guess.rows, separator);
    return guess;
}

FormGuess bestScored(std::string_view head, const TextForm& form) {
    std::array<FormGuess, separators.size()> found;
    std::transform(separators.begin(), separators.end(), found.begin(),
                   [&](char separator) { return scored(head, form, separator); });
    std::stable_sort(found.begin(), found.end(),
                     [](const auto& a, const auto& b) { return a.score > b.score; });
    FormGuess guess = std::move(found[0]);
    double other = found[1].score;
    if (guess.score < 0.4) {
        FormGuess blanks = scored(head, form, ' ');
        other = std::min(blanks.score, guess.score);
        if (blanks.score > guess.score) guess = std::move(blanks);
    }
    guess.doubtful = guess.score - other < doubtfulLead;
    return guess;
}

}  // namespace

FormGuess guessForm(std::string_view head, bool isWhole, const TableChoices& choices) {
    FormGuess guess;
    guess.form.encoding = choices.encoding.value_or(guessEncoding(head, isWhole));
    const char hinted = hintedSeparator(head.substr(head.starts_with("\xEF\xBB\xBF") ? 3 : 0));
    if (choices.separator || hinted != 0) {
        guess.form.separator = choices.separator.value_or(hinted);
    } else {
        guess = bestScored(head, guess.form);
    }
    if (guess.rows.empty()) guess.rows = firstRows(head, guess.form);
    if (choices.separator || hinted == 0) settleQuotes(head, guess);
    return guess;
}

}  // namespace zorvel
