#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <utility>

#include "tables/guess_parts.h"

namespace zorvel {
namespace {

constexpr double doubtfulLead = 0.15;
constexpr std::string_view separators = "\t;,|";

// Holds no other separator, unless as a mark of a number or, before a blank, of a sentence.
bool isClean(std::string_view cell, char separator) {
    if (cell.size() == 1) return separators.find(cell.front()) == std::string_view::npos;
    for (std::size_t i = 0; i < cell.size(); ++i) {
        const char c = cell[i];
        const bool parts = (c == '\t' || c == ';' || c == ',' || c == '|') && c != separator;
        const bool ofSentence = i + 1 < cell.size() && cell[i + 1] == ' ';
        if (parts && !ofSentence) return isNumberOfAnyForm(cell);
    }
    return true;
}

// How well the text falls into even rows of clean cells: 0 to 1.
double scoreOf(std::string_view head, const TextForm& form) {
    if (form.separator != ' ' && head.find(form.separator) == std::string_view::npos) return 0;
    std::map<std::size_t, std::size_t> widths;  // of rows, and how many have them
    std::size_t rowCount = 0;
    std::size_t cells = 0;
    std::size_t clean = 0;
    TextRows rows(bytesOf(head), form);
    SparseRow row;
    while (row.number < TableSample::mostRows && rows.nextSparse(row)) {
        const std::size_t zeros = row.width - row.cells.size();
        const bool isEmpty = zeros == 0 && std::all_of(row.cells.begin(), row.cells.end(),
                                                       [](auto cell) { return cell.empty(); });
        const bool isRemark = row.width == 1 && row.cell(0).starts_with('#');
        if (isEmpty || isRemark) continue;
        ++rowCount;
        ++widths[row.width];
        cells += row.width;
        clean += zeros;
        for (const std::string_view cell : row.cells) clean += isClean(cell, form.separator);
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
bool quotesAreLetters(std::string_view head, TextForm form) {
    if (head.find('"') == std::string_view::npos) return false;
    form.quotes = false;
    TextRows rows(bytesOf(head), form);
    TableRow row;
    while (row.number < TableSample::mostRows && rows.next(row)) {
        for (const std::string_view cell : row.cells) {
            if (!cell.starts_with('"')) continue;
            if (cell.size() < 2 || !cell.ends_with('"')) return true;
        }
    }
    return false;
}

}  // namespace

FormGuess guessForm(std::string_view head, bool isWhole, const TableChoices& choices) {
    FormGuess guess;
    guess.form.encoding = choices.encoding.value_or(guessEncoding(head, isWhole));
    if (choices.separator) {
        guess.form.separator = *choices.separator;
        if (guess.form.separator == '\t') {
            guess.form.quotes = !quotesAreLetters(head, guess.form);
        }
        return guess;
    }
    if (const char hinted =
            hintedSeparator(head.substr(head.starts_with("\xEF\xBB\xBF") ? 3 : 0))) {
        guess.form.separator = hinted;
        return guess;
    }
    std::array<std::pair<double, char>, separators.size()> scores;
    for (std::size_t i = 0; i < separators.size(); ++i) {
        guess.form.separator = separators[i];
        scores[i] = {scoreOf(head, guess.form), separators[i]};
    }
    std::stable_sort(scores.begin(), scores.end(),
                     [](const auto& a, const auto& b) { return a.first > b.first; });
    guess.form.separator = scores[0].second;
    guess.doubtful = scores[0].first - scores[1].first < doubtfulLead;
    if (scores[0].first < 0.4) {
        guess.form.separator = ' ';
        const double blanks = scoreOf(head, guess.form);
        if (blanks <= scores[0].first) guess.form.separator = scores[0].second;
        guess.doubtful = std::abs(blanks - scores[0].first) < doubtfulLead;
    }
    if (guess.form.separator == '\t') guess.form.quotes = !quotesAreLetters(head, guess.form);
    return guess;
}

}  // namespace zorvel
