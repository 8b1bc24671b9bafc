// What a user does by keyboard alone: typing a project, going from cell to cell, completion of
// species names.
#include <QClipboard>
#include <QHeaderView>
#include <QInputMethodEvent>
#include <QLineEdit>
#include <QProcess>

#include "ui/main/ordered_table_model.h"
#include "ui/window_fixture.h"

namespace zorvel {
namespace {

class KeyboardTest : public WindowTest {
  protected:
    // The field that has the focus; null if none has.
    TableTextField* field() { return qobject_cast<TableTextField*>(QApplication::focusWidget()); }
    // Row and column of the cell that is edited; -1, -1 if none is.
    std::pair<int, int> editedCell(RecordTableView& table) {
        if (field() == nullptr || field() != table.openEditor()) return {-1, -1};
        return {table.currentIndex().row(), table.currentIndex().column()};
    }
    // What the command-line tool prints of the saved project.
    std::string printedRecords() {
        EXPECT_TRUE(waitUntilSaved());
        QProcess tool;
        tool.start(ZORVEL_CLI, {"records", savePanel.answer});
        EXPECT_TRUE(tool.waitForFinished());
        EXPECT_EQ(tool.exitCode(), 0) << tool.readAllStandardError().toStdString();
        return tool.readAllStandardOutput().toStdString();
    }
};

TEST_F(KeyboardTest, AProjectIsTypedUndoneToNothingAndDoneAgain) {
    ASSERT_TRUE(waitUntil([this] { return window->isActiveWindow(); }));
    saveAs(folder.filePath("typed.zorvel"));
    const std::string nothing = printedRecords();
    std::vector<std::string> expected;
    for (int plot = 1; plot <= 5; ++plot) {
        const std::string name = "Plot " + std::to_string(plot);
        expected.push_back(name);
        press(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
        typeText(name);
        press(Qt::Key_Return);
        press(Qt::Key_E, Qt::ControlModifier);
        int individuals = 0;
        for (int i = 0; i < 10; ++i) {
            const std::string species = std::string(1, static_cast<char>('K' - i)) + "us minor";
            const int count = plot * 10 + i;
            expected.push_back(species + "," + std::to_string(count));
            individuals += count;
            typeText(species);
            press(Qt::Key_Tab);
            typeText(std::to_string(count));
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
    for (; context().canRedo() && steps > 0; --steps) press(QKeySequence::Redo);
    EXPECT_EQ(printedRecords(), typed);
    EXPECT_EQ(text("chaoOne"), chao);
    EXPECT_EQ(label("metricsHeading"), "Plot 5");
}

TEST_F(KeyboardTest, UndoIsTheFieldsOwnWhileThereIsTypingInIt) {
    openTrees();
    press(Qt::Key_E, Qt::ControlModifier);
    ASSERT_EQ(census().taxa().size(), 4u);
    typeText("Q");
    press(QKeySequence::Undo);
    ASSERT_NE(field(), nullptr);
    EXPECT_EQ(field()->text(), "");
    press(QKeySequence::Undo);  // once too often
    EXPECT_EQ(census().taxa().size(), 4u);
    press(QKeySequence::Redo);
    ASSERT_NE(field(), nullptr);
    EXPECT_EQ(field()->text(), "Q");
    press(Qt::Key_Escape);
    edit(speciesTable(), 3, 1);
    press(QKeySequence::Undo);
    EXPECT_EQ(field(), nullptr);
    EXPECT_EQ(census().taxa().size(), 3u);
    press(QKeySequence::Redo);
    EXPECT_EQ(census().taxa().size(), 4u);
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
    speciesTable().selectRows({1});
    press(Qt::Key_End);
    EXPECT_EQ(speciesTable().selectedRows(), std::vector<int>{2});
    press(Qt::Key_Home, Qt::ShiftModifier);
    EXPECT_EQ(speciesTable().selectedRows(), (std::vector<int>{0, 1, 2}));
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
    // A new row is selected, whatever keys are held.
    press(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(censusTable().selectedRows(), std::vector<int>{4});
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
    QTest::keyClick(&edit(speciesTable(), 2, 2), Qt::Key_Tab);
    EXPECT_EQ(census().taxonCount(), 4u);
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
    EXPECT_EQ(census().taxonCount(), 3u);
    press(Qt::Key_Backspace);
    EXPECT_TRUE(refused->accessibleDescription().isEmpty());
    typeText("9\t");
    EXPECT_EQ(records()[3], "Larix,19");
    EXPECT_EQ(records()[4], "-,0");
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
    speciesTable().setCurrentIndex(speciesTable().model()->index(1, 0));
    press(Qt::Key_F2);
    EXPECT_EQ(editedCell(speciesTable()), std::pair(1, 1));
    press(Qt::Key_Escape);
    press(Qt::Key_Insert);
    EXPECT_EQ(editedCell(speciesTable()), std::pair(3, 1));
    typeText("Picea");
    press(Qt::Key_Insert);
    EXPECT_EQ(editedCell(speciesTable()), std::pair(4, 1));
    EXPECT_EQ(records()[4], "Picea,0");
    typeText("Pinus");
    press(Qt::Key_E, Qt::ControlModifier);
    EXPECT_EQ(editedCell(speciesTable()), std::pair(5, 1));
    EXPECT_EQ(records()[5], "Pinus,0");
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
    EXPECT_EQ(records()[4], "Zea,4");
}

TEST_F(KeyboardTest, WhatIsTypedIsStoredBeforeItsTableShowsSomethingElse) {
    openTrees();
    edit(speciesTable(), 0, 2);
    typeText("8");
    censusTable().selectRows({1});
    EXPECT_EQ(field(), nullptr);
    EXPECT_EQ(records()[1], "Abies,8");
    EXPECT_EQ(records()[5], "Abies,5");
    censusTable().selectRows({0});
    edit(speciesTable(), 2, 1);
    typeText("Aaa");
    child<QLineEdit>("searchBar").setText("Betula");
    EXPECT_EQ(records()[3], "Aaa,2");
    child<QLineEdit>("searchBar").clear();
    edit(speciesTable(), 2, 1);
    typeText("Zzz");
    const QHeaderView& header = *speciesTable().horizontalHeader();
    QTest::mouseClick(header.viewport(), Qt::LeftButton, {},
                      QPoint(header.sectionViewportPosition(1) + 20, header.height() / 2));
    EXPECT_EQ(field(), nullptr);
    EXPECT_EQ(records()[3], "Zzz,2");
    // So many rows between the others that the table is reset.
    edit(speciesTable(), 0, 2);
    typeText("77");
    context().insertTaxa(census(), std::vector<TaxonValues>(500));
    context().announceChanges();
    context().announceChanges();
    EXPECT_EQ(records()[1], "Abies,77");
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

class CompletionTest : public KeyboardTest {
  protected:
    void SetUp() override {
        KeyboardTest::SetUp();
        ASSERT_TRUE(waitUntil([this] { return window->isActiveWindow(); }));
        press(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
        typeText("North\r");
        std::vector<TaxonValues> taxa;
        for (const char* name : {"Globigerina", "Globorotalia", "Cafe\u0301 noir",
                                 "\u00C4rmel alba", "\U00010400\U00010428 maior"}) {
            taxa.push_back({SharedText(name), 1, true});
        }
        context().insertTaxa(census(), std::move(taxa));
        context().announceChanges();
        beginName();
    }
    // The name of a new row.
    void beginName() {
        press(Qt::Key_E, Qt::ControlModifier);
        ASSERT_NE(field(), nullptr);
        EXPECT_EQ(field()->text(), "");
    }
    void compose(const QString& preedit, const QString& commit) {
        QInputMethodEvent event(preedit, {});
        event.setCommitString(commit);
        QCoreApplication::sendEvent(field(), &event);
    }
    // The text with its selection in brackets.
    std::string shown() {
        QString text = field()->text();
        if (!field()->hasSelectedText()) return text.toStdString();
        text.insert(field()->selectionEnd(), ']');
        return text.insert(field()->selectionStart(), '[').toStdString();
    }
};

TEST_F(CompletionTest, WhatIsTypedAtTheEndIsCompleted) {
    const std::pair<const char*, const char*> cases[] = {
        {"G", "G[lobigerina]"},
        {"Globo", "Globo[rotalia]"},
        {"glob", "glob"},
        {"Globigerina", "Globigerina"},
        {"Caf", "Caf[e\u0301 noir]"},
        {"Cafe", "Cafe"}};  // the name goes on with the accent of that letter
    for (const auto& [keys, text] : cases) {
        field()->clear();
        typeText(keys);
        EXPECT_EQ(shown(), text) << keys;
        // A proposal is not typed yet.
        EXPECT_EQ(drafts()->taxa().back().name()->str(), keys);
    }
    field()->clear();
    typeText("Glb");
    press(Qt::Key_Left);
    typeText("o");
    EXPECT_EQ(shown(), "Glob");
}

TEST_F(CompletionTest, DeletedCutUndoneAndRedoneTextIsLeftAlone) {
    typeText("Globo");
    press(Qt::Key_Delete);
    EXPECT_EQ(shown(), "Globo");
    press(Qt::Key_Backspace);
    EXPECT_EQ(shown(), "Glob");
    field()->clear();
    field()->insert("Glob");
    press(Qt::Key_Backspace);
    press(QKeySequence::Undo);
    EXPECT_EQ(field()->text(), "Glob");
    press(QKeySequence::Redo);
    EXPECT_EQ(field()->text(), "Glo");
    press(Qt::Key_Left, Qt::ShiftModifier);
    press(QKeySequence::Cut);
    EXPECT_EQ(shown(), "Gl");
    QApplication::clipboard()->setText("ob");
    press(QKeySequence::Paste);
    EXPECT_EQ(shown(), "Glob[igerina]");
}

TEST_F(CompletionTest, ComposedTextIsCompletedOnceItIsThere) {
    compose("\u00A8", {});
    EXPECT_EQ(field()->text(), "");
    compose({}, "\u00C4");
    EXPECT_EQ(shown(), "\u00C4[rmel alba]");
    field()->clear();
    compose({}, "\U00010400");
    EXPECT_EQ(shown(), "\U00010400[\U00010428 maior]");
}

TEST_F(CompletionTest, LeavingTheFieldTakesTheCompletion) {
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Tab, Qt::Key_Down}) {
        typeText("Globo");
        press(key);
        EXPECT_EQ(records().back(), "Globorotalia,0") << key;
        beginName();
    }
    for (const Qt::Key key : {Qt::Key_Right, Qt::Key_End}) {
        field()->clear();
        typeText("Globo");
        press(key);
        EXPECT_EQ(shown(), "Globorotalia") << key;
    }
    typeText(" alba");
    press(Qt::Key_Escape);
    EXPECT_EQ(records().back(), "-,0");
}

TEST_F(CompletionTest, NewNamesBecomeKnownAndOldOnesStay) {
    press(Qt::Key_Escape);
    type(speciesTable(), 0, 1, "Neogloboquadrina");
    trigger("addCensusMenuItemTapped");
    press(Qt::Key_Return);
    for (const auto& [keys, text] :
         {std::pair("Neo", "Neo[globoquadrina]"), {"Globi", "Globi[gerina]"}}) {
        beginName();
        typeText(keys);
        EXPECT_EQ(shown(), text);
        press(Qt::Key_Escape);
    }
    open(write("more.csv", ",Acer\nWest,3\n"));  // another project knows only its own names
    window = windows->windows().back();
    ASSERT_EQ(records(), (std::vector<std::string>{"West", "Acer,3"}));
    type(speciesTable(), 0, 1, "Globi");
    EXPECT_EQ(records()[1], "Globi,3");
}

}  // namespace
}  // namespace zorvel
