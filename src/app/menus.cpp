#include "app/menus.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <functional>
#include <utility>

#include "app/application_delegate.h"
#include "app/document_commands.h"
#include "app/edit_commands.h"
#include "app/exports.h"
#include "app/imports.h"
#include "app/look_choice.h"
#include "app/project_windows.h"
#include "app/table_imports.h"
#include "ui/main/clipboard_rows.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"
#include "ui/main/record_tables.h"

namespace zorvel {

namespace {

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

// While its menu is open, an item is disabled if it would do nothing. Its shortcut always works,
// since the conditions may have changed by then.
void enableWhileShown(QMenu& menu, QAction* action, std::function<bool()> can) {
    QObject::connect(&menu, &QMenu::aboutToShow, action,
                     [action, can = std::move(can)] { action->setEnabled(can()); });
    QObject::connect(&menu, &QMenu::aboutToHide, action, [action] { action->setEnabled(true); });
}

void addImportMenu(QMenu& file, MainWindowController& window, ProjectWindows& windows) {
    QMenu& menu = *file.addMenu("&Import");
    menu.setObjectName("importMenu");
    const struct {
        const char* name;
        const char* title;
        FileKind kind;
    } items[] = {
        {"importAbundanceListMenuItemTapped", "&Abundance List...", FileKind::list},
        {"importOneCensusMenuItemTapped", "&Single Census...", FileKind::census},
        {"importCensusMatrixMenuItemTapped", "Census &Matrix...", FileKind::matrix},
        {"importIOSFileMenuItemTapped", "&Phone-App File...", FileKind::ios},
    };
    for (const auto& item : items) {
        addCommand(window, menu, item.name, item.title, {},
                   [&, kind = item.kind] { runImport(windows, &window, kind); });
    }
    addCommand(window, menu, "importTableMenuItemTapped", "&Table...", {},
               [&] { runTableImport(windows, &window); });
    menu.addSeparator();
    addCommand(window, menu, "importSpeciesListMenuItemTapped", "Species &List...", {},
               [&] { importSpeciesList(windows, &window); });
}

void addExportMenu(QMenu& file, MainWindowController& window, ProjectWindows& windows) {
    QMenu& menu = *file.addMenu("&Export");
    menu.setObjectName("exportMenu");
    addCommand(window, menu, "exportCensusMatrixMenuItemTapped", "Census &Matrix...", {},
               [&] { windows.exports().exportCensusMatrix(&window); });
    addCommand(window, menu, "exportMetricsMenuItemTapped", "Me&trics...", {},
               [&] { windows.exports().exportMetrics(&window); });
}

void addFileMenu(MainWindowController& window, ProjectWindows& windows) {
    QMenu& menu = *window.menuBar()->addMenu("&File");
    const auto add = [&](const char* name, const QString& title, const QKeySequence& shortcut,
                         Command run) {
        return addCommand(window, menu, name, title, shortcut, std::move(run));
    };
    add("newDocument", "&New", QKeySequence::New, [&] { windows.openUntitled(); });
    add("openDocument", "&Open...", QKeySequence::Open, [&] { windows.chooseFile(window); });
    QMenu* recent = menu.addMenu("Open &Recent");
    recent->setObjectName("recentMenu");
    keepRecentMenu(*recent, window, windows);
    menu.addSeparator();
    add("performClose", "&Close", closeKey(), [&] { window.close(); });
    add("saveDocument", "&Save", QKeySequence::Save,
        [&] { saveDocument(window, windows.panels()); });
    add("saveDocumentAs", "Save &As...", saveAsKey(),
        [&] { saveWindowAs(window, windows.panels()); });
    add("duplicateDocument", "&Duplicate", {}, [&] { windows.duplicate(window); });
    QAction* revert = add("revertToOpening", "Re&vert to Opening State...", {},
                          [&] { revertToOpening(window, windows.panels()); });
    enableWhileShown(menu, revert, [&] { return window.document().canRevert(); });
    QAction* backups =
        add("browseBackups", "&Browse Backups...", {}, [&] { windows.browseBackups(window); });
    enableWhileShown(menu, backups, [&] { return !window.document().isUntitled(); });
    menu.addSeparator();
    addImportMenu(menu, window, windows);
    addExportMenu(menu, window, windows);
    menu.addSeparator();
    QAction* print = add("print", "&Print...", QKeySequence::Print,
                         [&] { emit windows.printRequested(&window); });
    enableWhileShown(menu, print, [&] { return window.mainView().canDeleteCensus(); });
    menu.addSeparator();
    add("terminate", "&Quit", QKeySequence(Qt::CTRL | Qt::Key_Q), [&] { windows.quit(); });
}

// Undo and redo act on the editor that has the focus, or else on the project.
void addUndoItem(MainWindowController& window, QMenu& menu, bool isUndo) {
    QAction* action = addItem(menu, isUndo ? "undo" : "redo", {}, QKeySequence::Undo);
    // Desktops differ in the keys for redo; both work.
    if (!isUndo) {
        action->setShortcuts(
            {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z), QKeySequence(Qt::CTRL | Qt::Key_Y)});
    }
    QObject::connect(action, &QAction::triggered, &window, [&window, isUndo] {
        QWidget* focus = window.focusWidget();
        if (isTextEditor(focus)) return isUndo ? undoIn(focus) : redoIn(focus);
        isUndo ? window.mainView().undo() : window.mainView().redo();
    });
    const auto show = [&window, action, isUndo] {
        const ObjectContext& context = window.document().project().objectContext();
        const QWidget* focus = window.focusWidget();
        const bool inEditor = isTextEditor(focus);
        QString step;
        if (!inEditor) {
            step = QString::fromStdString(isUndo ? context.undoName() : context.redoName());
        }
        const QString title = isUndo ? "&Undo %1" : "&Redo %1";
        action->setText(title.arg(step).trimmed());
        return inEditor ? (isUndo ? canUndoIn(focus) : canRedoIn(focus))
                        : (isUndo ? context.canUndo() : context.canRedo());
    };
    show();
    enableWhileShown(menu, action, show);
}

// The widget with the focus; in an empty project, which shows no table, the table of censuses if
// censuses were copied.
QWidget* pasteTarget(MainWindowController& window) {
    QWidget* focus = window.focusWidget();
    const bool empty = window.document().project().objectContext().censusCount() == 0;
    if (canPaste(focus) || !empty || !clipboardHoldsCensuses()) return focus;
    return window.findChild<CensusTableView*>();
}

void addEditMenu(MainWindowController& window, ProjectWindows& windows) {
    QMenu& menu = *window.menuBar()->addMenu("&Edit");
    addUndoItem(window, menu, true);
    addUndoItem(window, menu, false);
    menu.addSeparator();
    QAction* cut = addCommand(window, menu, "cut", "Cu&t", QKeySequence::Cut,
                              [&] { cutFrom(window.focusWidget()); });
    QAction* copy = addCommand(window, menu, "copy", "&Copy", QKeySequence::Copy,
                               [&] { copyFrom(window.focusWidget()); });
    QAction* paste = addCommand(window, menu, "paste", "&Paste", QKeySequence::Paste, [&] {
        QWidget* target = pasteTarget(window);
        canPaste(target) ? pasteInto(target) : window.mainView().pasteTable();
    });
    // Without a shortcut: the key deletes a character in an editor, and rows in a table.
    QAction* remove = addCommand(window, menu, "delete", "&Delete", {},
                                 [&] { deleteFrom(window.focusWidget()); });
    QAction* all = addCommand(window, menu, "selectAll", "Select &All", QKeySequence::SelectAll,
                              [&] { selectAllOf(window.focusWidget()); });
    addCommand(window, menu, "copyAllMetrics", "Copy All &Metrics",
               QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C),
               [&] { window.mainView().copyAllMetrics(); });
    menu.addSeparator();
    addCommand(window, menu, "find", "&Find Species", QKeySequence::Find,
               [&] { window.mainView().findSpecies(); });
    menu.addSeparator();
    addCommand(window, menu, "preferencesMenuItemTapped", "Prefere&nces...", preferencesKey(),
               [&] { emit windows.preferencesRequested(); });
    enableWhileShown(menu, cut, [&] { return canCut(window.focusWidget()); });
    enableWhileShown(menu, paste,
                     [&] { return canPaste(pasteTarget(window)) || clipboardHoldsTable(); });
    enableWhileShown(menu, remove, [&] { return canCut(window.focusWidget()); });
    enableWhileShown(menu, copy, [&] { return canCopy(window.focusWidget()); });
    enableWhileShown(menu, all, [&] { return canSelectAll(window.focusWidget()); });
}

void addRecordMenus(MainWindowController& window) {
    QMenu& census = *window.menuBar()->addMenu("&Census");
    addCommand(window, census, "addCensusMenuItemTapped", "&Add Census",
               QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_N),
               [&] { window.document().project().addCensus(); });
    QAction* deleteCensus =
        addCommand(window, census, "deleteCensusMenuItemTapped", "&Delete Census",
                   QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Delete),
                   [&] { window.document().project().deleteCensus(); });
    enableWhileShown(census, deleteCensus, [&] { return window.mainView().canDeleteCensus(); });

    QMenu& species = *window.menuBar()->addMenu("&Species");
    QAction* addSpecies = addCommand(window, species, "addSpeciesMenuItemTapped", "&Add Species",
                                     QKeySequence(Qt::CTRL | Qt::Key_E),
                                     [&] { window.document().project().addSpecies(); });
    QAction* deleteSpecies = addCommand(window, species, "deleteSpeciesMenuItemTapped",
                                        "&Delete Species", QKeySequence(Qt::CTRL | Qt::Key_Delete),
                                        [&] { window.document().project().deleteSpecies(); });
    enableWhileShown(species, addSpecies, [&] { return window.mainView().canAddSpecies(); });
    enableWhileShown(species, deleteSpecies, [&] { return window.mainView().canDeleteSpecies(); });
}

void addAnalysisMenu(MainWindowController& window) {
    QMenu& menu = *window.menuBar()->addMenu("&Analysis");
    addCommand(window, menu, "projectwideMetricsMenuItemTapped", "&Project-Wide Metrics",
               QKeySequence(Qt::CTRL | Qt::Key_M),
               [&] { window.mainView().calculateProjectWideMetrics(); });
    addCommand(window, menu, "individualBasedRarefactionMenuItemTapped",
               "&Individual-Based Rarefaction", QKeySequence(Qt::CTRL | Qt::Key_R),
               [&] { window.mainView().individualBasedRarefaction(); });
    addCommand(window, menu, "sampleBasedRarefactionMenuItemTapped", "&Sample-Based Rarefaction",
               QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_R),
               [&] { window.mainView().sampleBasedRarefaction(); });
}

void addViewMenu(MainWindowController& window, LookChoice& look) {
    QMenu& menu = *window.menuBar()->addMenu("&View");
    auto* group = new QActionGroup(&window);
    const struct {
        LookChoice::Choice choice;
        const char* name;
        QString title;
    } items[] = {{LookChoice::light, "lightLook", "&Light"},
                 {LookChoice::dark, "darkLook", "&Dark"},
                 {LookChoice::followDesktop, "followDesktop", "&Follow Desktop"}};
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
    QMenu& menu = *window.menuBar()->addMenu("&Help");
    addCommand(window, menu, "showHelp", "Zorvel &Help", QKeySequence::HelpContents,
               [&] { emit windows.helpRequested(); });
    menu.addSeparator();
    addCommand(window, menu, "websiteMenuItemTapped", "Zorvel &Web Site", {},
               [&] { emit windows.websiteRequested(); });
    addCommand(window, menu, "emailSupportMenuItemTapped", "&Send Mail to Support", {},
               [&] { emit windows.supportRequested(); });
    menu.addSeparator();
    QAction* about = addItem(menu, "about", "&About Zorvel");
    QObject::connect(about, &QAction::triggered, &window, [&window] { showAbout(&window); });
}

QKeySequence keyOr(QKeySequence::StandardKey standard, const QKeySequence& common) {
    const QKeySequence key(standard);
    return key.isEmpty() ? common : key;
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

QKeySequence closeKey() {
    return keyOr(QKeySequence::Close, Qt::CTRL | Qt::Key_W);
}

QKeySequence saveAsKey() {
    return keyOr(QKeySequence::SaveAs, Qt::CTRL | Qt::SHIFT | Qt::Key_S);
}

QKeySequence preferencesKey() {
    return keyOr(QKeySequence::Preferences, Qt::CTRL | Qt::Key_Comma);
}

QAction* addKeyCommand(QWidget& window, const char* name, const QList<QKeySequence>& keys) {
    auto* action = new QAction(&window);
    action->setObjectName(name);
    action->setShortcuts(keys);
    window.addAction(action);
    return action;
}

}  // namespace zorvel
