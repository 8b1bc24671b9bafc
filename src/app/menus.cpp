#include "app/menus.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>

#include "app/about.h"
#include "app/edit_commands.h"
#include "app/look_choice.h"
#include "app/project_windows.h"
#include "ui/main/main_window_controller.h"

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

void addFileMenu(MainWindowController& window, ProjectWindows& windows) {
    QMenu& menu = *window.menuBar()->addMenu(tr("&File"));
    QObject::connect(addItem(menu, "openDocument", tr("&Open..."), QKeySequence::Open),
                     &QAction::triggered, &window, [&] { windows.chooseFile(window); });
    menu.addSeparator();
    QObject::connect(addItem(menu, "performClose", tr("&Close"), QKeySequence::Close),
                     &QAction::triggered, &window, &QWidget::close);
    QObject::connect(addItem(menu, "terminate", tr("&Quit"), QKeySequence(Qt::CTRL | Qt::Key_Q)),
                     &QAction::triggered, &window, [] { QApplication::closeAllWindows(); });
}

// The items tell, while the menu is open, whether they would do something; their shortcuts are
// always there, since the focus may have moved.
void addEditMenu(MainWindowController& window) {
    QMenu& menu = *window.menuBar()->addMenu(tr("&Edit"));
    QAction* copy = addItem(menu, "copy", tr("&Copy"), QKeySequence::Copy);
    QAction* all = addItem(menu, "selectAll", tr("Select &All"), QKeySequence::SelectAll);
    QObject::connect(copy, &QAction::triggered, &window, [&] { copyFrom(window.focusWidget()); });
    QObject::connect(all, &QAction::triggered, &window, [&] { selectAllOf(window.focusWidget()); });
    QObject::connect(&menu, &QMenu::aboutToShow, &window, [&window, copy, all] {
        copy->setEnabled(canCopy(window.focusWidget()));
        all->setEnabled(canSelectAll(window.focusWidget()));
    });
    QObject::connect(&menu, &QMenu::aboutToHide, &window, [copy, all] {
        copy->setEnabled(true);
        all->setEnabled(true);
    });
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
}

void addHelpMenu(MainWindowController& window) {
    QMenu& menu = *window.menuBar()->addMenu(tr("&Help"));
    QAction* about = addItem(menu, "about", tr("&About Zorvel"));
    QObject::connect(about, &QAction::triggered, &window, [&window] { showAbout(&window); });
}

}  // namespace

void addMenus(MainWindowController& window, ProjectWindows& windows, LookChoice& look) {
    addFileMenu(window, windows);
    addEditMenu(window);
    addViewMenu(window, look);
    addHelpMenu(window);
}

}  // namespace zorvel
