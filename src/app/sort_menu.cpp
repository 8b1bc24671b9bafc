#include "app/sort_menu.h"

#include <QAction>
#include <QCoreApplication>
#include <QHeaderView>
#include <QMenu>
#include <QTableView>

#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"

namespace zorvel {

namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("Menus", text);
}

QString titleOfColumn(const QTableView& table, int column) {
    const QString title = table.model()->headerData(column, Qt::Horizontal).toString();
    return title.isEmpty() ? tr("Included") : title;
}

// Chosen once more, a column sorts the other way round.
void sortBy(QTableView& table, int column) {
    QHeaderView& header = *table.horizontalHeader();
    const bool again = header.sortIndicatorSection() == column &&
                       header.sortIndicatorOrder() == Qt::AscendingOrder;
    header.setSortIndicator(column, again ? Qt::DescendingOrder : Qt::AscendingOrder);
}

void addSortMenu(QMenu& menu, MainWindowController& window, const QString& title,
                 const char* tableName) {
    // Another project in the window has tables of its own: they are looked for when needed.
    const auto* first = window.findChild<QTableView*>(tableName);
    QMenu* sorts = menu.addMenu(title);
    sorts->setObjectName(QString(tableName) + "SortMenu");
    const auto add = [&](const QString& text, int column) {
        QObject::connect(sorts->addAction(text), &QAction::triggered, &window,
                         [&window, tableName, column] {
                             if (!window.mainView().commitEditing()) return;
                             sortBy(*window.mainView().findChild<QTableView*>(tableName), column);
                         });
    };
    for (int column = 0; column < first->model()->columnCount(); ++column) {
        add(titleOfColumn(*first, column), column);
    }
    sorts->addSeparator();
    add(tr("As Entered"), -1);
}

}  // namespace

void addSortMenus(QMenu& menu, MainWindowController& window) {
    addSortMenu(menu, window, tr("Sort &Censuses"), "censusTable");
    addSortMenu(menu, window, tr("Sort &Species"), "speciesTable");
}

}  // namespace zorvel
