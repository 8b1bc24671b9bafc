#include "app/imports.h"

#include <QFileInfo>
#include <optional>
#include <utility>

#include "app/import_texts.h"
#include "app/project_windows.h"
#include "base/console.h"
#include "model/import_drivers.h"
#include "platform/queue_jobs.h"
#include "ui/kit/message_strip.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"

namespace zorvel {

namespace {

// Goes with the main view: the import then stops, and nobody hears of it.
class ImportRun : public QObject {
  public:
    ImportRun(MainViewController& view, JobQueue& jobs, std::function<void(bool cancelled)> ended)
        : QObject(&view), jobs_(jobs, this), ended_(std::move(ended)) {}
    ~ImportRun() override { stop_.request_stop(); }

    void start(Document& document, FileKind kind, OpenedText text) {
        const QString name = QFileInfo(text.path).fileName();
        importText(importDriver(kind), std::move(text.text), document.project(),
                   {jobs_, stop_, [this, name](const ImportReport& report) { end(name, report); }});
    }

  private:
    void end(const QString& name, const ImportReport& report) {
        auto* view = qobject_cast<MainViewController*>(parent());
        const auto tone =
            isGoodNews(report) ? MessageStrip::Tone::news : MessageStrip::Tone::problem;
        if (view != nullptr) view->messageStrip().addMessage(importMessage(name, report), tone);
        deleteLater();
        ended_(report.outcome == ImportReport::Outcome::cancelled);
    }

    QueueJobs jobs_;
    std::stop_source stop_;
    std::function<void(bool cancelled)> ended_;
};

}  // namespace

bool CommandWindow::isGone() const {
    return given && (window == nullptr || window->isHidden());
}

Document* currentOrNewDocument(ProjectWindows& windows, const CommandWindow& command) {
    if (command.isGone()) return nullptr;
    return command.given ? &command.window->document() : &windows.openUntitled().document();
}

void importInto(Document& document, ProjectWindows& windows, FileKind kind, OpenedText text,
                std::function<void(bool cancelled)> ended) {
    auto* view = dynamic_cast<MainViewController*>(document.project().documentMainViewController());
    if (view == nullptr) {
        QueueJobs jobs(windows.jobs(), &windows);
        return importText(importDriver(kind), {}, document.project(),
                          {jobs, {}, [&](const ImportReport&) { ended(false); }});
    }
    (new ImportRun(*view, windows.jobs(), std::move(ended)))
        ->start(document, kind, std::move(text));
}

void importFiles(ProjectWindows& windows, const CommandWindow& command,
                 const std::vector<KnownFile>& files) {
    if (files.empty() || command.isGone()) return;
    const KnownFile& file = files.front();
    const auto next = [=, &windows, rest = std::vector<KnownFile>(files.begin() + 1, files.end())] {
        importFiles(windows, command, rest);
    };
    const auto received = [=, &windows](std::optional<OpenedText> text) {
        Document* document = text ? currentOrNewDocument(windows, command) : nullptr;
        if (document == nullptr) return next();
        importInto(*document, windows, file.kind, std::move(*text), [=](bool cancelled) {
            if (!cancelled) next();
        });
    };
    readTextInBackground(windows, command.window, file.path, received, [] {});
}

void runImport(ProjectWindows& windows, MainWindowController* window, FileKind kind) {
    const CommandWindow command(window);
    const QString title = QString::fromStdString(importDriver(kind).stepName);
    openTextFile(windows, window, title, [=, &windows](std::optional<OpenedText> text) {
        if (!text) {
            writeConsoleLine("WARNING: no string obtained from file");
        } else if (Document* document = currentOrNewDocument(windows, command)) {
            importInto(*document, windows, kind, std::move(*text));
        } else {
            writeConsoleLine("Could not get a diversity document");
        }
    });
}

}  // namespace zorvel
