// The application: its command line, menus and their commands, and what opens outside of it.
#include <QClipboard>
#include <QDir>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>

#include "app/process.h"
#include "ui/analysis/project_wide_metrics_window_controller.h"
#include "ui/analysis/rarefaction_view_controller.h"
#include "ui/application_fixture.h"
#include "ui/kit/look.h"

namespace zorvel {
namespace {

QStringList titlesOf(const QList<QAction*>& actions) {
    QStringList titles;
    for (const QAction* action : actions) {
        if (!action->isSeparator()) titles.append(action->text().remove('&'));
    }
    return titles;
}

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

TEST_F(ApplicationTest, CopyTakesWhatTheFocusedPartHasSelected) {
    openTrees();
    const auto clipboard = [] { return QApplication::clipboard()->text().toStdString(); };
    trigger("copy");
    EXPECT_EQ(clipboard(), "North\t3");
    speciesTable().setFocus();
    trigger("copy");
    EXPECT_EQ(clipboard(), "North\t3");  // nothing is selected there
    trigger("selectAll");
    trigger("copy");
    EXPECT_EQ(clipboard(), "Abies\t3\nBetula\t14\nLarix\t2");
    value("individuals").setFocus();
    trigger("selectAll");
    trigger("copy");
    EXPECT_EQ(clipboard(), "19");
    censusTable().setFocus();
    QTest::keyClick(&censusTable(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(clipboard(), "North\t3");
}

TEST_F(ApplicationTest, AnExplanationCanBeCopiedWhole) {
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

TEST_F(ApplicationTest, TheLookIsAppliedAndKept) {
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

TEST_F(ApplicationTest, PullDownCommandsActOnTheRecords) {
    trigger("addCensus");
    EXPECT_NE(censusTable().openEditor(), nullptr);
    trigger("addSpecies");
    EXPECT_NE(speciesTable().openEditor(), nullptr);
    EXPECT_EQ(records(), (std::vector<std::string>{"-", "-,0"}));
    trigger("deleteSpecies");
    EXPECT_EQ(records(), std::vector<std::string>{"-"});
    trigger("deleteCensus");
    EXPECT_TRUE(records().empty());
}

TEST_F(ApplicationTest, AnalysesAreRefusedWithTooFewCensuses) {
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

TEST_F(ApplicationTest, OpenAndCloseFromTheMenu) {
    panel.answer = {write("trees.csv", ",Abies\nNorth,3\n")};
    trigger("openDocument");
    ASSERT_TRUE(waitUntil([this] { return censusTable().model()->rowCount() == 1; }));
    trigger("openDocument");  // the window is taken: the file gets another
    ASSERT_TRUE(waitUntil([this] { return windows->windows().size() == 2; }));
    trigger("performClose");
    EXPECT_EQ(windows->windows().size(), 1u);
}

TEST_F(ApplicationTest, TablesAreSortedFromTheMenuAsByTheirHeaders) {
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
    using Cells = std::vector<std::string>;
    choose("speciesTableSortMenu", "Abundance");
    EXPECT_EQ(column(speciesTable(), 2), (Cells{"3", "20", "100"}));
    choose("speciesTableSortMenu", "Name");
    EXPECT_EQ(column(speciesTable(), 1), (Cells{"Abies", "Larix", "Picea"}));
    choose("speciesTableSortMenu", "Name");
    EXPECT_EQ(column(speciesTable(), 1), (Cells{"Picea", "Larix", "Abies"}));
    EXPECT_EQ(marked("speciesTableSortMenu"), "Name (descending)");
    EXPECT_EQ(marked("censusTableSortMenu"), "As Entered");
    choose("speciesTableSortMenu", "As Entered");
    EXPECT_EQ(column(speciesTable(), 1), (Cells{"Picea", "Abies", "Larix"}));
    speciesTable().sortByColumn(2, Qt::AscendingOrder);  // as a click on the header does
    EXPECT_EQ(marked("speciesTableSortMenu"), "Abundance");
    choose("censusTableSortMenu", "Census");
    EXPECT_EQ(column(censusTable(), 0), (Cells{"A", "B"}));
}

// No two commands share a key, and no two titles of a menu a letter.
TEST_F(ApplicationTest, KeysAndLettersAreUnambiguous) {
    QStringList keys;
    for (const QAction* action : window->findChildren<QAction*>()) {
        for (const QKeySequence& key : action->shortcuts()) keys.append(key.toString());
    }
    EXPECT_GE(keys.size(), 20);
    EXPECT_EQ(QSet<QString>(keys.begin(), keys.end()).size(), keys.size())
        << keys.join(' ').toStdString();
    for (const QMenu* menu : window->menuBar()->findChildren<QMenu*>()) {
        QStringList letters;
        for (const QAction* action : menu->actions()) {
            const qsizetype mark = action->text().indexOf('&');
            if (mark >= 0) letters.append(action->text().mid(mark + 1, 1).toLower());
        }
        EXPECT_EQ(QSet<QString>(letters.begin(), letters.end()).size(), letters.size())
            << menu->title().toStdString() << ": " << letters.join(' ').toStdString();
    }
}

TEST_F(ApplicationTest, HelpWebSiteAndSupportOpenOutside) {
    trigger("websiteMenuItemTapped");
    trigger("emailSupportMenuItemTapped");
    EXPECT_EQ(links.opened,
              (QStringList{"https://zorvel.example/",
                           "mailto:support@zorvel.example?SUBJECT=Zorvel%20for%20Mac%20support&"
                           "BODY="}));
    links.opened.clear();
    trigger("showHelp");
    ASSERT_EQ(links.opened.size(), 1);
    const QUrl help(links.opened.front());
    EXPECT_TRUE(help.isLocalFile());
    EXPECT_TRUE(QDir::isAbsolutePath(help.toLocalFile()));
    EXPECT_EQ(QFileInfo(help.toLocalFile()).fileName(), "index.html");
    links.opened.clear();
    for (const char* text : {"", "zorvel.example", "/usr/share/doc", "http://a b/", "http://[/"}) {
        openURLString(links, text);
        EXPECT_TRUE(links.opened.isEmpty()) << text;
    }
}

TEST_F(ApplicationTest, F1ExplainsAValueAndOpensTheHelpElsewhere) {
    open(exampleFile);
    ASSERT_TRUE(waitForJobs());
    window->activateWindow();
    censusTable().setFocus();
    QTest::keyClick(&censusTable(), Qt::Key_F1);
    EXPECT_EQ(links.opened.size(), 1);
    value("chaoOne").setFocus();
    QTest::keyClick(&value("chaoOne"), Qt::Key_F1);
    QWidget* explained = QApplication::focusWidget();
    ASSERT_NE(explained, &value("chaoOne"));
    QTest::keyClick(explained, Qt::Key_F1);  // and closes the explanation
    EXPECT_EQ(QApplication::focusWidget(), &value("chaoOne"));
    EXPECT_EQ(links.opened.size(), 1);
    trigger("projectwideMetricsMenuItemTapped");
    QWidget* wide = window->mainView().projectWideMetricsWindowController();
    wide->activateWindow();
    QTest::keyClick(wide, Qt::Key_F1);
    EXPECT_EQ(links.opened.size(), 2);
    QTest::keyClick(wide, Qt::Key_Comma, Qt::ControlModifier);
    EXPECT_TRUE(preferencesWindow().isVisible());
}

// A name may hold anything. It stands as it is, and in one line, wherever it is shown.
TEST_F(ApplicationTest, NamesArePlainTextInEveryWindow) {
    const QString name = "<img src=\"/p.png\">&\nb";
    const std::string stored = name.toStdString();
    for (int i = 0; i < 5; ++i) {
        context().insertCensus({stored, 0, 0, std::nullopt, std::nullopt},
                               {{stored, 9, true}, {"Abies", 5, true}, {"Picea", 2, true}});
    }
    context().announceChanges();
    censusTable().selectRow(0);
    ASSERT_TRUE(waitForJobs());
    for (const char* command : {"preferencesMenuItemTapped", "individualBasedRarefaction",
                                "sampleBasedRarefaction", "calculateProjectWideMetrics"}) {
        const qsizetype before = QApplication::topLevelWidgets().size();
        trigger(command);
        EXPECT_TRUE(waitUntil([&] { return QApplication::topLevelWidgets().size() > before; }));
    }
    QTest::keyClick(&value("chaoOne"), Qt::Key_F1);
    window->mainView().messageStrip().addMessage(name);
    ASSERT_TRUE(waitUntil([this] { return !window->mainView().isInProgress(); }));
    int named = 0;
    for (const QWidget* widget : QApplication::allWidgets()) {
        QStringList texts{widget->toolTip(), widget->accessibleName(), widget->windowTitle()};
        if (const auto* label = qobject_cast<const QLabel*>(widget)) {
            texts.append(label->text());
            const bool hasMarkup = label->objectName() == "popoverText";
            EXPECT_EQ(label->textFormat(), hasMarkup ? Qt::RichText : Qt::PlainText);
            EXPECT_EQ(label->text().contains("&lt;img"), hasMarkup);
        }
        for (const QString& text : texts) {
            EXPECT_FALSE(text.contains("&\nb")) << widget->objectName().toStdString();
            named += text.contains("<img src=\"/p.png\">&\u21b5b") ? 1 : 0;
        }
    }
    EXPECT_GE(named, 5);
    for (const int role : {Qt::DisplayRole, Qt::ToolTipRole}) {
        const QString shown = speciesTable().model()->index(0, 1).data(role).toString();
        EXPECT_TRUE(shown.startsWith("<img src=\"/p.png\">&\u21b5b")) << shown.toStdString();
    }
}

TEST_F(ApplicationTest, ComingToTheFrontWithoutAProjectOpensAnEmptyOne) {
    delegate->applicationDidBecomeActive();
    EXPECT_EQ(windows->windows().size(), 1u);
    window->close();
    sendDeletions();
    ASSERT_TRUE(waitUntil([this] { return documents->documents().empty(); }));
    delegate->applicationDidBecomeActive();
    ASSERT_EQ(windows->windows().size(), 1u);
    EXPECT_TRUE(windows->isFree(*windows->windows().front()));
    delegate->applicationDidBecomeActive();
    EXPECT_EQ(windows->windows().size(), 1u);
}

TEST_F(ApplicationTest, TheWindowMenuTellsWindowsOfOneTitleApart) {
    ASSERT_TRUE(QDir(folder.path()).mkpath("a") && QDir(folder.path()).mkpath("b"));
    openTrees();
    saveAs(folder.filePath("a/moss.zorvel"));
    for (int i = 0; i < 2; ++i) {
        const auto* before = window->mainView().rarefactionWindowController();
        window->mainView().individualBasedRarefaction();
        ASSERT_TRUE(
            waitUntil([&] { return window->mainView().rarefactionWindowController() != before; }));
    }
    EXPECT_EQ(window->mainView().rarefactionWindowController()->windowTitle(),
              "Individual-based Rarefaction");
    MainWindowController* first = window;
    window = &windows->openUntitled();
    saveAs(folder.filePath("b/moss.zorvel"));
    window = first;
    auto& menu = child<QMenu>("windowMenu");
    emit menu.aboutToShow();
    const QString a = folder.filePath("a");
    const QString plot = "Individual-based Rarefaction — North – " + a;
    EXPECT_EQ(titlesOf(menu.actions()).mid(3),
              (QStringList{plot + " (1)", plot + " (2)", "moss – " + a,
                           "moss – " + folder.filePath("b")}));
}

TEST_F(ApplicationTest, TheWindowMenuListsEveryWindowAndGoesToIt) {
    MainWindowController& second = windows->openUntitled();
    trigger("preferencesMenuItemTapped");
    preferencesWindow().showMinimized();
    auto& menu = child<QMenu>("windowMenu");
    emit menu.aboutToShow();
    emit menu.aboutToShow();  // lists nothing twice
    const QList<QAction*> all = menu.actions();
    const QStringList listed = titlesOf(all).mid(3);
    EXPECT_EQ(listed, (QStringList{"Preferences", "Untitled", "Untitled 2"}));
    QStringList checked;
    for (const QAction* action : all) {
        if (action->isChecked()) checked.append(action->text());
    }
    EXPECT_EQ(checked, QStringList{"Untitled"});
    all.back()->trigger();
    EXPECT_TRUE(waitUntil([&] { return second.isActiveWindow(); }));
    all[all.size() - 3]->trigger();
    EXPECT_FALSE(preferencesWindow().isMinimized());
    trigger("performZoom");
    EXPECT_TRUE(window->isMaximized());
    trigger("performZoom");
    EXPECT_FALSE(window->isMaximized());
    trigger("performMiniaturize");
    EXPECT_TRUE(window->isMinimized());
}

}  // namespace
}  // namespace zorvel
