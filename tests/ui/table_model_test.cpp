#include <gtest/gtest.h>

#include <QAbstractItemModelTester>
#include <QColor>
#include <QPalette>
#include <QPersistentModelIndex>
#include <QStyleOptionViewItem>
#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "store/object_context.h"
#include "ui/kit/look.h"
#include "ui/main/census_table_model.h"
#include "ui/main/name_matching.h"
#include "ui/main/species_table_model.h"
#include "ui/main/table_cells.h"

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

std::vector<double> shares(const SpeciesTableModel& model) {
    std::vector<double> shares;
    for (int row = 0; row < model.rowCount(); ++row) {
        shares.push_back(model.index(row, 2).data(SpeciesTableModel::shareRole).toDouble());
    }
    return shares;
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
    context.insertCensus(named("Core 10"), {{"a", 3, true}, {"b", 0, true}, {"c", 1, false}});
    context.insertCensus({}, {});
    context.insertCensus(named("Core 2"), {{std::nullopt, 1, true}, {std::nullopt, 2, true}});
    CensusTableModel model;
    QAbstractItemModelTester tester(&model, Mode::Fatal);
    model.setContext(context);
    EXPECT_EQ(column(model, 0), (Texts{"Core 10", "unnamed", "Core 2"}));
    EXPECT_EQ(column(model, 1), (Texts{"1", "0", "2"}));
    model.sort(0);
    EXPECT_EQ(column(model, 0), (Texts{"Core 2", "Core 10", "unnamed"}));
    model.sort(1, Qt::DescendingOrder);
    EXPECT_EQ(column(model, 1), (Texts{"2", "1", "0"}));
}

class SpeciesTableModelTest : public ::testing::Test {
  protected:
    void SetUp() override {
        const Census census = context.insertCensus(named("North"), {{"Quercus", 5, true},
                                                                    {"abies", 40, true},
                                                                    {"Betula", -2, true},
                                                                    {"Acer", 5, true},
                                                                    {std::nullopt, 7, false}});
        model.setContext(context);
        model.setCensus(census.block());
        observer = context.addObserver([this](const ChangeSet& changes) {
            if (changes.front().after) model.blockDidChange(changes.front().after);
        });
    }
    Census census() { return context.censuses().front(); }

    ObjectContext context;
    ObjectContext::ObserverId observer = 0;
    SpeciesTableModel model;
    QAbstractItemModelTester tester{&model, Mode::Fatal};
};

TEST_F(SpeciesTableModelTest, SortsByEachColumnAndKeepsTheProjectsOrderAmongEquals) {
    EXPECT_EQ(column(model, 1), (Texts{"Quercus", "abies", "Betula", "Acer", "unnamed"}));
    model.sort(1);
    EXPECT_EQ(column(model, 1), (Texts{"abies", "Acer", "Betula", "Quercus", "unnamed"}));
    const QPersistentModelIndex acer = model.index(1, 1);
    model.sort(2, Qt::DescendingOrder);
    EXPECT_EQ(column(model, 1), (Texts{"abies", "unnamed", "Quercus", "Acer", "Betula"}));
    model.sort(0);
    EXPECT_EQ(column(model, 1).front(), "unnamed");
    model.sort(-1);
    EXPECT_EQ(acer.data().toString(), "Acer");
    EXPECT_EQ(acer.row(), 3);
}

struct PaintedCells : TextFieldDelegate {
    PaintedCells() : TextFieldDelegate(nullptr, nullptr) {}
    // The colour of a cell, and of a cell that is not dimmed.
    std::pair<QColor, QColor> colors(const QModelIndex& cell, QPalette::ColorGroup group,
                                     QPalette::ColorRole role) const {
        QStyleOptionViewItem option;
        option.palette = lookPalette(ColorScheme::light);
        const QColor plain = option.palette.color(group, role);
        initStyleOption(&option, cell);
        return {option.palette.color(group, role), plain};
    }
};

// Name and abundance of an excluded species, and the text shown for a missing name.
TEST_F(SpeciesTableModelTest, WhatDoesNotCountIsDimmedOnSelectedRowsToo) {
    context.setInclude({census().taxa()[1]}, false);
    context.setName(census().taxa()[3], std::nullopt);
    context.announceChanges();
    const PaintedCells cells;
    for (int row = 0; row < model.rowCount(); ++row) {
        for (const int cell : {1, 2}) {
            const bool dimmed = row == 1 || row == 4 || (row == 3 && cell == 1);
            const std::pair<QPalette::ColorGroup, QPalette::ColorRole> looks[] = {
                {QPalette::Active, QPalette::Text},
                {QPalette::Active, QPalette::HighlightedText},
                {QPalette::Inactive, QPalette::HighlightedText}};
            for (const auto& [group, role] : looks) {
                const auto [color, plain] = cells.colors(model.index(row, cell), group, role);
                EXPECT_EQ(color != plain, dimmed) << row << ' ' << cell << ' ' << role;
            }
        }
    }
    EXPECT_EQ(model.totals().excluded, 2);
    EXPECT_EQ(model.totals().absent, 1);  // Betula
    context.deleteTaxa({census().taxa()[4]});
    context.setAbundance(census().taxa()[2], 1);
    context.announceChanges();
    EXPECT_EQ(model.totals().excluded, 1);
    EXPECT_EQ(model.totals().absent, 0);
}

TEST_F(SpeciesTableModelTest, AFilterAndAnOrderHoldTogether) {
    model.sort(1);
    model.setFilter("  A  ");
    EXPECT_EQ(column(model, 1), (Texts{"abies", "Acer", "Betula", "unnamed"}));
    model.sort(2, Qt::DescendingOrder);
    EXPECT_EQ(column(model, 1), (Texts{"abies", "unnamed", "Acer", "Betula"}));
    model.setFilter("quer");
    EXPECT_EQ(column(model, 1), Texts{"Quercus"});
    EXPECT_EQ(model.rowOf(model.idAt(0)), 0);
    model.setFilter("nothing");
    EXPECT_EQ(model.rowCount(), 0);
    model.setCensus(nullptr);
    model.setFilter("");
    EXPECT_EQ(model.rowCount(), 0);
}

TEST_F(SpeciesTableModelTest, ShowsWhatItWasToldOfUntilItIsToldAgain) {
    context.deleteCensuses({census()});
    EXPECT_EQ(column(model, 1).front(), "Quercus");
    EXPECT_FALSE(model.setData(model.index(0, 1), "Other", Qt::EditRole));
}

TEST_F(SpeciesTableModelTest, AnEditIsToldOfItsRowAloneAndMovesNothing) {
    model.sort(2, Qt::DescendingOrder);  // abies 40, unnamed 7, Quercus 5, Acer 5, Betula -2
    std::vector<std::pair<int, int>> told;
    QObject::connect(&model, &SpeciesTableModel::dataChanged,
                     [&](const QModelIndex& first, const QModelIndex& last) {
                         told.emplace_back(first.row(), last.row());
                     });
    EXPECT_TRUE(model.setData(model.index(2, 2), "30", Qt::EditRole));
    EXPECT_EQ(column(model, 2), (Texts{"40", "7", "30", "5", "-2"}));
    EXPECT_EQ(told, (std::vector<std::pair<int, int>>{{2, 2}}));
    // A new largest abundance changes every bar.
    EXPECT_TRUE(model.setData(model.index(0, 2), "10", Qt::EditRole));
    EXPECT_EQ(model.index(0, 2).data(SpeciesTableModel::shareRole).toDouble(), 1.0 / 3);
    EXPECT_EQ(told.back(), (std::pair<int, int>{0, 4}));
    // An unchanged or refused value is no edit.
    const std::uint64_t revision = context.revision();
    EXPECT_TRUE(model.setData(model.index(0, 2), "10", Qt::EditRole));
    EXPECT_TRUE(model.setData(model.index(1, 1), "", Qt::EditRole));
    EXPECT_FALSE(model.setData(model.index(0, 2), "1.5", Qt::EditRole));
    EXPECT_EQ(context.revision(), revision);
}

TEST_F(SpeciesTableModelTest, RowsComeAndGoWithTheirRecords) {
    model.setFilter("a");  // abies, Betula, Acer, unnamed
    const QPersistentModelIndex acer = model.index(2, 1);
    context.deleteTaxa({census().taxa()[1]});
    context.deleteTaxa({census().taxa()[0]});
    context.announceChanges();
    EXPECT_EQ(column(model, 1), (Texts{"Betula", "Acer", "unnamed"}));
    EXPECT_EQ(acer.data().toString(), "Acer");
    const Zorvel added = context.insertTaxon(census());
    context.setName(added, SharedText("Zzz"));
    context.announceChanges();
    EXPECT_EQ(column(model, 1), (Texts{"Betula", "Acer", "unnamed", "Zzz"}));
    for (int i = 0; i < 4; ++i) context.undo();
    context.announceChanges();
    // Quercus does not match, but it has just come back.
    EXPECT_EQ(column(model, 1), (Texts{"Quercus", "abies", "Betula", "Acer", "unnamed"}));
    EXPECT_EQ(acer.row(), 3);
    model.sort(1);
    context.redo();
    context.announceChanges();
    context.undo();
    context.announceChanges();
    EXPECT_EQ(column(model, 1), (Texts{"abies", "Acer", "Betula", "Quercus", "unnamed"}));
}

TEST_F(SpeciesTableModelTest, NeighboursThatComeBackGoToTheirPlaces) {
    const auto deleteAndUndo = [this] {
        context.deleteTaxa({census().taxa()[1], census().taxa()[2]});  // abies, Betula
        context.announceChanges();
        context.undo();
        context.announceChanges();
    };
    model.sort(2);
    deleteAndUndo();
    EXPECT_EQ(column(model, 1), (Texts{"Betula", "Quercus", "Acer", "unnamed", "abies"}));
    model.sort(-1);
    model.setFilter("acer");
    deleteAndUndo();
    model.setFilter("");
    EXPECT_EQ(column(model, 1), (Texts{"Quercus", "abies", "Betula", "Acer", "unnamed"}));
    model.sort(1);
    model.setFilter("acer");
    deleteAndUndo();
    EXPECT_EQ(column(model, 1), (Texts{"abies", "Acer", "Betula"}));
    model.setFilter("");
    EXPECT_EQ(column(model, 1), (Texts{"abies", "Acer", "Betula", "Quercus", "unnamed"}));
}

// The newest record comes back to its place too; one that is added stays at the end.
TEST_F(SpeciesTableModelTest, OnlyNewRecordsStandAtTheEndOfASortedTable) {
    const auto undo = [this] {
        context.undo();
        context.announceChanges();
    };
    for (const bool isNarrowed : {false, true}) {
        model.sort(1, Qt::DescendingOrder);
        model.setFilter(isNarrowed ? "acer" : "");
        context.deleteTaxa({census().taxa()[4]});
        context.announceChanges();
        context.insertTaxon(census());
        context.announceChanges();
        model.setFilter("");
        EXPECT_EQ(column(model, 1), (Texts{"Quercus", "Betula", "Acer", "abies", "unnamed"}));
        model.setFilter(isNarrowed ? "acer" : "");
        undo();
        undo();
        model.setFilter("");
        EXPECT_EQ(column(model, 1), (Texts{"unnamed", "Quercus", "Betula", "Acer", "abies"}));
    }
    // In another project they have lower identities.
    ObjectContext other;
    const Census first = other.insertCensus(named("South"), {{"Tilia", 1, true}});
    model.setContext(other);
    model.setCensus(first.block());
    other.insertTaxon(first);
    model.blockDidChange(first.block());
    EXPECT_EQ(column(model, 1), (Texts{"Tilia", "unnamed"}));
}

// Every way in which rows can change, against a new model of the same records.
TEST(TableModels, FollowRandomChangesAsANewModelShowsThem) {
    ObjectContext context;
    Census first = context.insertCensus(named("first"), {});
    CensusTableModel censuses;
    censuses.setContext(context);
    SpeciesTableModel species;
    species.setContext(context);
    QAbstractItemModelTester censusTester(&censuses, Mode::Fatal);
    QAbstractItemModelTester speciesTester(&species, Mode::Fatal);
    species.setCensus(first.block());
    context.addObserver([&](const ChangeSet& changes) {
        censuses.recordsDidChange(changes);
        for (const CensusChange& change : changes) {
            if (change.census == first.id()) species.blockDidChange(change.after);
        }
    });
    std::mt19937 random(5);
    for (int turn = 0; turn < 400; ++turn) {
        for (unsigned n = random() % 4; n > 0; --n) {
            const std::vector<Zorvel> taxa = first.taxa();
            const std::vector<Census> all = context.censuses();
            switch (random() % 8) {
                case 0:
                    context.insertTaxa(first, std::vector<TaxonValues>(random() % 300));
                    break;
                case 1:
                    if (!taxa.empty()) context.deleteTaxa({taxa[random() % taxa.size()]});
                    break;
                case 2:
                    if (!taxa.empty()) context.setAbundance(taxa[random() % taxa.size()], turn);
                    break;
                case 3:
                    context.insertCensus(named("n"), {{"a", 1, true}});
                    break;
                case 4:
                    if (all.size() > 1)
                        context.deleteCensuses({all[1 + random() % (all.size() - 1)]});
                    break;
                case 5:
                    context.undo();
                    break;
                case 6:
                    if (!taxa.empty()) {
                        context.setInclude({taxa[random() % taxa.size()]}, random() % 2 == 0);
                    }
                    break;
                default:
                    context.redo();
            }
            if (context.censusCount() == 0) context.redo();  // the insertion of the first stays
        }
        if (turn % 50 == 0) censuses.sort(static_cast<int>(random() % 3) - 1);
        context.announceChanges();
        if (turn % 10 != 0) continue;
        species.sort(-1);
        SpeciesTableModel anew;
        anew.setCensus(first.block());
        ASSERT_EQ(column(species, 2), column(anew, 2)) << turn;
        ASSERT_EQ(shares(species), shares(anew)) << turn;
        Texts shown = column(censuses, 1);
        CensusTableModel others;
        others.setContext(context);
        Texts expected = column(others, 1);
        std::sort(shown.begin(), shown.end());
        std::sort(expected.begin(), expected.end());
        ASSERT_EQ(shown, expected) << turn;
    }
}

}  // namespace
}  // namespace zorvel
