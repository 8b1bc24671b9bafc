#include "app/menus.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <functional>
#include <utility>

#include "app/about.h"
#include "app/document_commands.h"
#include "app/edit_commands.h"
#include "app/look_choice.h"
#include "app/project_windows.h"
#include "app/recent_menu.h"
#include "app/sort_menu.h"
#include "app/standard_keys.h"
#include "app/step_names.h"
#include "app/transfer_menus.h"
#include "app/window_menu.h"
#include "ui/main/clipboard_rows.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"
#include "ui/main/record_tables.h"

namespace zorvel {

namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("Menus", text);
}

QAction* addItem(QMenu& menu, const char* name, const QString& title,
                 const QKeySequence& shortcut = {}) {
    QAction* action = menu.addAction(title);
    action->setObjectName(name);
    action->setShortcut(shortcut);
    return action;
}

using Command = std::function<void()>;

QAction* addCommand(MainWindowController& window, QMenu& menu, const char* name,
                    const QString& title, const QKeySequence& shortcut, Command run) {
    QAction* action = addItem(menu, name, title, shortcut);
    QObject::connect(action, &QAction::triggered, &window, std::move(run));
    return action;
}

// An item tells, while its menu is open, whether it would do something; its shortcut is always
// there, since what it depends on may have changed.
void enableWhileShown(QMenu& menu, QAction* action, std::function<bool()> can) {
    QObject::connect(&menu, &QMenu::aboutToShow, action,
                     [action, can = std::move(can)] { action->setEnabled(can()); });
    QObject::connect(&menu, &QMenu::aboutToHide, action, [action] { action->setEnabled(true); });
}

void addFileMenu(MainWindowController& window, ProjectWindows& windows) {
    QMenu& menu = *window.menuBar()->addMenu(tr("&File"));
    const auto add = [&](const char* name, const QString& title, const QKeySequence& shortcut,
                         Command run) {
        return addCommand(window, menu, name, title, shortcut, std::move(run));
    };
    add("newDocument", tr("&New"), QKeySequence::New, [&] { windows.openUntitled(); });
    add("openDocument", tr("&Open..."), QKeySequence::Open, [&] { windows.chooseFile(window); });
    QMenu* recent = menu.addMenu(tr("Open &Recent"));
    recent->setObjectName("recentMenu");
    keepRecentMenu(*recent, window, windows);
    menu.addSeparator();
    add("performClose", tr("&Close"), closeKey(), [&] { window.close(); });
    add("saveDocument", tr("&Save"), QKeySequence::Save,
        [&] { saveDocument(window, windows.panels()); });
    add("saveDocumentAs", tr("Save &As..."), saveAsKey(),
        [&] { saveWindowAs(window, windows.panels()); });
    add("duplicateDocument", tr("&Duplicate"), {}, [&] { windows.duplicate(window); });
    QAction* revert = add("revertToOpening", tr("Re&vert to Opening State..."), {},
                          [&] { revertToOpening(window, windows.panels()); });
    enableWhileShown(menu, revert, [&] { return window.document().canRevert(); });
    QAction* backups =
        add("browseBackups", tr("&Browse Backups..."), {}, [&] { windows.browseBackups(window); });
    enableWhileShown(menu, backups, [&] { return !window.document().isUntitled(); });
    menu.addSeparator();
    addTransferMenus(menu, window, windows);
    menu.addSeparator();
    QAction* print = add("print", tr("&Print..."), QKeySequence::Print,
                         [&] { emit windows.printRequested(&window); });
    enableWhileShown(menu, print, [&] { return window.mainView().canDeleteCensus(); });
    menu.addSeparator();
    add("terminate", tr("&Quit"), QKeySequence(Qt::CTRL | Qt::Key_Q), [&] { windows.quit(); });
}

// Undo and redo act on the editor that has the focus, or else on the project.
void addTravelItem(MainWindowController& window, QMenu& menu, bool back) {
    QAction* action = addItem(menu, back ? "undo" : "redo", {}, QKeySequence::Undo);
    // Desktops differ in the keys for redo; both are taken.
    if (!back) {
        action->setShortcuts(
            {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), QKeySequence(Qt::CTRL | Qt::Key_Y)});
    }
    QObject::connect(action, &QAction::triggered, &window, [&window, back] {
        QWidget* focus = window.focusWidget();
        if (isTextEditor(focus)) return back ? undoIn(focus) : redoIn(focus);
        back ? window.mainView().undo() : window.mainView().redo();
    });
    const auto show = [&window, action, back] {
        const ObjectContext& context = window.document().project().objectContext();
        const QWidget* focus = window.focusWidget();
        const bool inEditor = isTextEditor(focus);
        const QString step =
            inEditor ? QString()
                     : translatedStepName(back ? context.undoName() : context.redoName());
        const QString title = back ? tr("&Undo %1") : tr("&Redo %1");
        action->setText(title.arg(step).trimmed());
        return inEditor ? (back ? canUndoIn(focus) : canRedoIn(focus))
                        : (back ? context.canUndo() : context.canRedo());
    };
    show();
    enableWhileShown(menu, action, show);
}

// What has the focus, except that an empty project, which shows no table, takes copied censuses.
QWidget* pasteTarget(MainWindowController& window) {
    QWidget* focus = window.focusWidget();
    const bool empty = window.document().project().objectContext().censusCount() == 0;
    if (canPaste(focus) || !empty || !clipboardHoldsCensuses()) return focus;
    return window.findChild<CensusTableView*>();
}

void addEditMenu(MainWindowController& window, ProjectWindows& windows) {
    QMenu& menu = *window.menuBar()->addMenu(tr("&Edit"));
    addTravelItem(window, menu, true);
    addTravelItem(window, menu, false);
    menu.addSeparator();
    QAction* cut = addCommand(window, menu, "cut", tr("Cu&t"), QKeySequence::Cut,
                              [&] { cutFrom(window.focusWidget()); });
    QAction* copy = addCommand(window, menu, "copy", tr("&Copy"), QKeySequence::Copy,
                               [&] { copyFrom(window.focusWidget()); });
    QAction* paste = addCommand(window, menu, "paste", tr("&Paste"), QKeySequence::Paste,
                                [&] { pasteInto(pasteTarget(window)); });
    // Without a shortcut: the key means the next character to an editor, and the rows to a table.
    QAction* remove = addCommand(window, menu, "delete", tr("&Delete"), {},
                                 [&] { deleteFrom(window.focusWidget()); });
    QAction* all = addCommand(window, menu, "selectAll", tr("Select &All"), QKeySequence::SelectAll,
                              [&] { selectAllOf(window.focusWidget()); });
    addCommand(window, menu, "copyAllMetrics", tr("Copy All &Metrics"),
               QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C),
               [&] { window.mainView().copyAllMetrics(); });
    menu.addSeparator();
    addCommand(window, menu, "find", tr("&Find Species"), QKeySequence::Find,
               [&] { window.mainView().findSpecies(); });
    menu.addSeparator();
    addCommand(window, menu, "preferencesMenuItemTapped", tr("Prefere&nces..."), preferencesKey(),
               [&] { emit windows.preferencesRequested(); });
    enableWhileShown(menu, cut, [&] { return canCut(window.focusWidget()); });
    enableWhileShown(menu, paste, [&] { return canPaste(pasteTarget(window)); });
    enableWhileShown(menu, remove, [&] { return canCut(window.focusWidget()); });
    enableWhileShown(menu, copy, [&] { return canCopy(window.focusWidget()); });
    enableWhileShown(menu, all, [&] { return canSelectAll(window.focusWidget()); });
}

void addRecordMenus(MainWindowController& window) {
    QMenu& census = *window.menuBar()->addMenu(tr("&Census"));
    addCommand(window, census, "addCensusMenuItemTapped", tr("&Add Census"),
               QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_N),
               [&] { window.document().project().addCensus(); });
    QAction* deleteCensus =
        addCommand(window, census, "deleteCensusMenuItemTapped", tr("&Delete Census"),
                   QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Delete),
                   [&] { window.document().project().deleteCensus(); });
    enableWhileShown(census, deleteCensus, [&] { return window.mainView().canDeleteCensus(); });

    QMenu& species = *window.menuBar()->addMenu(tr("&Species"));
    QAction* addSpecies = addCommand(window, species, "addSpeciesMenuItemTapped",
                                     tr("&Add Species"), QKeySequence(Qt::CTRL | Qt::Key_E),
                                     [&] { window.document().project().addSpecies(); });
    QAction* deleteSpecies =
        addCommand(window, species, "deleteSpeciesMenuItemTapped", tr("&Delete Species"),
                   QKeySequence(Qt::CTRL | Qt::Key_Delete),
                   [&] { window.document().project().deleteSpecies(); });
    enableWhileShown(species, addSpecies, [&] { return window.mainView().canAddSpecies(); });
    enableWhileShown(species, deleteSpecies, [&] { return window.mainView().canDeleteSpecies(); });
}

void addAnalysisMenu(MainWindowController& window) {
    QMenu& menu = *window.menuBar()->addMenu(tr("&Analysis"));
    addCommand(window, menu, "projectwideMetricsMenuItemTapped", tr("&Project-Wide Metrics"),
               QKeySequence(Qt::CTRL | Qt::Key_M),
               [&] { window.mainView().calculateProjectWideMetrics(); });
    addCommand(window, menu, "individualBasedRarefactionMenuItemTapped",
               tr("&Individual-Based Rarefaction"), QKeySequence(Qt::CTRL | Qt::Key_R),
               [&] { window.mainView().individualBasedRarefaction(); });
    addCommand(window, menu, "sampleBasedRarefactionMenuItemTapped",
               tr("&Sample-Based Rarefaction"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_R),
               [&] { window.mainView().sampleBasedRarefaction(); });
}

void addViewMenu(MainWindowController& window, LookChoice& look) {
    QMenu& menu = *window.menuBar()->addMenu(tr("&View"));
    auto* group = new QActionGroup(&window);
    const struct {
        LookChoice::Choice choice;
        const char* name;
        QString title;
    } items[] = {{LookChoice::light, "lightLook", tr("&Light")},
                 {LookChoice::dark, "darkLook", tr("&Dark")},
                 {LookChoice::followDesktop, "followDesktop", tr("&Follow Desktop")}};
    for (const auto& item : items) {
        QAction* action = group->addAction(addItem(menu, item.name, item.title));
        action->setCheckable(true);
        const LookChoice::Choice choice = item.choice;
        const auto show = [action, choice, &look] { action->setChecked(look.choice() == choice); };
        show();
        QObject::connect(&look, &LookChoice::choiceDidChange, action, show);
        QObject::connect(action, &QAction::triggered, &look,
                         [choice, &look] { look.choose(choice); });
    }
    menu.addSeparator();
    addSortMenus(menu, window);
}

// F1 explains the value that has the focus, and opens the help everywhere else.
void addHelpMenu(MainWindowController& window, ProjectWindows& windows) {
    QMenu& menu = *window.menuBar()->addMenu(tr("&Help"));
    addCommand(window, menu, "showHelp", tr("Zorvel &Help"), QKeySequence::HelpContents,
               [&] { emit windows.helpRequested(); });
    menu.addSeparator();
    addCommand(window, menu, "websiteMenuItemTapped", tr("Zorvel &Web Site"), {},
               [&] { emit windows.websiteRequested(); });
    addCommand(window, menu, "emailSupportMenuItemTapped", tr("&Send Mail to Support"), {},
               [&] { emit windows.supportRequested(); });
    menu.addSeparator();
    QAction* about = addItem(menu, "about", tr("&About Zorvel"));
    QObject::connect(about, &QAction::triggered, &window, [&window] { showAbout(&window); });
}

}  // namespace

void addMenus(MainWindowController& window, ProjectWindows& windows, LookChoice& look) {
    addFileMenu(window, windows);
    addEditMenu(window, windows);
    addRecordMenus(window);
    addAnalysisMenu(window);
    addViewMenu(window, look);
    addWindowMenu(window);
    addHelpMenu(window, windows);
}

}  // namespace zorvel
