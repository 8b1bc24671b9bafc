// The words that options, JSON and settings have for how a table is read.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>
#include <utility>

#include "tables/reading.h"

namespace zorvel {

template <class T, std::size_t size>
using RuleNames = std::array<std::pair<const char*, T>, size>;

constexpr RuleNames<TableEncoding, 5> encodingNames = {
    {{"UTF-8", TableEncoding::utf8},
     {"UTF-16LE", TableEncoding::utf16LittleEndian},
     {"UTF-16BE", TableEncoding::utf16BigEndian},
     {"Windows-1250", TableEncoding::windows1250},
     {"Windows-1252", TableEncoding::windows1252}}};
constexpr RuleNames<TableLayout, 3> layoutNames = {{{"rows", TableLayout::censusRows},
                                                    {"columns", TableLayout::speciesRows},
                                                    {"long", TableLayout::records}}};
constexpr RuleNames<ColumnRole, 16> roleNames = {{{"census", ColumnRole::census},
                                                  {"species", ColumnRole::species},
                                                  {"genus", ColumnRole::genus},
                                                  {"count", ColumnRole::count},
                                                  {"date", ColumnRole::date},
                                                  {"year", ColumnRole::year},
                                                  {"month", ColumnRole::month},
                                                  {"day", ColumnRole::day},
                                                  {"notes", ColumnRole::notes},
                                                  {"latitude", ColumnRole::latitude},
                                                  {"longitude", ColumnRole::longitude},
                                                  {"status", ColumnRole::status},
                                                  {"stage", ColumnRole::stage},
                                                  {"total", ColumnRole::total},
                                                  {"included", ColumnRole::included},
                                                  {"ignored", ColumnRole::ignored}}};
constexpr RuleNames<DateOrder, 2> dateOrderNames = {
    {{"dmy", DateOrder::dayFirst}, {"mdy", DateOrder::monthFirst}}};
constexpr RuleNames<MissingRule, 3> missingRuleNames = {{{"zero", MissingRule::zero},
                                                         {"fault", MissingRule::problem},
                                                         {"leave-out", MissingRule::leaveOut}}};
constexpr RuleNames<FractionRule, 2> fractionRuleNames = {
    {{"fault", FractionRule::problem}, {"round", FractionRule::round}}};
constexpr RuleNames<SameRule, 2> sameRuleNames = {
    {{"apart", SameRule::apart}, {"sum", SameRule::sum}}};
constexpr RuleNames<UnnamedRule, 3> unnamedRuleNames = {{{"fault", UnnamedRule::problem},
                                                         {"row", UnnamedRule::rowNumber},
                                                         {"above", UnnamedRule::above}}};
constexpr RuleNames<CountFault, 4> countFaultNames = {{{"fraction", CountFault::fraction},
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

template <class T, std::size_t size>
std::optional<T> ruleNamed(const RuleNames<T, size>& rules, std::string_view name) {
    for (const auto& [known, value] : rules) {
        if (name == known) return value;
    }
    return std::nullopt;
}

}  // namespace zorvel
