#include "app/table_imports.h"

#include <QFileInfo>
#include <QPointer>
#include <stop_token>
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
    return [=](const std::stop_token& stop, NamePool* names) -> ParsedCensuses {
        const auto rows = source->rows(reading.form, stop);
        TableRecords records = readTable(*rows, reading, stop, names);
        ParsedCensuses result;
        if (stop.stop_requested()) return result;
        if (const auto problem = rows->problem()) {
            result.advice = problem->message;
        } else if (records.problems.count > 0) {
            *found = rowsOfProblems(*source->rows(reading.form, stop), records.problems);
            result.advice = remarkText(records.problems.kept.front());
        } else {
            result.value = std::move(records.censuses);
        }
        return result;
    };
}

// A table on its way into a project; shown by the dialog, which goes with its window.
struct TableImport {
    ProjectWindows& windows;
    CommandWindow command;
    QString name;  // in messages
    std::function<void(bool cancelled)> ended;
};

void startTableImport(const std::shared_ptr<TableImport>& import,
                      const QPointer<TableDialog>& dialog) {
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
        import->ended(report.outcome == ImportReport::Outcome::cancelled);
    };
    importTable(readerOf(dialog->source(), dialog->reading(), found), document->project(),
                importServices(*document, import->windows, ended));
}

// parent: of the dialog, may be null.
void showTable(const std::shared_ptr<TableImport>& import, QWidget* parent, const QString& heading,
               const Input& table, bool others) {
    const QPointer<TableDialog> dialog(
        new TableDialog(heading, table, import->windows.jobs(), parent));
    if (others) dialog->offerSkip();
    QObject::connect(dialog, &QDialog::finished, dialog, [import, dialog](int result) {
        if (result == QDialog::Accepted) return startTableImport(import, dialog);
        dialog->deleteLater();
        import->ended(result == QDialog::Rejected);
    });
    dialog->open();
}

}  // namespace

void runTableImport(ProjectWindows& windows, MainWindowController* window) {
    const QPointer<MainWindowController> guard(window);
    const CommandWindow command(window);
    const QString path = windows.panels().open.chooseTable(window);
    if (path.isEmpty()) return;
    windows.jobs().start(
        &windows,
        [path] {
            KnownFile known;
            known.file = std::make_shared<NamedFile>(path);
            known.isText = known.isTable = true;
            return known;
        },
        [=, &windows](const KnownFile& known) { importFiles(windows, command, {known}, guard); });
}

void importTableFile(ProjectWindows& windows, const CommandWindow& command,
                     const std::shared_ptr<NamedFile>& file, MainWindowController* parent,
                     bool others, std::function<void(bool cancelled)> ended) {
    const QPointer<MainWindowController> guard(parent);
    const QPointer<MainViewController> view(parent != nullptr ? &parent->mainView() : nullptr);
    const QString name = QFileInfo(file->path).fileName();
    const auto import =
        std::make_shared<TableImport>(TableImport{windows, command, name, std::move(ended)});
    std::stop_source stop;
    const auto progress = std::make_shared<MainView::ProgressId>(0);
    const auto cancel = [=]() mutable {
        stop.request_stop();
        view->stopProgress(*progress);
        import->ended(true);
    };
    if (view) {
        *progress =
            view->startImportProgress(QString("reading %1...").arg(name).toStdString(), cancel);
    }
    windows.jobs().start(
        &windows,
        [file, token = stop.get_token()]() -> Result<Input> {
            Result<TableInput> input = tableInput(file->take(), token);
            if (!input) return input.problem();
            return std::make_shared<const TableInput>(std::move(input).value());
        },
        [=](const Result<Input>& table) {
            if (stop.stop_requested()) return;
            if (view) view->stopProgress(*progress);
            if (import->command.isGone()) return;
            if (table) return showTable(import, guard, name, table.value(), others);
            import->windows.panels().alerts.warn(guard, QString("“%1” could not be read").arg(name),
                                                 QString::fromStdString(table.problem().message));
            import->ended(false);
        });
}

void importTableText(ProjectWindows& windows, MainWindowController& window, const QString& name,
                     std::string text) {
    const auto import = std::make_shared<TableImport>(
        TableImport{windows, CommandWindow(&window), name, [](bool) {}});
    showTable(import, &window, "Table from " + name,
              std::make_shared<const TableInput>(tableInput(std::move(text))), false);
}

}  // namespace zorvel
