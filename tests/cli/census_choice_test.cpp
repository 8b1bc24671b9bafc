#include "cli/census_choice.h"

#include <gtest/gtest.h>

namespace zorvel::test {
namespace {

using cli::chooseCensus;

TEST(CensusChoice, TakesTheFirstOfTheName) {
    const NameList names = {"North", "South", "Cafe\u0301", "South", ""};
    EXPECT_EQ(chooseCensus(names, std::nullopt).value(), 0U);
    EXPECT_EQ(chooseCensus(names, "South").value(), 1U);
    EXPECT_EQ(chooseCensus(names, "Caf\u00e9").value(), 2U);
    EXPECT_EQ(chooseCensus(names, "").value(), 4U);
}

TEST(CensusChoice, TellsWhatElseThereIs) {
    const NameList few = {"North", "South"};
    const NameList many = {"Core 1", "Core 2", "Core 10", "Core 12", "Core 3", "Core 4", "Pit"};
    struct Row {
        NameList names;
        std::string wanted;
        std::string message;
    };
    const std::vector<Row> rows = {
        {few, "north", "no census is called 'north'; close to it: 'North'"},
        {few, "Nort", "no census is called 'Nort'; close to it: 'North'"},
        {few, "outh", "no census is called 'outh'; close to it: 'South'"},
        {few, "", "no census is called ''; the censuses are 'North', 'South'"},
        {few, "Moor", "no census is called 'Moor'; the censuses are 'North', 'South'"},
        {many, "Core1", "no census is called 'Core1'; close to it: 'Core 1'"},
        {many, "core 11",
         "no census is called 'core 11'; close to it: 'Core 1', 'Core 10', 'Core 12', 'Core 2', "
         "'Core 3'"},
        {many, "Moor",
         "no census is called 'Moor'; the censuses are 'Core 1', 'Core 2', 'Core 10', 'Core 12', "
         "'Core 3' and 2 more"},
        {many, std::string(1'000'000, 'x'),
         "no census is called '" + std::string(1'000'000, 'x') +
             "'; the censuses are 'Core 1', 'Core 2', 'Core 10', 'Core 12', 'Core 3' and 2 more"},
    };
    for (const Row& row : rows) {
        const Result<std::size_t> chosen = chooseCensus(row.names, row.wanted);
        ASSERT_FALSE(chosen.ok()) << row.message;
        EXPECT_EQ(chosen.problem().message, row.message);
    }
}

}  // namespace
}  // namespace zorvel::test
