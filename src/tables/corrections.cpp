#include "tables/corrections.h"

#include <algorithm>

namespace zorvel {

namespace {

using ColumnRoles = std::map<std::size_t, ColumnRole>;

bool settledByRoles(TableDoubt doubt, const ColumnRoles& roles) {
    return std::any_of(roles.begin(), roles.end(), [doubt](const auto& each) {
        const ColumnRole role = each.second;
        if (doubt == TableDoubt::names)
            return role == ColumnRole::census || role == ColumnRole::species;
        if (doubt == TableDoubt::visits) return role == ColumnRole::ignored;
        return role == ColumnRole::count ||
               (doubt == TableDoubt::counts && role == ColumnRole::ignored);
    });
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

void applyCorrections(TableReading& reading, const TableCorrections& corrections) {
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
    take(reading.unnamed, corrections.unnamed);
}

bool settles(const TableCorrections& corrections, const TableGuess& guess, TableDoubt doubt) {
    switch (doubt) {
        case TableDoubt::separator:
            return corrections.choices.separator.has_value();
        case TableDoubt::layout:
            return corrections.choices.layout.has_value();
        case TableDoubt::names:
        case TableDoubt::counts:
        case TableDoubt::amounts:
            return settledByRoles(doubt, corrections.roles);
        case TableDoubt::numbers:
            return std::all_of(guess.unlikely.begin(), guess.unlikely.end(),
                               [&](auto column) { return corrections.roles.contains(column); });
        case TableDoubt::visits:
            return corrections.sameCensus || settledByRoles(doubt, corrections.roles);
        case TableDoubt::dateOrder:
            return corrections.dateOrder.has_value();
        case TableDoubt::thousandsMark:
            return corrections.thousandsMark || corrections.decimalMark;
    }
    return false;
}

}  // namespace zorvel
