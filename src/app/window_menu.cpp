#include "app/window_menu.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <algorithm>
#include <vector>

#include "ui/analysis/rarefaction_view_controller.h"
#include "ui/kit/shown_text.h"
#include "ui/main/main_window_controller.h"

namespace zorvel {

namespace {

constexpr qsizetype longestTitle = 80;  // characters

QString tr(const char* text) {
    return QCoreApplication::translate("Menus", text);
}

QString titleOf(const QWidget& window) {
    QString title = window.windowTitle().remove("[*]");
    if (const auto* plot = qobject_cast<const RarefactionWindowController*>(&window)) {
        const QString& subject = plot->viewController().subject();
        if (!subject.isEmpty()) title += " \u2014 " + subject;
    }
    return title;
}

// All that are on the screen, minimised ones too, by their titles. Questions and popups, which
// belong to a window, are no QMainWindow.
std::vector<QMainWindow*> openWindows() {
    std::vector<QMainWindow*> open;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        auto* window = qobject_cast<QMainWindow*>(widget);
        if (window != nullptr && !window->isHidden()) open.push_back(window);
    }
    std::sort(open.begin(), open.end(), [](const QMainWindow* a, const QMainWindow* b) {
        const int order = QString::localeAwareCompare(titleOf(*a), titleOf(*b));
        return order != 0 ? order < 0 : a->winId() < b->winId();
    });
    return open;
}

void bringToFront(QWidget& window) {
    if (window.isMinimized()) window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.raise();
    window.activateWindow();
}

// The window that has the menu stays the foremost.
void arrangeInFront(QMainWindow& foremost) {
    for (QMainWindow* window : openWindows()) {
        if (window != &foremost && !window->isMinimized()) window->raise();
    }
    foremost.raise();
}

void toggleZoom(QWidget& window) {
    window.isMaximized() ? window.showNormal() : window.showMaximized();
}

void fillWindowList(QMenu& menu, QActionGroup& group, const MainWindowController& window) {
    qDeleteAll(group.actions());
    for (QMainWindow* each : openWindows()) {
        const QString title = shortened(titleOf(*each), longestTitle).replace('&', "&&");
        QAction* action = group.addAction(new QAction(title, &group));
        action->setCheckable(true);
        action->setChecked(each == &window);
        QObject::connect(action, &QAction::triggered, each, [each] { bringToFront(*each); });
        menu.addAction(action);
    }
}

}  // namespace

void addWindowMenu(MainWindowController& window) {
    QMenu& menu = *window.menuBar()->addMenu(tr("&Window"));
    menu.setObjectName("windowMenu");
    const auto add = [&](const char* name, const QString& title, auto run) {
        QAction* action = menu.addAction(title);
        action->setObjectName(name);
        QObject::connect(action, &QAction::triggered, &window, run);
        return action;
    };
    add("performMiniaturize", tr("&Minimize"), [&window] { window.showMinimized(); });
    QAction* zoom = add("performZoom", tr("Ma&ximize"), [&window] { toggleZoom(window); });
    zoom->setCheckable(true);
    add("arrangeInFront", tr("&Bring All to Front"), [&window] { arrangeInFront(window); });
    menu.addSeparator();
    auto* group = new QActionGroup(&menu);
    QObject::connect(&menu, &QMenu::aboutToShow, group, [&menu, group, zoom, &window] {
        zoom->setChecked(window.isMaximized());
        fillWindowList(menu, *group, window);
    });
}

}  // namespace zorvel
