#include "app/sort_menu.h"

#include <QAction>
#include <QActionGroup>
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

// The order of a column is marked, and named where it runs backwards.
void addSortMenu(QMenu& menu, MainWindowController& window, const QString& title,
                 const char* tableName) {
    // Another project in the window has tables of its own: they are looked for when needed.
    const auto table = [&window, tableName] { return window.findChild<QTableView*>(tableName); };
    QMenu* sorts = menu.addMenu(title);
    sorts->setObjectName(QString(tableName) + "SortMenu");
    auto* group = new QActionGroup(sorts);
    const auto add = [&](const QString& text, int column) {
        QAction* action = group->addAction(sorts->addAction(text));
        action->setCheckable(true);
        QObject::connect(action, &QAction::triggered, &window, [&window, table, column] {
            if (window.mainView().commitEditing()) sortBy(*table(), column);
        });
        QObject::connect(sorts, &QMenu::aboutToShow, action, [table, action, text, column] {
            const QHeaderView& header = *table()->horizontalHeader();
            const bool current = header.sortIndicatorSection() == column;
            const bool backwards =
                current && column >= 0 && header.sortIndicatorOrder() == Qt::DescendingOrder;
            action->setChecked(current);
            action->setText(backwards ? tr("%1 (descending)").arg(text) : text);
        });
    };
    const QAbstractItemModel& model = *table()->model();
    for (int column = 0; column < model.columnCount(); ++column) {
        add(titleOfColumn(*table(), column), column);
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
