#include <QHeaderView>
#include <QLineEdit>
#include <QPointer>
#include <QProcess>

#include "ui/key_presses.h"
#include "ui/kit/message_strip.h"
#include "ui/main/ordered_table_model.h"

namespace zorvel {
namespace {

class KeyboardTest : public KeyPressTest {
  protected:
    void openTrees() {
        open(write("trees.csv", ",Abies,Betula,Larix\nNorth,3,14,2\nSouth,5,6,1\n"));
        ASSERT_TRUE(waitUntil([this] { return window->isActiveWindow(); }));
        ASSERT_EQ(records().size(), 8u);
    }
    void edit(RecordTableView& table, int row, int column) {
        table.beginEditing(table.model()->index(row, column));
        ASSERT_NE(field(), nullptr);
    }
    // The project gets a file of its own.
    void save() {
        savePanel.answer = folder.filePath("typed.zorvel");
        trigger("saveDocument");
        ASSERT_TRUE(waitUntil([this] { return !window->document().isUntitled(); }));
    }
    // What the command-line tool prints of that file.
    std::string printedRecords() {
        EXPECT_TRUE(waitUntilSaved());
        QProcess tool;
        tool.start(ZORVEL_CLI, {"records", savePanel.answer});
        EXPECT_TRUE(tool.waitForFinished());
        EXPECT_EQ(tool.exitCode(), 0) << tool.readAllStandardError().toStdString();
        return tool.readAllStandardOutput().toStdString();
    }
    std::int64_t abundance(std::size_t place) { return census(0).taxa().at(place).abundance(); }
};

TEST_F(KeyboardTest, AProjectIsTypedUndoneToNothingAndDoneAgain) {
    ASSERT_TRUE(waitUntil([this] { return window->isActiveWindow(); }));
    save();
    const std::string nothing = printedRecords();
    std::vector<std::string> expected;
    for (int plot = 1; plot <= 5; ++plot) {
        const std::string name = "Plot " + std::to_string(plot);
        expected.push_back(name);
        press(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
        typeText(name.c_str());
        press(Qt::Key_Return);
        press(Qt::Key_E, Qt::ControlModifier);
        int individuals = 0;
        for (int i = 0; i < 10; ++i) {
            const std::string species = std::string(1, static_cast<char>('K' - i)) + "us minor";
            const int count = plot * 10 + i;
            expected.push_back(species + "," + std::to_string(count));
            individuals += count;
            typeText(species.c_str());
            press(Qt::Key_Tab);
            typeText(std::to_string(count).c_str());
            press(i < 9 ? Qt::Key_Tab : Qt::Key_Return);
            EXPECT_EQ(text("individuals"), std::to_string(individuals));
        }
        EXPECT_EQ(label("metricsHeading"), name);
        EXPECT_EQ(text("richness"), "10");
    }
    EXPECT_EQ(records(), expected);
    const std::string typed = printedRecords();
    ASSERT_NE(typed, nothing);
    ASSERT_TRUE(waitForJobs());
    const std::string chao = text("chaoOne");
    int steps = 0;
    for (; context().canUndo() && steps < 1000; ++steps) press(QKeySequence::Undo);
    EXPECT_EQ(steps, 5 * 2 + 50 * 3);
    EXPECT_EQ(printedRecords(), nothing);
    for (; context().canRedo() && steps > 0; --steps) {
        press(QKeySequence::Redo);
    }
    EXPECT_EQ(printedRecords(), typed);
    EXPECT_EQ(text("chaoOne"), chao);
    EXPECT_EQ(label("metricsHeading"), "Plot 5");
}

TEST_F(KeyboardTest, UndoIsTheFieldsOwnWhileThereIsTypingInIt) {
    openTrees();
    press(Qt::Key_E, Qt::ControlModifier);
    ASSERT_EQ(census(0).taxa().size(), 4u);
    typeText("Q");
    press(QKeySequence::Undo);
    ASSERT_NE(field(), nullptr);
    EXPECT_EQ(field()->text(), "");
    press(QKeySequence::Undo);  // once too often
    EXPECT_EQ(census(0).taxa().size(), 4u);
    press(QKeySequence::Redo);
    ASSERT_NE(field(), nullptr);
    EXPECT_EQ(field()->text(), "Q");
    press(Qt::Key_Escape);
    edit(speciesTable(), 3, SpeciesTableView::kNameColumn);
    press(QKeySequence::Undo);
    EXPECT_EQ(field(), nullptr);
    EXPECT_EQ(census(0).taxa().size(), 3u);
    press(QKeySequence::Redo);
    EXPECT_EQ(census(0).taxa().size(), 4u);
}

TEST_F(KeyboardTest, ABurstOfKeysLosesNone) {
    openTrees();
    press(Qt::Key_E, Qt::ControlModifier);
    std::string keys;
    std::vector<std::string> expected;
    for (int i = 0; i < 50; ++i) {
        const std::string name = "Sp" + std::string(1, static_cast<char>('a' + i % 26)) +
                                 std::string(1, static_cast<char>('a' + i / 26));
        keys += name + '\t' + std::to_string(i * 37) + (i < 49 ? "\t" : "\r");
        expected.push_back(name + "," + std::to_string(i * 37));
    }
    typeText(keys.c_str());
    const std::vector<std::string> all = records();
    EXPECT_EQ(std::vector<std::string>(all.begin() + 4, all.end() - 4), expected);
    EXPECT_EQ(field(), nullptr);
}

TEST_F(KeyboardTest, KeysGoFromCellToCell) {
    openTrees();
    using Cell = std::pair<int, int>;
    constexpr Cell none = {-1, -1};
    const struct {
        Cell from;
        Qt::Key key;
        Cell to;
        TextMovement movement;
    } moves[] = {
        {{0, 1}, Qt::Key_Tab, {0, 2}, TextMovement::tab},
        {{0, 2}, Qt::Key_Tab, {1, 1}, TextMovement::tab},
        {{1, 1}, Qt::Key_Backtab, {0, 2}, TextMovement::backtab},
        {{0, 2}, Qt::Key_Backtab, {0, 1}, TextMovement::backtab},
        {{0, 1}, Qt::Key_Backtab, none, TextMovement::backtab},
        {{0, 1}, Qt::Key_Down, {1, 1}, TextMovement::down},
        {{2, 2}, Qt::Key_Up, {1, 2}, TextMovement::up},
        {{0, 2}, Qt::Key_Up, none, TextMovement::up},
        {{2, 2}, Qt::Key_Down, none, TextMovement::down},
        {{1, 1}, Qt::Key_Return, none, TextMovement::returnKey},
        {{1, 2}, Qt::Key_Escape, none, TextMovement::cancel},
    };
    for (const auto& move : moves) {
        edit(speciesTable(), move.from.first, move.from.second);
        QString ended;
        TextMovement how = TextMovement::other;
        QObject::connect(qobject_cast<SpeciesTableTextField*>(field()),
                         &SpeciesTableTextField::speciesTableTextFieldDidEndEditing, window,
                         [&](TextMovement movement, const QString& identifier) {
                             how = movement;
                             ended = identifier;
                         });
        press(move.key);
        EXPECT_EQ(editedCell(speciesTable()), move.to) << move.from.first << move.from.second;
        EXPECT_EQ(how, move.movement);
        EXPECT_EQ(ended, move.from.second == 1 ? "name" : "abundance");
        if (field() != nullptr) {
            EXPECT_EQ(field()->selectedText(), field()->text());
            EXPECT_EQ(speciesTable().selectedRows(), std::vector<int>{move.to.first});
        } else {
            EXPECT_TRUE(speciesTable().hasFocus());
        }
    }
    EXPECT_FALSE(context().canUndo());
}

TEST_F(KeyboardTest, HomeAndEndGoToTheFirstAndTheLastRow) {
    openTrees();
    RecordTableView& table = speciesTable();
    table.setFocus();
    table.selectRows({1});
    press(Qt::Key_End);
    EXPECT_EQ(table.selectedRows(), std::vector<int>{2});
    press(Qt::Key_Home, Qt::ShiftModifier);
    EXPECT_EQ(table.selectedRows(), (std::vector<int>{0, 1, 2}));
}

TEST_F(KeyboardTest, CensusNamesGoToTheNextCensusAndToANewOne) {
    openTrees();
    edit(censusTable(), 0, 0);
    press(Qt::Key_Tab);
    EXPECT_EQ(editedCell(censusTable()), std::pair(1, 0));
    EXPECT_EQ(label("speciesHeading"), "Species of South");
    press(Qt::Key_Backtab);
    EXPECT_EQ(editedCell(censusTable()), std::pair(0, 0));
    press(Qt::Key_Down);
    press(Qt::Key_Tab);
    ASSERT_EQ(context().censusCount(), 3u);
    EXPECT_EQ(editedCell(censusTable()), std::pair(2, 0));
    typeText("West");
    press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(editedCell(censusTable()), std::pair(3, 0));
    EXPECT_EQ(census(2).name()->str(), "West");
    press(Qt::Key_Escape);
    EXPECT_EQ(context().censusCount(), 4u);
}

TEST_F(KeyboardTest, ANewRowIsSelectedWhateverKeysAreHeld) {
    openTrees();
    press(Qt::Key_E, Qt::ControlModifier);
    EXPECT_EQ(speciesTable().selectedRows(), std::vector<int>{3});
    press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(speciesTable().selectedRows(), std::vector<int>{4});
    press(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(censusTable().selectedRows(), std::vector<int>{2});
}

TEST_F(KeyboardTest, ANameNeverTypedIsShownAsAbsentAndGoesWithOneUndo) {
    openTrees();
    const std::vector<std::string> before = records();
    const auto isDimmed = [](RecordTableView& table, int row, int column) {
        return table.model()->index(row, column).data(OrderedTableModel::dimmedRole).toBool();
    };
    for (const Qt::Key end : {Qt::Key_Escape, Qt::Key_Return}) {
        press(Qt::Key_E, Qt::ControlModifier);
        press(end);
        EXPECT_TRUE(isDimmed(speciesTable(), 3, 1));
        EXPECT_FALSE(isDimmed(speciesTable(), 2, 1));
        press(QKeySequence::Undo);
        EXPECT_EQ(records(), before);
        press(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
        press(end);
        EXPECT_TRUE(isDimmed(censusTable(), 2, 0));
        EXPECT_EQ(label("speciesHeading"), "Species of an unnamed census");
        EXPECT_EQ(label("metricsHeading"), "Unnamed census");
        press(QKeySequence::Undo);
        EXPECT_EQ(records(), before);
        censusTable().selectRows({0});
    }
}

TEST_F(KeyboardTest, TabAddsToTheProjectOfItsOwnTable) {
    openTrees();
    MainWindowController& other = windows->openUntitled();
    ASSERT_TRUE(waitUntil([&] { return other.isActiveWindow(); }));
    speciesTable().beginEditing(speciesTable().model()->index(2, 2));
    QTest::keyClick(speciesTable().openEditor(), Qt::Key_Tab);
    EXPECT_EQ(census(0).taxonCount(), 4u);
    EXPECT_EQ(other.document().project().objectContext().censusCount(), 0u);
}

TEST_F(KeyboardTest, AnAbundanceThatCannotBeStoredKeepsItsCell) {
    openTrees();
    edit(speciesTable(), 2, 2);
    TableTextField* const refused = field();
    typeText("1x\t");
    EXPECT_EQ(field(), refused);
    EXPECT_FALSE(refused->accessibleDescription().isEmpty());
    press(Qt::Key_Down);
    press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(field(), refused);
    EXPECT_EQ(census(0).taxonCount(), 3u);
    press(Qt::Key_Backspace);
    EXPECT_TRUE(refused->accessibleDescription().isEmpty());
    typeText("9\t");
    EXPECT_EQ(abundance(2), 19);
    EXPECT_EQ(census(0).taxonCount(), 4u);
}

TEST_F(KeyboardTest, TypingOnARowOpensItsCell) {
    openTrees();
    const struct {
        const char* keys;
        const char* line;
    } cases[] = {{"Quercus\r", "Quercus,14"}, {"70\r", "Quercus,70"}, {" ", "Quercus,70,out"}};
    for (const auto& each : cases) {
        speciesTable().selectRows({1});
        speciesTable().setFocus();
        typeText(each.keys);
        EXPECT_EQ(records().at(2), each.line);
    }
    press(Qt::Key_J, Qt::AltModifier);
    EXPECT_EQ(field(), nullptr);
    speciesTable().setCurrentIndex(speciesTable().model()->index(1, 0));
    press(Qt::Key_F2);
    EXPECT_EQ(editedCell(speciesTable()), std::pair(1, 1));
    press(Qt::Key_Escape);
    press(Qt::Key_Insert);
    EXPECT_EQ(editedCell(speciesTable()), std::pair(3, 1));
    typeText("Picea");
    press(Qt::Key_Insert);
    EXPECT_EQ(editedCell(speciesTable()), std::pair(4, 1));
    EXPECT_EQ(taxonName(3), "Picea");
    typeText("Pinus");
    press(Qt::Key_E, Qt::ControlModifier);
    EXPECT_EQ(editedCell(speciesTable()), std::pair(5, 1));
    EXPECT_EQ(taxonName(4), "Pinus");
    press(Qt::Key_Escape);
    speciesTable().clearSelection();
    typeText("x");  // no row is meant
    EXPECT_EQ(field(), nullptr);
    censusTable().selectRows({1});
    censusTable().setFocus();
    typeText("2nd plot\r");
    EXPECT_EQ(census(1).name()->str(), "2nd plot");
}

TEST_F(KeyboardTest, ANewRowStandsLastWhateverTheOrderAndTheSearch) {
    openTrees();
    speciesTable().sortByColumn(1, Qt::DescendingOrder);
    child<QLineEdit>("searchBar").setText("b");  // Betula, Abies
    ASSERT_EQ(speciesTable().model()->rowCount(), 2);
    speciesTable().setFocus();
    press(Qt::Key_Insert);
    ASSERT_EQ(editedCell(speciesTable()), std::pair(2, 1));
    typeText("Zea\t");
    EXPECT_EQ(editedCell(speciesTable()), std::pair(2, 2));
    typeText("4\r");
    EXPECT_EQ(cell(speciesTable(), 2, 1), "Zea");  // an edit neither sorts nor hides
    child<QLineEdit>("searchBar").clear();
    speciesTable().sortByColumn(1, Qt::DescendingOrder);
    EXPECT_EQ(cell(speciesTable(), 0, 1), "Zea");
    EXPECT_EQ(abundance(3), 4);
}

TEST_F(KeyboardTest, WhatIsTypedIsStoredBeforeItsTableShowsSomethingElse) {
    openTrees();
    edit(speciesTable(), 0, 2);
    typeText("8");
    censusTable().selectRows({1});
    EXPECT_EQ(field(), nullptr);
    EXPECT_EQ(records(), (std::vector<std::string>{"North", "Abies,8", "Betula,14", "Larix,2",
                                                   "South", "Abies,5", "Betula,6", "Larix,1"}));
    censusTable().selectRows({0});
    edit(speciesTable(), 2, 1);
    typeText("Aaa");
    child<QLineEdit>("searchBar").setText("Betula");
    EXPECT_EQ(taxonName(2), "Aaa");
    child<QLineEdit>("searchBar").clear();
    edit(speciesTable(), 2, 1);
    typeText("Zzz");
    const QHeaderView& header = *speciesTable().horizontalHeader();
    QTest::mouseClick(header.viewport(), Qt::LeftButton, {},
                      QPoint(header.sectionViewportPosition(1) + 20, header.height() / 2));
    EXPECT_EQ(field(), nullptr);
    EXPECT_EQ(taxonName(2), "Zzz");
    // So many rows between the others that the table is made anew.
    edit(speciesTable(), 0, 2);
    typeText("77");
    context().insertTaxa(census(0), std::vector<TaxonValues>(500));
    context().announceChanges();
    context().announceChanges();
    EXPECT_EQ(abundance(0), 77);
}

TEST_F(KeyboardTest, AnEditorWhoseRecordIsUndoneClosesAndStoresNowhere) {
    openTrees();
    press(Qt::Key_E, Qt::ControlModifier);
    typeText("Picea\t12");
    context().undo();  // the name
    context().undo();  // the row
    context().announceChanges();
    EXPECT_EQ(field(), nullptr);
    EXPECT_EQ(records().size(), 8u);
    EXPECT_EQ(abundance(2), 2);
    press(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
    typeText("West");
    context().undo();
    context().announceChanges();
    EXPECT_EQ(field(), nullptr);
    EXPECT_EQ(records().size(), 8u);
    EXPECT_EQ(census(1).name()->str(), "South");
}

TEST_F(KeyboardTest, ClosingTheProjectStoresWhatIsTyped) {
    openTrees();
    edit(speciesTable(), 0, 1);
    typeText("Abies alba");
    savePanel.answer = folder.filePath("kept.zorvel");
    trigger("saveDocument");
    ASSERT_TRUE(waitUntilSaved());
    edit(speciesTable(), 0, 2);
    typeText("123");
    const QPointer<MainWindowController> gone(window);
    windows->openUntitled();
    ASSERT_TRUE(window->close());
    ASSERT_TRUE(waitUntil([&] { return gone.isNull(); }));
    window = windows->windows().front();
    open(savePanel.answer);
    window = windows->windows().back();
    EXPECT_EQ(records().at(1), "Abies alba,123");
}

TEST_F(KeyboardTest, TabWithoutAnEditorGoesFromPartToPart) {
    openTrees();
    censusTable().setFocus();
    QList<QWidget*> visited;
    for (int i = 0; i < 60 && !(i > 0 && censusTable().hasFocus()); ++i) {
        press(Qt::Key_Tab);
        visited.append(QApplication::focusWidget());
    }
    EXPECT_TRUE(censusTable().hasFocus());
    for (QWidget* part : {static_cast<QWidget*>(&speciesTable()),
                          static_cast<QWidget*>(&child<QLineEdit>("searchBar")),
                          static_cast<QWidget*>(&value("richness"))}) {
        EXPECT_TRUE(visited.contains(part)) << part->objectName().toStdString();
    }
    EXPECT_FALSE(context().canUndo());
}

}  // namespace
}  // namespace zorvel
