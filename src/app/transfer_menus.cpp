#include "app/transfer_menus.h"

#include <QAction>
#include <QCoreApplication>
#include <QMenu>
#include <functional>
#include <utility>

#include "app/exports.h"
#include "app/imports.h"
#include "app/project_windows.h"
#include "app/species_list_command.h"
#include "ui/main/main_window_controller.h"

namespace zorvel {

namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("Menus", text);
}

void addCommand(QMenu& menu, const char* name, const QString& title, std::function<void()> run) {
    QAction* action = menu.addAction(title);
    action->setObjectName(name);
    QObject::connect(action, &QAction::triggered, &menu, std::move(run));
}

void addImportMenu(QMenu& file, MainWindowController& window, ProjectWindows& windows) {
    QMenu& menu = *file.addMenu(tr("&Import"));
    menu.setObjectName("importMenu");
    const auto add = [&](const char* name, const QString& title, FileKind kind) {
        addCommand(menu, name, title, [&, kind] { runImport(windows, &window, kind); });
    };
    add("importAbundanceListMenuItemTapped", tr("&Abundance List..."), FileKind::list);
    add("importOneCensusMenuItemTapped", tr("&Single Census..."), FileKind::census);
    add("importCensusMatrixMenuItemTapped", tr("Census &Matrix..."), FileKind::matrix);
    add("importIOSFileMenuItemTapped", tr("&Phone-App File..."), FileKind::ios);
    menu.addSeparator();
    addCommand(menu, "importSpeciesListMenuItemTapped", tr("Species &List..."),
               [&] { importSpeciesList(windows, &window); });
}

void addExportMenu(QMenu& file, MainWindowController& window, ProjectWindows& windows) {
    QMenu& menu = *file.addMenu(tr("&Export"));
    menu.setObjectName("exportMenu");
    addCommand(menu, "exportCensusMatrixMenuItemTapped", tr("Census &Matrix..."),
               [&] { windows.exports().exportCensusMatrix(&window); });
    addCommand(menu, "exportMetricsMenuItemTapped", tr("Me&trics..."),
               [&] { windows.exports().exportMetrics(&window); });
}

}  // namespace

void addTransferMenus(QMenu& file, MainWindowController& window, ProjectWindows& windows) {
    addImportMenu(file, window, windows);
    addExportMenu(file, window, windows);
}

}  // namespace zorvel
