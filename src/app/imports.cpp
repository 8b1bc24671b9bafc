#include "app/imports.h"

#include <QFileInfo>
#include <QLocale>
#include <QStringList>
#include <optional>
#include <stop_token>
#include <utility>

#include "app/project_windows.h"
#include "base/console.h"
#include "model/import.h"
#include "platform/file_reading.h"
#include "platform/job_queue.h"
#include "ui/kit/message_strip.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"

namespace zorvel {

namespace {

// A number and its noun, which is one of two.
QString counted(std::size_t count, const QString& one, const QString& many) {
    return count == 1 ? one : many.arg(QLocale().toString(qulonglong{count}));
}

QStringList leftOutSentences(const LeftOut& leftOut, bool taxa) {
    QStringList sentences;
    if (!taxa) {
        sentences.append(QString("No census has a taxon: %1.").arg(whyNoTaxa(leftOut)));
    }
    if (leftOut.unfinishedLines > 0) {
        sentences.append("The last line of the file is not finished and was left out.");
    }
    if (leftOut.markedRows > 0) {
        sentences.append(counted(leftOut.markedRows, "A row called “imported census” was left out.",
                                 "%1 rows called “imported census” were left out."));
    }
    if (leftOut.shortRows > 0) {
        sentences.append(
            counted(leftOut.shortRows,
                    "A row has fewer values than there are species: the missing ones count as 0.",
                    "%1 rows have fewer values than there are species: the missing ones count "
                    "as 0."));
    }
    if (leftOut.negativeCells > 0) {
        sentences.append(counted(leftOut.negativeCells, "A negative abundance counts as 0.",
                                 "%1 negative abundances count as 0."));
    }
    return sentences;
}

QString storedMessage(const QString& fileName, const ImportReport& report) {
    if (report.censuses == 0) return QString("There is no census in %1.").arg(fileName);
    const QString censuses = counted(report.censuses, "1 census", "%1 censuses");
    const QString taxa = counted(report.taxa, "1 taxon", "%1 taxa");
    QStringList sentences = leftOutSentences(report.leftOut, report.taxa > 0);
    sentences.prepend(QString("Imported %1 with %2 from %3.").arg(censuses, taxa, fileName));
    return sentences.join(' ');
}

// Whether the user has nothing to see to: all was stored, or the import was cancelled.
bool isGoodNews(const ImportReport& report) {
    if (report.outcome == ImportReport::Outcome::cancelled) return true;
    return report.outcome == ImportReport::Outcome::stored && report.censuses > 0 &&
           leftOutSentences(report.leftOut, report.taxa > 0).isEmpty();
}

// What was stored and what was left out, or why nothing was stored.
QString importMessage(const QString& fileName, const ImportReport& report) {
    switch (report.outcome) {
        case ImportReport::Outcome::stored:
            return storedMessage(fileName, report);
        case ImportReport::Outcome::refused:
            return unreadableMessage(fileName, report.reason, report.place);
        case ImportReport::Outcome::cancelled:
            return QString("The import of %1 was cancelled. Nothing was stored.").arg(fileName);
        case ImportReport::Outcome::noWindow:
            break;
    }
    return {};
}

// Receives the results of the jobs of an import. Goes with the main view: the import then stops.
class ImportRun : public QObject {
  public:
    explicit ImportRun(QObject* view) : QObject(view) {}
    ~ImportRun() override { stop.request_stop(); }

    std::stop_source stop;
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
    auto* run = new ImportRun(view);
    const auto startJob = [run, &jobs = windows.jobs()](std::function<void()> work,
                                                        std::function<void()> done) {
        jobs.start(
            run,
            [work = std::move(work)] {
                work();
                return true;
            },
            [done = std::move(done)](bool) { done(); });
    };
    const auto end = [run, view, ended = std::move(ended),
                      name = QFileInfo(text.path).fileName()](const ImportReport& report) {
        const auto tone =
            isGoodNews(report) ? MessageStrip::Tone::news : MessageStrip::Tone::problem;
        if (view != nullptr) view->messageStrip().addMessage(importMessage(name, report), tone);
        run->deleteLater();
        ended(report.outcome == ImportReport::Outcome::cancelled);
    };
    importDriver(kind).import(std::move(text.text), document.project(), {startJob, run->stop, end});
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
    readTextInBackground(windows, command.window, file.file, received, [] {});
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

QString leftOutNote(const QString& fileName, const LeftOut& leftOut, bool taxa) {
    const QStringList sentences = leftOutSentences(leftOut, taxa);
    return sentences.isEmpty() ? QString() : fileName + ": " + sentences.join(' ');
}

}  // namespace zorvel
