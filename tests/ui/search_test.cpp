// Searching the species of a census: what is found, and the keys of the field.
#include <QLineEdit>

#include "ui/main/name_matching.h"
#include "ui/main/species_table_model.h"
#include "ui/window_fixture.h"

namespace zorvel {
namespace {

TEST(FoldedForSearch, CaseAndAccentsAside) {
    const struct {
        const char* name;
        const char* typed;
        bool found;
    } rows[] = {
        {"Abies alba", "ES AL", true},
        {"Abies alba", "abies  alba", false},
        {"\u00C9chinops", "echinops", true},
        {"E\u0301chinops", "\u00E9CH", true},
        {"echinops", "\u00C9chinops", true},
        {"Malm\u00F6", "malmo", true},
        {"Sm\u00F8rbukk", "smor", true},
        {"Stra\u00DFe", "STRASSE", true},
        {"\u0141omza", "lom", true},
        {"\u0152dicnemus", "oedi", true},
        {"\uFB01cus", "fic", true},
        {"\u0391\u03B2\u03AE\u03C2", "\u03B1\u03B2\u03B7\u03C3", true},
        {"\u0419\u043E\u0434", "\u0438\u043E", true},
        {"\uC804\uB098\uBB34", "\uC804\uB098", true},
        {"\u675C\u9D51", "\u9D51", true},
        {"\U0001F332 fir", "\U0001F332 F", true},
        {"Abies", "z", false},
        {"\xFF\xFE raw", "RAW", true},
    };
    for (const auto& row : rows) {
        NameSearch search;
        const SharedText name(row.name);
        const std::string folded = foldedForSearch(row.typed);
        EXPECT_EQ(search.contains(name, folded), row.found) << row.name << " / " << row.typed;
        EXPECT_EQ(search.contains(name, folded), row.found) << "again " << row.name;
    }
}

class SearchTest : public WindowTest {
  protected:
    void SetUp() override {
        WindowTest::SetUp();
        open(write("trees.csv",
                   ",Larix decidua,Abies alba,Betula pendula,Abies lasiocarpa\nNorth,3,4,5,6\n"));
    }
    QLineEdit& search() { return child<QLineEdit>("searchBar"); }
    std::vector<std::string> shown() {
        std::vector<std::string> names;
        for (int row = 0; row < speciesTable().model()->rowCount(); ++row) {
            names.push_back(cell(speciesTable(), row, 1));
        }
        return names;
    }
    using Names = std::vector<std::string>;
};

TEST_F(SearchTest, TheKeysOfTheField) {
    trigger("find");
    EXPECT_EQ(window->focusWidget(), &search());
    QTest::keyClicks(&search(), "abies");
    EXPECT_EQ(label("speciesCountLabel"), "2 of 4 species shown");
    QTest::keyClick(&search(), Qt::Key_Down);
    EXPECT_EQ(window->focusWidget(), &speciesTable());
    EXPECT_EQ(speciesTable().selectedRows(), std::vector<int>{0});
    trigger("find");
    QTest::keyClick(&search(), Qt::Key_Escape);
    EXPECT_EQ(search().text(), "");
    EXPECT_EQ(shown().size(), 4U);
    EXPECT_EQ(window->focusWidget(), &search());
    QTest::keyClick(&search(), Qt::Key_Escape);
    EXPECT_EQ(window->focusWidget(), &speciesTable());
}

TEST_F(SearchTest, TheOrderOfTheTableIsKept) {
    speciesTable().sortByColumn(1, Qt::DescendingOrder);
    search().setText("a");
    const Names sorted = {"Larix decidua", "Betula pendula", "Abies lasiocarpa", "Abies alba"};
    EXPECT_EQ(shown(), sorted);
    search().setText("la");
    EXPECT_EQ(shown(), (Names{"Larix decidua", "Betula pendula", "Abies lasiocarpa"}));
    // Another order while some are hidden holds for those too.
    speciesTable().sortByColumn(2, Qt::AscendingOrder);
    EXPECT_EQ(shown(), (Names{"Larix decidua", "Betula pendula", "Abies lasiocarpa"}));
    search().clear();
    EXPECT_EQ(shown(),
              (Names{"Larix decidua", "Abies alba", "Betula pendula", "Abies lasiocarpa"}));
}

TEST_F(SearchTest, RecordsComeAndGoWhileSomeAreHidden) {
    search().setText("abies");
    const Census census = context().censuses().at(0);
    context().deleteTaxa({census.taxa()[0]});  // hidden
    context().deleteTaxa({census.taxa()[0]});  // shown
    context().insertTaxa(census, {{"Quercus", 1}});
    context().announceChanges();
    EXPECT_EQ(shown(), (Names{"Abies lasiocarpa", "Quercus"}));
    context().setName(census.taxa()[0], SharedText("Alnus"));
    context().announceChanges();
    EXPECT_EQ(shown(), (Names{"Abies lasiocarpa", "Quercus"}));
    search().setText("a");
    EXPECT_EQ(shown(), (Names{"Alnus", "Abies lasiocarpa"}));
    search().clear();
    EXPECT_EQ(shown(), (Names{"Alnus", "Abies lasiocarpa", "Quercus"}));
    window->mainView().undo();
    EXPECT_EQ(cell(speciesTable(), 0, 1), "Betula pendula");
}

// Each would be a range of its own, over which a view takes seconds.
TEST_F(SearchTest, ThousandsOfSelectedHitsDoNotStopTheWindowWhenTheSearchEnds) {
    std::vector<TaxonValues> taxa;
    for (int i = 0; i < 3000; ++i) taxa.insert(taxa.end(), {{"Abies", 1}, {"Fagus", 1}});
    context().insertCensus({"Forest", 0, 0, std::nullopt, std::nullopt}, taxa);
    context().announceChanges();
    censusTable().selectRows({1});
    search().setText("fagus");
    speciesTable().selectAll();
    EXPECT_EQ(speciesTable().selectedRows().size(), 3000U);
    search().clear();
    EXPECT_EQ(speciesTable().selectedRows(), std::vector<int>{1});
}

TEST_F(SearchTest, ACensusIsSearchedFromTheMomentItIsSelected) {
    context().insertCensus({"South", 0, 0, std::nullopt, std::nullopt},
                           {{"Abies nordmanniana", 1}, {"Fagus", 2}});
    context().announceChanges();
    search().setText("abies");
    censusTable().selectRows({1});
    EXPECT_EQ(shown(), Names{"Abies nordmanniana"});
    search().clear();
    EXPECT_EQ(shown().size(), 2U);
}

}  // namespace
}  // namespace zorvel
