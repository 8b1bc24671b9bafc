#include <QDir>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>

#include "ui/analysis/project_wide_metrics_window_controller.h"
#include "ui/analysis/rarefaction_view_controller.h"
#include "ui/application_fixture.h"

namespace zorvel {
namespace {

QStringList titlesOf(const QList<QAction*>& actions) {
    QStringList titles;
    for (const QAction* action : actions) {
        if (!action->isSeparator()) titles.append(action->text().remove('&'));
    }
    return titles;
}

TEST_F(ApplicationTest, MenusStandInTheOrderThatDesktopsKnow) {
    EXPECT_EQ(
        titlesOf(window->menuBar()->actions()),
        (QStringList{"File", "Edit", "Census", "Species", "Analysis", "View", "Window", "Help"}));
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
}

TEST_F(ApplicationTest, OnlyWholeURLsAreOpened) {
    for (const char* text : {"", "zorvel.example", "/usr/share/doc", "http://a b/", "http://[/"}) {
        openURLString(links, text);
        EXPECT_TRUE(links.opened.isEmpty()) << text;
        links.opened.clear();
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

// Their titles are alike.
TEST_F(ApplicationTest, TheWindowMenuNamesTheCensusOfAPlot) {
    open(exampleFile);
    window->mainView().individualBasedRarefaction();
    ASSERT_TRUE(waitUntil([this] { return window->mainView().rarefactionWindowController(); }));
    auto& menu = child<QMenu>("windowMenu");
    emit menu.aboutToShow();
    EXPECT_TRUE(titlesOf(menu.actions()).contains("Individual-based Rarefaction \u2014 Core 1"));
    EXPECT_EQ(window->mainView().rarefactionWindowController()->windowTitle(),
              "Individual-based Rarefaction");
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
