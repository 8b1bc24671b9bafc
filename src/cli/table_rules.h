// The words that options and JSON have for how tables are read.
#pragma once

#include <array>
#include <cstddef>
#include <utility>

#include "tables/reading.h"

namespace zorvel::cli {

template <class T, std::size_t size>
using RuleNames = std::array<std::pair<const char*, T>, size>;

constexpr RuleNames<TableEncoding, 5> encodings = {{{"UTF-8", TableEncoding::utf8},
                                                    {"UTF-16LE", TableEncoding::utf16LittleEndian},
                                                    {"UTF-16BE", TableEncoding::utf16BigEndian},
                                                    {"Windows-1250", TableEncoding::windows1250},
                                                    {"Windows-1252", TableEncoding::windows1252}}};
constexpr RuleNames<TableLayout, 3> layouts = {{{"rows", TableLayout::censusRows},
                                                {"columns", TableLayout::speciesRows},
                                                {"long", TableLayout::records}}};
constexpr RuleNames<DateOrder, 2> dateOrders = {
    {{"dmy", DateOrder::dayFirst}, {"mdy", DateOrder::monthFirst}}};
constexpr RuleNames<MissingRule, 3> missingRules = {{{"zero", MissingRule::zero},
                                                     {"fault", MissingRule::problem},
                                                     {"leave-out", MissingRule::leaveOut}}};
constexpr RuleNames<FractionRule, 2> fractionRules = {
    {{"fault", FractionRule::problem}, {"round", FractionRule::round}}};
constexpr RuleNames<SameRule, 2> sameRules = {{{"apart", SameRule::apart}, {"sum", SameRule::sum}}};
constexpr RuleNames<UnnamedRule, 3> unnamedRules = {{{"fault", UnnamedRule::problem},
                                                     {"row", UnnamedRule::rowNumber},
                                                     {"above", UnnamedRule::above}}};
constexpr RuleNames<CountFault, 4> countFaults = {{{"fraction", CountFault::fraction},
                                                   {"negative", CountFault::negative},
                                                   {"large", CountFault::tooLarge},
                                                   {"text", CountFault::notANumber}}};

// Empty for a value that has no word.
template <class T, std::size_t size>
const char* ruleName(const RuleNames<T, size>& rules, T value) {
    for (const auto& [name, each] : rules) {
        if (each == value) return name;
    }
    return "";
}

}  // namespace zorvel::cli
