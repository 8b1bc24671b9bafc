// The menus whose contents change: recent files, sort orders, and the windows.
#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QFileInfo>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QTableView>
#include <algorithm>
#include <vector>

#include "app/menus.h"
#include "app/project_windows.h"
#include "platform/document_controller.h"
#include "ui/analysis/plot_page.h"
#include "ui/kit/shown_text.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"

namespace zorvel {

namespace {

// With doubled ampersands, which would underline letters.
QString asMenuTitle(const QString& text) {
    return shortened(oneLine(text), 80).replace('&', "&&");
}

// Files of the same name are told apart by their folders.
QString recentTitle(const QString& path, const QStringList& paths) {
    const QString name = QFileInfo(path).fileName();
    const auto hasName = [&](const QString& other) { return QFileInfo(other).fileName() == name; };
    const bool unique = std::count_if(paths.begin(), paths.end(), hasName) == 1;
    return asMenuTitle(unique ? name : QString("%1 – %2").arg(name, QFileInfo(path).path()));
}

void fillRecentMenu(QMenu& menu, MainWindowController& window, ProjectWindows& windows) {
    menu.clear();
    const QStringList paths = windows.documents().recentPaths();
    for (const QString& path : paths) {
        QAction* item = menu.addAction(recentTitle(path, paths));
        item->setToolTip(oneLine(path));
        item->setData(path);
        QObject::connect(item, &QAction::triggered, &window,
                         [path, &window, &windows] { windows.openFiles({path}, &window); });
    }
    menu.addSeparator();
    QAction* clear = menu.addAction("&Clear Menu");
    clear->setObjectName("clearRecentDocuments");
    clear->setEnabled(!paths.isEmpty());
    QObject::connect(clear, &QAction::triggered, &windows.documents(),
                     &DocumentController::clearRecentPaths);
}

// The user may be choosing from the menu: items are hidden, not removed.
void hideMissing(QMenu& menu, const QStringList& there) {
    for (QAction* item : menu.actions()) {
        const QString path = item->data().toString();
        if (!path.isEmpty()) item->setVisible(there.contains(path));
    }
}

QString titleOfColumn(const QTableView& table, int column) {
    const QString title = table.model()->headerData(column, Qt::Horizontal).toString();
    return title.isEmpty() ? "Included" : title;
}

// Choosing a column again reverses its order.
void sortBy(QTableView& table, int column) {
    QHeaderView& header = *table.horizontalHeader();
    const bool again = header.sortIndicatorSection() == column &&
                       header.sortIndicatorOrder() == Qt::AscendingOrder;
    header.setSortIndicator(column, again ? Qt::DescendingOrder : Qt::AscendingOrder);
}

// The current column is marked; a descending order is named.
void addSortMenu(QMenu& menu, MainWindowController& window, const QString& title,
                 const char* tableName) {
    auto* const table = window.findChild<QTableView*>(tableName);
    QMenu* sorts = menu.addMenu(title);
    sorts->setObjectName(QString(tableName) + "SortMenu");
    auto* group = new QActionGroup(sorts);
    const auto add = [&](const QString& text, int column) {
        QAction* action = group->addAction(sorts->addAction(text));
        action->setCheckable(true);
        QObject::connect(action, &QAction::triggered, &window, [&window, table, column] {
            if (window.mainView().commitEditing()) sortBy(*table, column);
        });
        QObject::connect(sorts, &QMenu::aboutToShow, action, [table, action, text, column] {
            const QHeaderView& header = *table->horizontalHeader();
            const bool current = header.sortIndicatorSection() == column;
            const bool backwards =
                current && column >= 0 && header.sortIndicatorOrder() == Qt::DescendingOrder;
            action->setChecked(current);
            action->setText(backwards ? QString("%1 (descending)").arg(text) : text);
        });
    };
    const QAbstractItemModel& model = *table->model();
    for (int column = 0; column < model.columnCount(); ++column) {
        add(titleOfColumn(*table, column), column);
    }
    sorts->addSeparator();
    add("As Entered", -1);
}

QString titleOf(const QWidget& window) {
    QString title = window.windowTitle().remove("[*]");
    const auto* plot = window.findChild<PlotPage*>();
    if (plot != nullptr && !plot->subject().isEmpty()) title += " \u2014 " + plot->subject();
    return title;
}

// The windows on the screen, minimised ones too, sorted by title. Dialogs and popups are no
// QMainWindow.
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

// Windows of the same title are told apart by the folders of their projects, then by numbers in the
// order in which they were opened.
QStringList menuTitles(const std::vector<QMainWindow*>& windows) {
    QStringList titles;
    for (const QMainWindow* window : windows) titles.append(asMenuTitle(titleOf(*window)));
    const QStringList names = titles;
    for (qsizetype i = 0; i < titles.size(); ++i) {
        const QString file = windows[static_cast<std::size_t>(i)]->windowFilePath();
        if (names.count(names[i]) > 1 && !file.isEmpty()) {
            titles[i] += " – " + asMenuTitle(QFileInfo(file).path());
        }
    }
    const QStringList places = titles;
    for (qsizetype i = 0; i < titles.size(); ++i) {
        if (places.count(places[i]) == 1) continue;
        titles[i] += QString(" (%1)").arg(places.first(i + 1).count(places[i]));
    }
    return titles;
}

void fillWindowList(QMenu& menu, QActionGroup& group, const MainWindowController& window) {
    qDeleteAll(group.actions());
    const std::vector<QMainWindow*> open = openWindows();
    const QStringList titles = menuTitles(open);
    for (std::size_t i = 0; i < open.size(); ++i) {
        QMainWindow* const each = open[i];
        QAction* action = group.addAction(new QAction(titles[static_cast<int>(i)], &group));
        action->setCheckable(true);
        action->setChecked(each == &window);
        QObject::connect(action, &QAction::triggered, each, [each] { bringToFront(*each); });
        menu.addAction(action);
    }
}

}  // namespace

void keepRecentMenu(QMenu& menu, MainWindowController& window, ProjectWindows& windows) {
    menu.setToolTipsVisible(true);
    DocumentController& documents = windows.documents();
    QObject::connect(&menu, &QMenu::aboutToShow, &window, [&] {
        fillRecentMenu(menu, window, windows);
        windows.documents().lookForRecentPaths();
    });
    QObject::connect(&documents, &DocumentController::recentPathsDidChange, &menu,
                     [&] { hideMissing(menu, windows.documents().recentPaths()); });
    fillRecentMenu(menu, window, windows);
}

void addSortMenus(QMenu& menu, MainWindowController& window) {
    addSortMenu(menu, window, "Sort &Censuses", "censusTable");
    addSortMenu(menu, window, "Sort &Species", "speciesTable");
}

void addWindowMenu(MainWindowController& window) {
    QMenu& menu = *window.menuBar()->addMenu("&Window");
    menu.setObjectName("windowMenu");
    const auto add = [&](const char* name, const QString& title, auto run) {
        QAction* action = menu.addAction(title);
        action->setObjectName(name);
        QObject::connect(action, &QAction::triggered, &window, run);
        return action;
    };
    add("performMiniaturize", "&Minimize", [&window] { window.showMinimized(); });
    QAction* zoom = add("performZoom", "Ma&ximize", [&window] { toggleZoom(window); });
    zoom->setCheckable(true);
    add("arrangeInFront", "&Bring All to Front", [&window] { arrangeInFront(window); });
    menu.addSeparator();
    auto* group = new QActionGroup(&menu);
    QObject::connect(&menu, &QMenu::aboutToShow, group, [&menu, group, zoom, &window] {
        zoom->setChecked(window.isMaximized());
        fillWindowList(menu, *group, window);
    });
}

}  // namespace zorvel
