#include "app/menus.h"

#include <QAction>
#include <QActionGroup>
#include <QMenu>
#include <QMenuBar>
#include <utility>

#include "app/application_delegate.h"
#include "app/document_commands.h"
#include "app/edit_commands.h"
#include "app/exports.h"
#include "app/imports.h"
#include "app/look_choice.h"
#include "app/project_windows.h"
#include "app/table_imports.h"
#include "platform/document_controller.h"
#include "ui/main/clipboard_rows.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"
#include "ui/main/record_tables.h"

namespace zorvel {

namespace {

constexpr QKeyCombination quitKey = Qt::CTRL | Qt::Key_Q;

// The desktop's key of a command, or the common one on a desktop without.
QKeySequence keyOr(QKeySequence::StandardKey standard, const QKeySequence& common) {
    const QKeySequence key(standard);
    return key.isEmpty() ? common : key;
}

QKeySequence closeKey() {
    return keyOr(QKeySequence::Close, Qt::CTRL | Qt::Key_W);
}

QKeySequence preferencesKey() {
    return keyOr(QKeySequence::Preferences, Qt::CTRL | Qt::Key_Comma);
}

QAction* addItem(QMenu& menu, const char* name, const QString& title,
                 const QKeySequence& shortcut = {}) {
    QAction* action = menu.addAction(title);
    action->setObjectName(name);
    action->setShortcut(shortcut);
    return action;
}

// While its menu is open, an item is disabled if it would do nothing. Its shortcut always works,
// since the conditions may have changed by then.
void enableWhileShown(QMenu& menu, QAction* action, std::function<bool()> can) {
    QObject::connect(&menu, &QMenu::aboutToShow, action,
                     [action, can = std::move(can)] { action->setEnabled(can()); });
    QObject::connect(&menu, &QMenu::aboutToHide, action, [action] { action->setEnabled(true); });
}

// Adds commands to a menu of the window, which are run until the window is closed.
class CommandMenu {
  public:
    CommandMenu(MainWindowController& window, QMenu& menu) : window_(window), menu_(menu) {}
    CommandMenu(MainWindowController& window, const char* title)
        : CommandMenu(window, *window.menuBar()->addMenu(title)) {}

    // can: whether the command would do anything; null if always.
    void add(const char* name, const QString& title, const QKeySequence& shortcut,
             std::function<void()> run, std::function<bool()> can = nullptr) const {
        QAction* action = addItem(menu_, name, title, shortcut);
        QObject::connect(action, &QAction::triggered, &window_, std::move(run));
        if (can) enableWhileShown(menu_, action, std::move(can));
    }
    [[nodiscard]] CommandMenu addMenu(const char* name, const QString& title) const {
        QMenu* menu = menu_.addMenu(title);
        menu->setObjectName(name);
        return {window_, *menu};
    }
    void addSeparator() const { menu_.addSeparator(); }
    [[nodiscard]] QMenu& menu() const { return menu_; }

  private:
    MainWindowController& window_;
    QMenu& menu_;
};

void addImportMenu(const CommandMenu& file, MainWindowController& window, ProjectWindows& windows) {
    const CommandMenu menu = file.addMenu("importMenu", "&Import");
    const auto add = [&](const char* name, const QString& title, FileKind kind) {
        menu.add(name, title, {}, [&, kind] { runImport(windows, &window, kind); });
    };
    add("importAbundanceListMenuItemTapped", "&Abundance List...", FileKind::list);
    add("importOneCensusMenuItemTapped", "&Single Census...", FileKind::census);
    add("importCensusMatrixMenuItemTapped", "Census &Matrix...", FileKind::matrix);
    add("importIOSFileMenuItemTapped", "&Phone-App File...", FileKind::ios);
    menu.add("importTableMenuItemTapped", "&Table...", {},
             [&] { runTableImport(windows, &window); });
    menu.addSeparator();
    menu.add("importSpeciesListMenuItemTapped", "Species &List...", {},
             [&] { importSpeciesList(windows, &window); });
}

void addExportMenu(const CommandMenu& file, MainWindowController& window, ProjectWindows& windows) {
    const CommandMenu menu = file.addMenu("exportMenu", "&Export");
    const auto add = [&](const char* name, const QString& title, Exports::Kind kind) {
        menu.add(name, title, {}, [&, kind] { windows.exports().start(kind, &window); });
    };
    add("exportCensusMatrixMenuItemTapped", "Census &Matrix...", Exports::censusMatrix);
    add("exportMetricsMenuItemTapped", "Me&trics...", Exports::metrics);
    add("exportLongTableMenuItemTapped", "&Long Table...", Exports::longTable);
    add("exportDiversityTableMenuItemTapped", "&Diversity Table...", Exports::diversityTable);
}

void addFileMenu(MainWindowController& window, ProjectWindows& windows) {
    const CommandMenu menu(window, "&File");
    menu.add("newDocument", "&New", QKeySequence::New, [&] { windows.openUntitled(); });
    menu.add("openDocument", "&Open...", QKeySequence::Open, [&] { windows.chooseFile(window); });
    keepRecentMenu(menu.addMenu("recentMenu", "Open &Recent").menu(), window, windows);
    menu.addSeparator();
    menu.add("performClose", "&Close", closeKey(), [&] { window.close(); });
    menu.add("saveDocument", "&Save", QKeySequence::Save,
             [&] { saveDocument(window, windows.panels()); });
    menu.add("saveDocumentAs", "Save &As...",
             keyOr(QKeySequence::SaveAs, Qt::CTRL | Qt::SHIFT | Qt::Key_S),
             [&] { saveWindowAs(window, windows.panels()); });
    menu.add("duplicateDocument", "&Duplicate", {}, [&] {
        if (window.mainView().commitEditing()) windows.documents().duplicate(window.document());
    });
    menu.add(
        "revertToOpening", "Re&vert to Opening State...", {},
        [&] { revertToOpening(window, windows.panels()); },
        [&] { return window.document().canRevert(); });
    menu.add(
        "browseBackups", "&Browse Backups...", {}, [&] { browseBackups(window, windows); },
        [&] { return !window.document().isUntitled(); });
    menu.addSeparator();
    addImportMenu(menu, window, windows);
    addExportMenu(menu, window, windows);
    menu.addSeparator();
    menu.add(
        "print", "&Print...", QKeySequence::Print, [&] { emit windows.printRequested(&window); },
        [&] { return window.mainView().canDeleteCensus(); });
    menu.addSeparator();
    menu.add("terminate", "&Quit", quitKey, [&] { windows.quit(); });
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
    if (canPaste(focus) || !empty || !clipboardData().hasFormat(copiedCensusesType)) return focus;
    return window.findChild<CensusTableView*>();
}

void addEditMenu(MainWindowController& window, ProjectWindows& windows) {
    const CommandMenu menu(window, "&Edit");
    addUndoItem(window, menu.menu(), true);
    addUndoItem(window, menu.menu(), false);
    menu.addSeparator();
    const auto addOfFocus = [&](const char* name, const QString& title,
                                const QKeySequence& shortcut, void (*run)(QWidget*),
                                bool (*can)(const QWidget*)) {
        menu.add(
            name, title, shortcut, [&window, run] { run(window.focusWidget()); },
            [&window, can] { return can(window.focusWidget()); });
    };
    addOfFocus("cut", "Cu&t", QKeySequence::Cut, cutFrom, canCut);
    addOfFocus("copy", "&Copy", QKeySequence::Copy, copyFrom, canCopy);
    menu.add(
        "paste", "&Paste", QKeySequence::Paste,
        [&] {
            QWidget* target = pasteTarget(window);
            canPaste(target) ? pasteInto(target) : window.mainView().pasteTable();
        },
        [&] { return canPaste(pasteTarget(window)) || mayBeTable(clipboardData()); });
    // Without a shortcut: the key deletes a character in an editor, and rows in a table.
    addOfFocus("delete", "&Delete", {}, deleteFrom, canCut);
    addOfFocus("selectAll", "Select &All", QKeySequence::SelectAll, selectAllOf, canSelectAll);
    menu.add("copyAllMetrics", "Copy All &Metrics", Qt::CTRL | Qt::SHIFT | Qt::Key_C,
             [&] { window.mainView().copyAllMetrics(); });
    menu.addSeparator();
    menu.add("find", "&Find Species", QKeySequence::Find, [&] { window.mainView().findSpecies(); });
    menu.addSeparator();
    menu.add("preferencesMenuItemTapped", "Prefere&nces...", preferencesKey(),
             [&] { emit windows.preferencesRequested(); });
}

void addRecordMenus(MainWindowController& window) {
    const CommandMenu census(window, "&Census");
    census.add("addCensusMenuItemTapped", "&Add Census", Qt::CTRL | Qt::SHIFT | Qt::Key_N,
               [&] { window.document().project().addCensus(); });
    census.add(
        "deleteCensusMenuItemTapped", "&Delete Census", Qt::CTRL | Qt::SHIFT | Qt::Key_Delete,
        [&] { window.document().project().deleteCensus(); },
        [&] { return window.mainView().canDeleteCensus(); });
    const CommandMenu species(window, "&Species");
    species.add(
        "addSpeciesMenuItemTapped", "&Add Species", Qt::CTRL | Qt::Key_E,
        [&] { window.document().project().addSpecies(); },
        [&] { return window.mainView().canAddSpecies(); });
    species.add(
        "deleteSpeciesMenuItemTapped", "&Delete Species", Qt::CTRL | Qt::Key_Delete,
        [&] { window.document().project().deleteSpecies(); },
        [&] { return window.mainView().canDeleteSpecies(); });
}

void addAnalysisMenu(MainWindowController& window) {
    const CommandMenu menu(window, "&Analysis");
    menu.add("projectwideMetricsMenuItemTapped", "&Project-Wide Metrics", Qt::CTRL | Qt::Key_M,
             [&] { window.mainView().calculateProjectWideMetrics(); });
    menu.add("individualBasedRarefactionMenuItemTapped", "&Individual-Based Rarefaction",
             Qt::CTRL | Qt::Key_R, [&] { window.mainView().individualBasedRarefaction(); });
    menu.add("sampleBasedRarefactionMenuItemTapped", "&Sample-Based Rarefaction",
             Qt::CTRL | Qt::SHIFT | Qt::Key_R, [&] { window.mainView().sampleBasedRarefaction(); });
    menu.add("diversityAtEqualCoverageMenuItemTapped", "&Diversity at Equal Coverage...",
             Qt::CTRL | Qt::SHIFT | Qt::Key_D,
             [&] { window.mainView().diversityAtEqualCoverage(); });
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
    const CommandMenu menu(window, "&Help");
    menu.add("showHelp", "Zorvel &Help", QKeySequence::HelpContents,
             [&] { emit windows.helpRequested(); });
    menu.addSeparator();
    menu.add("websiteMenuItemTapped", "Zorvel &Web Site", {},
             [&] { emit windows.websiteRequested(); });
    menu.add("emailSupportMenuItemTapped", "&Send Mail to Support", {},
             [&] { emit windows.supportRequested(); });
    menu.addSeparator();
    menu.add("about", "&About Zorvel", {}, [&window] { showAbout(&window); });
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

void addKeyCommand(QWidget& window, const char* name, const QList<QKeySequence>& keys,
                   const std::function<void()>& run) {
    auto* action = new QAction(&window);
    action->setObjectName(name);
    action->setShortcuts(keys);
    window.addAction(action);
    QObject::connect(action, &QAction::triggered, &window, run);
}

void addCommonKeyCommands(QWidget& window, ProjectWindows& windows,
                          const QList<QKeySequence>& closeKeys) {
    addKeyCommand(window, "performClose", QList<QKeySequence>{closeKey()} + closeKeys,
                  [&] { window.close(); });
    addKeyCommand(window, "terminate", {quitKey}, [&] { windows.quit(); });
    addKeyCommand(window, "preferencesMenuItemTapped", {preferencesKey()},
                  [&] { emit windows.preferencesRequested(); });
}

}  // namespace zorvel
