#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QPersistentModelIndex>
#include <algorithm>
#include <string>
#include <vector>

#include "store/object_context.h"
#include "ui/main/census_table_model.h"
#include "ui/main/natural_order.h"
#include "ui/main/species_table_model.h"

namespace zorvel {
namespace {

using Mode = QAbstractItemModelTester::FailureReportingMode;
using Texts = std::vector<std::string>;

CensusAttributes named(const char* name) {
    CensusAttributes attributes;
    attributes.name = name;
    return attributes;
}

Texts column(const QAbstractItemModel& model, int number) {
    Texts texts;
    for (int row = 0; row < model.rowCount(); ++row) {
        texts.push_back(model.index(row, number).data().toString().toStdString());
    }
    return texts;
}

TEST(NaturalOrder, SortsAsPeopleExpect) {
    const Texts expected = {"",        "Abies",     "betula", "Core 1", "core 2",
                            "Core 10", "Core 010b", "Core x", "Zea",    "\xC3\x89picea"};
    Texts sorted(expected.rbegin(), expected.rend());
    std::stable_sort(sorted.begin(), sorted.end(), [](const std::string& a, const std::string& b) {
        return naturalKey(a) < naturalKey(b);
    });
    EXPECT_EQ(sorted, expected);
    // Numbers of any length, and composed and decomposed letters.
    EXPECT_LT(naturalKey("a" + std::string(200, '9')), naturalKey("a1" + std::string(200, '0')));
    EXPECT_EQ(naturalKey("\xC3\x89"), naturalKey("E\xCC\x81"));
}

TEST(CensusTableModel, CountsTheSpeciesThatArePresentAndIncluded) {
    ObjectContext context;
    CensusTableModel model(context);
    QAbstractItemModelTester tester(&model, Mode::Fatal);
    EXPECT_EQ(model.rowCount(), 0);
    context.insertCensus(named("Core 10"), {{"a", 3, true}, {"b", 0, true}, {"c", 1, false}});
    context.insertCensus({}, {});
    context.insertCensus(named("Core 2"), {{std::nullopt, 1, true}, {std::nullopt, 2, true}});
    model.reload();
    EXPECT_EQ(column(model, 0), (Texts{"Core 10", "unnamed", "Core 2"}));
    EXPECT_EQ(column(model, 1), (Texts{"1", "0", "2"}));
    model.sort(0);
    EXPECT_EQ(column(model, 0), (Texts{"Core 2", "Core 10", "unnamed"}));
    model.sort(1, Qt::DescendingOrder);
    EXPECT_EQ(column(model, 1), (Texts{"2", "1", "0"}));
    model.sort(-1);
    EXPECT_EQ(column(model, 0), (Texts{"Core 10", "unnamed", "Core 2"}));
    model.reload();
}

class SpeciesTableModelTest : public ::testing::Test {
  protected:
    void SetUp() override {
        const Census census = context.insertCensus(named("North"), {{"Quercus", 5, true},
                                                                    {"abies", 40, true},
                                                                    {"Betula", -2, true},
                                                                    {"Acer", 5, true},
                                                                    {std::nullopt, 7, false}});
        model.setCensus(census.block());
    }
    ObjectContext context;
    SpeciesTableModel model;
    QAbstractItemModelTester tester{&model, Mode::Fatal};
};

TEST_F(SpeciesTableModelTest, SortsByEachColumnAndKeepsTheProjectsOrderAmongEquals) {
    EXPECT_EQ(column(model, 1), (Texts{"Quercus", "abies", "Betula", "Acer", "unnamed"}));
    model.sort(1);
    EXPECT_EQ(column(model, 1), (Texts{"abies", "Acer", "Betula", "Quercus", "unnamed"}));
    model.sort(2);
    EXPECT_EQ(column(model, 1), (Texts{"Betula", "Quercus", "Acer", "unnamed", "abies"}));
    model.sort(2, Qt::DescendingOrder);
    EXPECT_EQ(column(model, 1), (Texts{"abies", "unnamed", "Quercus", "Acer", "Betula"}));
    model.sort(0);
    EXPECT_EQ(column(model, 1).front(), "unnamed");
}

TEST_F(SpeciesTableModelTest, PersistentIndexesFollowTheirRecord) {
    const QPersistentModelIndex acer = model.index(3, 1);
    for (const auto& [number, order] :
         {std::pair(1, Qt::AscendingOrder), std::pair(2, Qt::DescendingOrder),
          std::pair(-1, Qt::AscendingOrder)}) {
        model.sort(number, order);
        EXPECT_EQ(acer.data().toString(), "Acer") << number;
    }
    EXPECT_EQ(acer.row(), 3);
}

TEST_F(SpeciesTableModelTest, AFilterAndAnOrderHoldTogether) {
    model.sort(1);
    model.setFilter("  A  ");
    EXPECT_EQ(column(model, 1), (Texts{"abies", "Acer", "Betula", "unnamed"}));
    model.sort(2, Qt::DescendingOrder);
    EXPECT_EQ(column(model, 1), (Texts{"abies", "unnamed", "Acer", "Betula"}));
    model.setFilter("quer");
    EXPECT_EQ(column(model, 1), Texts{"Quercus"});
    EXPECT_EQ(model.rowOfTaxon(model.taxonAt(0)), 0);
    model.setFilter("nothing");
    EXPECT_EQ(model.rowCount(), 0);
    model.setCensus(nullptr);
    model.setFilter("");
    EXPECT_EQ(model.rowCount(), 0);
}

TEST_F(SpeciesTableModelTest, CellsCarryWhatIsPainted) {
    const auto share = [this](int row) {
        return model.index(row, 2).data(SpeciesTableModel::shareRole).toDouble();
    };
    EXPECT_EQ(share(0), 0.125);
    EXPECT_EQ(share(1), 1.0);
    EXPECT_EQ(share(2), 0.0);
    EXPECT_EQ(model.index(3, 0).data(Qt::CheckStateRole).toInt(), Qt::Checked);
    EXPECT_EQ(model.index(4, 0).data(Qt::CheckStateRole).toInt(), Qt::Unchecked);
    EXPECT_FALSE(model.flags(model.index(0, 0)) & (Qt::ItemIsUserCheckable | Qt::ItemIsEditable));
}

TEST_F(SpeciesTableModelTest, ShowsWhatItWasGivenWhileTheRecordsChange) {
    context.deleteCensus(context.censuses().front());
    EXPECT_EQ(column(model, 1).front(), "Quercus");
}

}  // namespace
}  // namespace zorvel
