#include "app/table_imports.h"

#include <QFileInfo>
#include <QPointer>
#include <functional>
#include <memory>
#include <utility>

#include "app/imports.h"
#include "app/project_windows.h"
#include "model/import.h"
#include "platform/file_reading.h"
#include "platform/job_queue.h"
#include "tables/reader.h"
#include "tables/source.h"
#include "ui/kit/panels.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"
#include "ui/tables/table_dialog.h"
#include "ui/tables/table_input.h"

namespace zorvel {

namespace {

using Input = std::shared_ptr<const TableInput>;
using Source = std::shared_ptr<const TableSource>;

// Rows with problems that only the pass over all of them has found. Written by the job, read after
// it.
using FoundRows = std::shared_ptr<TableRows>;

// Reads the table in a job.
CensusReader readerOf(const Source& source, const TableReading& reading, const FoundRows& found) {
    return [=](const std::stop_token& stop, NamePool* names) -> ReadCensuses {
        const auto rows = source->rows(reading.form, stop);
        TableRecords records = readTable(*rows, reading, stop, names);
        ReadCensuses result;
        if (stop.stop_requested()) return result;
        if (const auto problem = rows->problem()) {
            result.parsed.advice = problem->message;
        } else if (records.problems.count > 0) {
            *found = rowsOfProblems(*source->rows(reading.form, stop), records.problems);
            result.parsed.advice = remarkText(records.problems.kept.front());
        } else {
            result.parsed.value = std::move(records.censuses);
            result.excluded = std::move(records.excluded);
        }
        return result;
    };
}

// A table on its way into a project; shown by the dialog, which goes with its window.
struct TableImport {
    ProjectWindows& windows;
    CommandWindow command;
    QString name;
};

void startTableImport(const std::shared_ptr<TableImport>& import,
                      const QPointer<TableDialog>& dialog) {
    if (dialog == nullptr) return;
    // A table that is refused is read again into the same new project.
    if (!import->command.given) import->command = CommandWindow(&import->windows.openUntitled());
    Document* document = currentOrNewDocument(import->windows, import->command);
    if (document == nullptr) return dialog->deleteLater();
    const auto found = std::make_shared<TableRows>();
    const auto ended = [=](const ImportReport& report) {
        const bool refused = report.outcome == ImportReport::Outcome::refused;
        if (refused && dialog && !found->empty()) {
            dialog->showFound(std::move(*found));
            return dialog->open();
        }
        tellOfImport(*document, import->name, report);
        if (dialog) dialog->deleteLater();
    };
    importTable(readerOf(dialog->source(), dialog->reading(), found), document->project(),
                importServices(*document, import->windows, ended));
}

// name: in messages. parent: of the dialog, may be null. next: called when the dialog is gone; may
// be null.
void showTable(ProjectWindows& windows, const CommandWindow& command, QWidget* parent,
               const QString& name, const QString& heading, const Result<Input>& table,
               const std::function<void()>& next) {
    if (command.isGone()) return;
    if (!table) {
        windows.panels().alerts.warn(parent, QString("“%1” could not be read").arg(name),
                                     QString::fromStdString(table.problem().message));
        if (next) next();
        return;
    }
    const QPointer<TableDialog> dialog(
        new TableDialog(heading, table.value(), windows.jobs(), parent));
    const auto import = std::make_shared<TableImport>(TableImport{windows, command, name});
    QObject::connect(dialog, &QDialog::accepted, dialog,
                     [import, dialog] { startTableImport(import, dialog); });
    QObject::connect(dialog, &QDialog::rejected, dialog, &QObject::deleteLater);
    // Later: the dialog may go with its window, which is then half destroyed.
    if (next) QObject::connect(dialog, &QObject::destroyed, &windows, next, Qt::QueuedConnection);
    dialog->open();
}

}  // namespace

void runTableImport(ProjectWindows& windows, MainWindowController* window) {
    const CommandWindow command(window);
    const QString path = windows.panels().open.chooseTable(window);
    if (path.isEmpty()) return;
    importTableFiles(windows, command, {std::make_shared<NamedFile>(path)}, command.window);
}

void importTableFiles(ProjectWindows& windows, const CommandWindow& command,
                      const std::vector<std::shared_ptr<NamedFile>>& files,
                      MainWindowController* parent) {
    if (files.empty()) return;
    const QPointer<MainWindowController> guard(parent);
    const QPointer<MainViewController> view(parent != nullptr ? &parent->mainView() : nullptr);
    const QString name = QFileInfo(files.front()->path).fileName();
    const MainView::ProgressId progress =
        view ? view->startProgress(QString("reading %1...").arg(name).toStdString(), nullptr) : 0;
    const auto next = [=, &windows, rest = std::vector(files.begin() + 1, files.end())] {
        importTableFiles(windows, command, rest, guard);
    };
    windows.jobs().start(
        &windows,
        [file = files.front()]() -> Result<Input> {
            Result<TableInput> input = tableInput(file->take());
            if (!input) return input.problem();
            return std::make_shared<const TableInput>(std::move(input).value());
        },
        [=, &windows](const Result<Input>& table) {
            if (view) view->stopProgress(progress);
            showTable(windows, command, guard, name, name, table, next);
        });
}

void importTableText(ProjectWindows& windows, MainWindowController& window, const QString& name,
                     std::string text) {
    showTable(windows, CommandWindow(&window), &window, name, "Table from " + name,
              Result<Input>(std::make_shared<const TableInput>(tableInput(std::move(text)))),
              nullptr);
}

}  // namespace zorvel
