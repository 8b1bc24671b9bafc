#include <QAction>
#include <QClipboard>
#include <QHash>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <QToolButton>
#include <utility>

#include "app/command_line.h"
#include "app/edit_commands.h"
#include "ui/kit/look.h"
#include "ui/kit/message_strip.h"
#include "ui/window_fixture.h"

namespace zorvel {
namespace {

TEST(CommandLine, AnswersOptionsAndLeavesFiles) {
    const struct {
        QStringList arguments;
        bool answered;
        int status;
        const char* begins;
    } cases[] = {
        {{}, false, 0, ""},
        {{"counts.csv"}, false, 0, ""},
        {{"--help"}, true, 0, "Usage: zorvel"},
        {{"counts.csv", "--version"}, true, 0, "zorvel "},
        {{"--frobnicate"}, true, 2, "zorvel: unknown option --frobnicate"},
        {{"--", "--help"}, false, 0, ""},
    };
    for (const auto& test : cases) {
        const auto answer = answerCommandLine(test.arguments);
        ASSERT_EQ(answer.has_value(), test.answered) << test.arguments.join(' ').toStdString();
        if (!answer) continue;
        EXPECT_EQ(answer->status, test.status);
        EXPECT_TRUE(answer->text.startsWith(test.begins)) << answer->text.toStdString();
        EXPECT_TRUE(answer->text.endsWith('\n'));
    }
    EXPECT_EQ(filesOf({"--", "--help", "b.csv"}), (QStringList{"--help", "b.csv"}));
}

class CommandsTest : public WindowTest {
  protected:
    std::string clipboard() { return QApplication::clipboard()->text().toStdString(); }
};

TEST_F(CommandsTest, CopyTakesWhatTheFocusedPartHasSelected) {
    open(write("trees.csv", ",Abies,Betula\nNorth,3,14\nSouth,5,6\n"));
    ASSERT_TRUE(waitUntil([this] { return censusTable().hasFocus(); }));
    trigger("copy");
    EXPECT_EQ(clipboard(), "North\t2");
    speciesTable().setFocus();
    trigger("copy");
    EXPECT_EQ(clipboard(), "North\t2");  // nothing is selected there
    trigger("selectAll");
    trigger("copy");
    EXPECT_EQ(clipboard(), "Abies\t3\nBetula\t14");
    value("individuals").setFocus();
    trigger("selectAll");
    trigger("copy");
    EXPECT_EQ(clipboard(), "17");
    censusTable().setFocus();
    QTest::keyClick(&censusTable(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(clipboard(), "North\t2");
}

TEST_F(CommandsTest, AnExplanationCanBeCopiedWhole) {
    open(write("trees.csv", ",Abies,Betula\nNorth,3,14\n"));
    value("shannonH").setFocus();
    QTest::keyClick(&value("shannonH"), Qt::Key_F1);
    ASSERT_TRUE(waitUntil([] { return qobject_cast<QLabel*>(QApplication::focusWidget()); }));
    trigger("selectAll");
    trigger("copy");
    const QString copied = QApplication::clipboard()->text();
    EXPECT_TRUE(copied.startsWith("Shannon's H")) << copied.toStdString();
    EXPECT_TRUE(copied.endsWith("623-656.")) << copied.toStdString();  // of the source
    EXPECT_TRUE(copied.contains("\nInputs\nN = 17, S = 2\n")) << copied.toStdString();
}

TEST_F(CommandsTest, ValuesCannotBeTyped) {
    open(write("trees.csv", ",Abies,Betula\nNorth,3,14\n"));
    QTest::keyClicks(&value("individuals"), "999");
    EXPECT_EQ(text("individuals"), "17");
}

TEST_F(CommandsTest, TheLookIsAppliedAndKept) {
    trigger("darkLook");
    EXPECT_EQ(schemeOf(QApplication::palette()), ColorScheme::dark);
    QCoreApplication::processEvents();
    const QLabel& secondary = child<QLabel>("censusCountLabel");
    EXPECT_EQ(secondary.palette().color(secondary.foregroundRole()),
              lookColors(ColorScheme::dark).secondary);
    EXPECT_EQ(LookChoice(*qApp).choice(), LookChoice::dark);
    MainWindowController& other = windows->openUntitled();
    EXPECT_TRUE(other.findChild<QAction*>("darkLook")->isChecked());
    other.findChild<QAction*>("lightLook")->trigger();
    EXPECT_TRUE(child<QAction>("lightLook").isChecked());
    EXPECT_EQ(schemeOf(QApplication::palette()), ColorScheme::light);
}

TEST_F(CommandsTest, PullDownMenusHoldTheirCommandsInOrder) {
    const struct {
        const char* button;
        std::vector<std::pair<QString, QString>> items;
    } cases[] = {
        {"censusPopUpButton",
         {{"Add census", "addCensus"},
          {"Delete census", "deleteCensus"},
          {"Sample-based rarefaction", "sampleBasedRarefaction"},
          {"Project-wide metrics", "calculateProjectWideMetrics"}}},
        {"speciesPopUpButton",
         {{"Add species", "addSpecies"},
          {"Delete species", "deleteSpecies"},
          {"Individual-based rarefaction", "individualBasedRarefaction"}}},
    };
    for (const auto& test : cases) {
        std::vector<std::pair<QString, QString>> items;
        for (const QAction* action : child<QToolButton>(test.button).menu()->actions()) {
            items.emplace_back(action->text(), action->objectName());
        }
        EXPECT_EQ(items, test.items) << test.button;
    }
}

TEST_F(CommandsTest, PullDownCommandsActOnTheRecords) {
    trigger("addCensus");
    EXPECT_NE(censusTable().openEditor(), nullptr);
    trigger("addSpecies");
    EXPECT_NE(speciesTable().openEditor(), nullptr);
    EXPECT_EQ(context().censuses().front().taxonCount(), 1u);
    trigger("deleteSpecies");
    EXPECT_EQ(context().censuses().front().taxonCount(), 0u);
    trigger("deleteCensus");
    EXPECT_EQ(context().censusCount(), 0u);
}

TEST_F(CommandsTest, SpeciesControlsAreEnabledWhileThereIsACensus) {
    const auto expectEnabled = [this](bool enabled) {
        for (const char* name : {"addSpeciesButton", "removeSpeciesButton", "speciesPopUpButton"}) {
            EXPECT_EQ(child<QToolButton>(name).isEnabled(), enabled) << name;
        }
        EXPECT_TRUE(child<QToolButton>("censusPopUpButton").isEnabled());
    };
    expectEnabled(false);
    trigger("addCensusMenuItemTapped");
    expectEnabled(true);
    censusTable().clearSelection();
    expectEnabled(true);
    trigger("addSpeciesMenuItemTapped");  // there is no census to add it to
    EXPECT_EQ(context().censuses().front().taxonCount(), 0u);
    EXPECT_EQ(window->mainView().messageStrip().messages().size(), 1);
    censusTable().selectRow(0);
    trigger("deleteCensusMenuItemTapped");
    expectEnabled(false);
    trigger("undo");
    expectEnabled(true);
}

TEST_F(CommandsTest, AnalysesAreRefusedWithTooFewCensuses) {
    struct Command {
        std::size_t fewest;
        const char* pullDown;
        const char* menu;
        const char* refusal;
    };
    const Command commands[] = {
        {3, "calculateProjectWideMetrics", "projectwideMetricsMenuItemTapped",
         "Must have at least three censuses to calculate project-wide metrics"},
        {1, "individualBasedRarefaction", "individualBasedRarefactionMenuItemTapped",
         "Must have at least one census to calculate individual-based rarefaction"},
        {5, "sampleBasedRarefaction", "sampleBasedRarefactionMenuItemTapped",
         "Must have at least five censuses to calculate sample-based rarefaction"},
    };
    for (std::size_t censuses = 0; censuses <= 5; ++censuses) {
        for (const Command& command : commands) {
            for (const char* name : {command.pullDown, command.menu}) {
                alerts.warnings.clear();
                trigger(name);
                const bool refused = censuses < command.fewest;
                QStringList expected;
                if (refused) expected.append(QString("Too few censuses: ") + command.refusal);
                EXPECT_EQ(alerts.warnings, expected) << name << ' ' << censuses;
                EXPECT_EQ(window->mainView().isInProgress(), !refused) << name << ' ' << censuses;
                drainJobs();
            }
        }
        trigger("addCensus");
    }
}

TEST_F(CommandsTest, EveryRecordCommandHasAShortcutOfItsOwn) {
    const QStringList rare = {"websiteMenuItemTapped",
                              "emailSupportMenuItemTapped",
                              "importAbundanceListMenuItemTapped",
                              "importOneCensusMenuItemTapped",
                              "importCensusMatrixMenuItemTapped",
                              "importIOSFileMenuItemTapped",
                              "importSpeciesListMenuItemTapped",
                              "exportCensusMatrixMenuItemTapped",
                              "exportMetricsMenuItemTapped"};
    QHash<QKeySequence, QString> taken;
    for (const QAction* action : window->menuBar()->findChildren<QAction*>()) {
        const QString name = action->objectName();
        EXPECT_FALSE(name.endsWith("MenuItemTapped") && action->shortcut().isEmpty() &&
                     !rare.contains(name))
            << name.toStdString();
        if (action->shortcut().isEmpty()) continue;
        EXPECT_FALSE(taken.contains(action->shortcut())) << name.toStdString();
        taken.insert(action->shortcut(), name);
    }
    EXPECT_GT(taken.size(), 15);
}

TEST_F(CommandsTest, OpenAndCloseFromTheMenu) {
    panel.answer = {write("trees.csv", ",Abies\nNorth,3\n")};
    trigger("openDocument");
    ASSERT_TRUE(waitUntil([this] { return censusTable().model()->rowCount() == 1; }));
    trigger("openDocument");  // the window is taken: the file gets another
    ASSERT_TRUE(waitUntil([this] { return windows->windows().size() == 2; }));
    trigger("performClose");
    EXPECT_EQ(windows->windows().size(), 1u);
}

TEST_F(CommandsTest, TablesAreSortedFromTheMenuAsByTheirHeaders) {
    open(write("three.csv", ",Picea,Abies,Larix\nB,3,20,100\nA,1,0,0\n"));
    const auto choose = [this](const char* menu, const QString& title) {
        emit child<QMenu>(menu).aboutToShow();
        for (QAction* action : child<QMenu>(menu).actions()) {
            if (action->text().startsWith(title)) return action->trigger();
        }
    };
    const auto marked = [this](const char* menu) {
        emit child<QMenu>(menu).aboutToShow();
        QStringList titles;
        for (const QAction* action : child<QMenu>(menu).actions()) {
            if (action->isChecked()) titles.append(action->text());
        }
        return titles.join('|').toStdString();
    };
    EXPECT_EQ(marked("speciesTableSortMenu"), "As Entered");
    const auto column = [](const QTableView& table, int place) {
        QStringList cells;
        for (int row = 0; row < table.model()->rowCount(); ++row) {
            cells.append(table.model()->index(row, place).data().toString());
        }
        return cells.join(',');
    };
    choose("speciesTableSortMenu", "Abundance");
    EXPECT_EQ(column(speciesTable(), 2), "3,20,100");
    choose("speciesTableSortMenu", "Name");
    EXPECT_EQ(column(speciesTable(), 1), "Abies,Larix,Picea");
    choose("speciesTableSortMenu", "Name");
    EXPECT_EQ(column(speciesTable(), 1), "Picea,Larix,Abies");
    EXPECT_EQ(marked("speciesTableSortMenu"), "Name (descending)");
    EXPECT_EQ(marked("censusTableSortMenu"), "As Entered");
    choose("speciesTableSortMenu", "As Entered");
    EXPECT_EQ(column(speciesTable(), 1), "Picea,Abies,Larix");
    speciesTable().sortByColumn(2, Qt::AscendingOrder);  // as a click on the header does
    EXPECT_EQ(marked("speciesTableSortMenu"), "Abundance");
    choose("censusTableSortMenu", "Census");
    EXPECT_EQ(column(censusTable(), 0), "A,B");
}

}  // namespace
}  // namespace zorvel
