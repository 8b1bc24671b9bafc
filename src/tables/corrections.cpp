#include "tables/corrections.h"

#include <algorithm>

namespace zorvel {

namespace {

using ColumnRoles = std::map<std::size_t, ColumnRole>;

template <class Is>
bool anyRole(const ColumnRoles& roles, const Is& is) {
    return std::any_of(roles.begin(), roles.end(),
                       [&is](const auto& each) { return is(each.first, each.second); });
}

bool allHaveRoles(const ColumnRoles& roles, const std::vector<std::size_t>& columns) {
    return std::all_of(columns.begin(), columns.end(),
                       [&roles](auto column) { return roles.contains(column); });
}

bool isDatePart(ColumnRole role) {
    return role == ColumnRole::date || role == ColumnRole::year || role == ColumnRole::month ||
           role == ColumnRole::day;
}

// Whether they answer the question of the guess: each has answers of its own.
bool settles(const TableCorrections& corrections, const TableGuess& guess, TableDoubt doubt) {
    const ColumnRoles& roles = corrections.roles;
    const TableReading& reading = guess.reading;
    switch (doubt) {
        case TableDoubt::separator:
            return corrections.choices.separator.has_value();
        case TableDoubt::layout:
            return corrections.choices.layout.has_value();
        case TableDoubt::names:
            return anyRole(roles, [](std::size_t /*column*/, ColumnRole role) {
                return role == ColumnRole::census || role == ColumnRole::species;
            });
        case TableDoubt::counts:
            return anyRole(roles, [&reading](std::size_t column, ColumnRole role) {
                return role == ColumnRole::count || reading.role(column) == ColumnRole::count;
            });
        case TableDoubt::stages:
            return corrections.sameStages.has_value();
        case TableDoubt::numbers:
            return allHaveRoles(roles, guess.unlikely);
        case TableDoubt::amounts:
            return allHaveRoles(roles, reading.columnsOf(ColumnRole::count)) ||
                   anyRole(roles, [&guess](std::size_t column, ColumnRole role) {
                       return role == ColumnRole::count &&
                              !std::binary_search(guess.unlikely.begin(), guess.unlikely.end(),
                                                  column);
                   });
        case TableDoubt::visits:
            return corrections.sameCensus ||
                   anyRole(roles, [&reading](std::size_t column, ColumnRole role) {
                       return isDatePart(reading.role(column)) && !isDatePart(role);
                   });
        case TableDoubt::dateOrder:
            return corrections.dateOrder.has_value();
        case TableDoubt::thousandsMark:
            return corrections.thousandsMark || corrections.decimalMark;
    }
    return false;
}

void setRoles(TableReading& reading, const ColumnRoles& roles) {
    const bool wide = reading.layout != TableLayout::records;
    const auto isShared = [wide](ColumnRole role) {
        return role == ColumnRole::total || role == ColumnRole::stage ||
               role == ColumnRole::ignored || (role == ColumnRole::count && wide);
    };
    const auto isJoined = [](ColumnRole role) {
        return role == ColumnRole::census || role == ColumnRole::count;
    };
    for (const auto& [column, role] : roles) {
        if (column >= reading.columns.size())
            reading.columns.resize(column + 1, ColumnRole::ignored);
        for (std::size_t other = 0; other < reading.columns.size() && !isShared(role); ++other) {
            const auto named = roles.find(other);
            const bool stays = isJoined(role) && named != roles.end() && named->second == role;
            if (reading.columns[other] == role && !stays)
                reading.columns[other] = ColumnRole::ignored;
        }
        reading.columns[column] = role;
    }
}

}  // namespace

void applyCorrections(TableGuess& guess, const TableCorrections& corrections) {
    std::erase_if(guess.doubts, [&](auto doubt) { return settles(corrections, guess, doubt); });
    TableReading& reading = guess.reading;
    const auto take = [](auto& value, const auto& corrected) {
        if (corrected) value = *corrected;
    };
    setRoles(reading, corrections.roles);
    reading.leftOutRows = corrections.leftOutRows;
    reading.takenAsZero = corrections.takenAsZero;
    take(reading.decimalMark, corrections.decimalMark);
    take(reading.thousandsMark, corrections.thousandsMark);
    if (reading.thousandsMark == reading.decimalMark) reading.thousandsMark = 0;
    take(reading.dateOrder, corrections.dateOrder);
    take(reading.presence, corrections.presence);
    take(reading.missing, corrections.missing);
    take(reading.fractions, corrections.fractions);
    take(reading.sameSpecies, corrections.sameSpecies);
    take(reading.sameCensus, corrections.sameCensus);
    take(reading.sameStages, corrections.sameStages);
    take(reading.unnamed, corrections.unnamed);
}

void dropIdleDoubts(std::vector<TableDoubt>& doubts, const TableNotices& notices) {
    if (notices.stageColumns.empty()) std::erase(doubts, TableDoubt::stages);
}

}  // namespace zorvel
