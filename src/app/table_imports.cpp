#include "app/table_imports.h"

#include <QFileInfo>
#include <QPointer>
#include <functional>
#include <memory>
#include <utility>

#include "app/imports.h"
#include "app/project_windows.h"
#include "model/import.h"
#include "platform/file_names.h"
#include "platform/job_queue.h"
#include "tables/reader.h"
#include "ui/kit/panels.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"
#include "ui/tables/table_dialog.h"
#include "ui/tables/table_input.h"

namespace zorvel {

namespace {

using Input = std::shared_ptr<const TableInput>;

// A table and its first bytes, or why there are none.
struct OpenedTable {
    Input input;
    std::shared_ptr<const TableStart> start;
    std::string problem;
};

OpenedTable openedTable(const Result<Input>& input) {
    if (!input) return {nullptr, nullptr, input.problem().message};
    Result<TableStart> start = startOf(*input.value());
    if (!start) return {nullptr, nullptr, start.problem().message};
    if (start.value().bytes.empty()) return {nullptr, nullptr, "is empty"};
    return {input.value(), std::make_shared<const TableStart>(std::move(start).value()), {}};
}

// Rows with problems that only the pass over all of them has found. Written by the job, read after
// it.
using FoundRows = std::shared_ptr<TableRows>;

// Reads the table in a job.
CensusReader readerOf(const Input& input, const TableReading& reading, const FoundRows& found) {
    return [=](const std::stop_token& stop, NamePool* names) -> ReadCensuses {
        TableBytes bytes = input->bytes();
        const auto source = [&bytes](char* place, std::size_t size) {
            return bytes.read(place, size);
        };
        TextRows rows(source, reading.form);
        TableRecords records = readTable(rows, reading, stop, names);
        ReadCensuses result;
        if (bytes.problem()) {
            result.parsed.advice = bytes.problem()->message;
        } else if (records.problems.count > 0) {
            TableBytes again = input->bytes();
            TextRows rowsAgain(
                [&again](char* place, std::size_t size) { return again.read(place, size); },
                reading.form);
            *found = rowsOfProblems(rowsAgain, records.problems);
            result.parsed.advice = remarkText(records.problems.kept.front());
        } else if (!stop.stop_requested()) {
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
    Input input;
};

void startTableImport(const std::shared_ptr<TableImport>& import,
                      const QPointer<TableDialog>& dialog) {
    Document* document = currentOrNewDocument(import->windows, import->command);
    if (document == nullptr || dialog == nullptr) return;
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
    importTable(readerOf(import->input, dialog->reading(), found), document->project(),
                importServices(*document, import->windows, ended));
}

// name: in messages. parent: of the dialog, may be null. next: called when the dialog is gone; may
// be null.
void showTable(ProjectWindows& windows, const CommandWindow& command, QWidget* parent,
               const QString& name, const QString& heading, const OpenedTable& table,
               const std::function<void()>& next) {
    if (command.isGone()) return;
    if (!table.start) {
        windows.panels().alerts.warn(parent, QString("“%1” could not be read").arg(name),
                                     QString::fromStdString(table.problem));
        if (next) next();
        return;
    }
    const QPointer<TableDialog> dialog(
        new TableDialog(heading, table.start, windows.jobs(), parent));
    const auto import =
        std::make_shared<TableImport>(TableImport{windows, command, name, table.input});
    QObject::connect(dialog, &QDialog::accepted, dialog,
                     [import, dialog] { startTableImport(import, dialog); });
    QObject::connect(dialog, &QDialog::rejected, dialog, &QObject::deleteLater);
    if (next) QObject::connect(dialog, &QObject::destroyed, &windows, next);
    dialog->open();
}

}  // namespace

void runTableImport(ProjectWindows& windows, MainWindowController* window) {
    const CommandWindow command(window);
    const QString path = windows.panels().open.chooseTextFile(window, "Import Table");
    if (!path.isEmpty()) importTableFiles(windows, command, {path}, command.window);
}

void importTableFiles(ProjectWindows& windows, const CommandWindow& command,
                      const QStringList& paths, MainWindowController* parent) {
    if (paths.isEmpty()) return;
    const QPointer<MainWindowController> guard(parent);
    const QPointer<MainViewController> view(parent != nullptr ? &parent->mainView() : nullptr);
    const QString& path = paths.front();
    const QString name = QFileInfo(path).fileName();
    const MainView::ProgressId progress =
        view ? view->startProgress(QString("reading %1...").arg(name).toStdString(), nullptr) : 0;
    const auto next = [=, &windows] { importTableFiles(windows, command, paths.mid(1), guard); };
    windows.jobs().start(
        &windows, [path] { return openedTable(TableInput::open(encodedPath(path))); },
        [=, &windows](const OpenedTable& table) {
            if (view) view->stopProgress(progress);
            showTable(windows, command, guard, name, name, table, next);
        });
}

void importTableText(ProjectWindows& windows, MainWindowController& window, const QString& name,
                     std::string text) {
    showTable(windows, CommandWindow(&window), &window, name, "Table from " + name,
              openedTable(TableInput::ofText(std::move(text))), nullptr);
}

}  // namespace zorvel
