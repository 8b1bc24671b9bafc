#include "app/imports.h"

#include <QFileInfo>
#include <QStringList>
#include <iterator>
#include <memory>
#include <optional>
#include <stop_token>
#include <utility>

#include "app/project_windows.h"
#include "app/table_imports.h"
#include "base/console.h"
#include "interchange/parsers.h"
#include "platform/file_reading.h"
#include "platform/job_queue.h"
#include "ui/kit/panels.h"
#include "ui/kit/shown_text.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"

namespace zorvel {

namespace {

QStringList leftOutSentences(const LeftOut& leftOut, bool taxa) {
    QStringList sentences = countSentences({
        {leftOut.unfinishedLines, "The last line of the file is not finished and was left out.",
         "%1 lines are not finished and were left out."},
        {leftOut.markedRows, "A row called “imported census” was left out.",
         "%1 rows called “imported census” were left out."},
        {leftOut.shortRows,
         "A row has fewer values than there are species: the missing ones count as 0.",
         "%1 rows have fewer values than there are species: the missing ones count as 0."},
        {leftOut.negativeCells, "A negative abundance counts as 0.",
         "%1 negative abundances count as 0."},
    });
    if (!taxa) sentences.prepend(QString("No census has a taxon: %1.").arg(whyNoTaxa(leftOut)));
    return sentences;
}

QString storedMessage(const QString& fileName, const ImportReport& report) {
    if (report.censuses == 0) return QString("There is no census in %1.").arg(fileName);
    const QString censuses = countText(report.censuses, "1 census", "%1 censuses");
    const QString taxa = countText(report.taxa, "1 taxon", "%1 taxa");
    QStringList sentences = leftOutSentences(report.leftOut, report.taxa > 0);
    sentences.prepend(QString("Imported %1 with %2 from %3.").arg(censuses, taxa, fileName));
    return sentences.join(' ');
}

// Whether the user need not do anything: all was stored, or the import was cancelled.
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

ImportServices importServices(Document& document, ProjectWindows& windows,
                              std::function<void(const ImportReport&)> ended) {
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
    return {startJob, run->stop, [run, ended = std::move(ended)](const ImportReport& report) {
                run->deleteLater();
                ended(report);
            }};
}

void tellOfImport(Document& document, const QString& fileName, const ImportReport& report) {
    auto* view = dynamic_cast<MainViewController*>(document.project().documentMainViewController());
    const auto tone = isGoodNews(report) ? MessageStrip::Tone::news : MessageStrip::Tone::problem;
    if (view != nullptr) view->messageStrip().addMessage(importMessage(fileName, report), tone);
}

void importInto(Document& document, ProjectWindows& windows, FileKind kind, OpenedText text,
                std::function<void(bool cancelled)> ended) {
    const auto end = [&document, ended = std::move(ended),
                      name = QFileInfo(text.path).fileName()](const ImportReport& report) {
        tellOfImport(document, name, report);
        ended(report.outcome == ImportReport::Outcome::cancelled);
    };
    importDriver(kind)(std::move(text.text), document.project(),
                       importServices(document, windows, end));
}

namespace {

// "cannot be opened: Permission denied" as a sentence of its own.
QString sentence(const QString& reason) {
    return reason.left(1).toUpper() + reason.mid(1) + '.';
}

// Called once, at once or later; never if the program ends first. There is no text if the user
// cancels, or if the file is empty or cannot be read, which the window says.
using TextReceiver = std::function<void(OpenedText opened)>;

// Reads a text file in the background. If cancelled, it is handed over at once without its text,
// and bytes that arrive later are dropped. window: shows the progress; may be null, and may be
// closed when the text arrives. file: opened to tell its kind; null if the path is still to be
// opened.
void readTextInBackground(ProjectWindows& windows, MainWindowController* window,
                          const QString& path, const std::shared_ptr<NamedFile>& file,
                          const TextReceiver& receive) {
    const QPointer<MainWindowController> guard(window);
    const QPointer<MainViewController> view(window != nullptr ? &window->mainView() : nullptr);
    const QString name = QFileInfo(path).fileName();
    std::stop_source stop;
    const auto progress = std::make_shared<MainView::ProgressId>(0);
    const auto handOver = [=](OpenedText opened) {
        if (view) view->stopProgress(*progress);
        receive(std::move(opened));
    };
    if (view) {
        *progress = view->startImportProgress(QString("reading %1...").arg(name).toStdString(),
                                              [=]() mutable {
                                                  stop.request_stop();
                                                  handOver({path, {}, true});
                                              });
    }
    windows.jobs().start(
        &windows,
        [path, file, token = stop.get_token()] {
            Result<InputFile> input = file ? file->take() : InputFile::open(encodedPath(path));
            if (!input) return Result<std::string>(input.problem());
            Result<std::string> read = std::move(input).value().text();
            // A large text is released here.
            return token.stop_requested() ? Result<std::string>(std::string()) : std::move(read);
        },
        [=, &alerts = windows.panels().alerts](Result<std::string> read) {
            if (stop.stop_requested()) return;
            if (read && !read.value().empty()) return handOver({path, std::move(read).value()});
            if (!read) {
                alerts.warn(guard, QString("“%1” could not be read").arg(name),
                            sentence(QString::fromStdString(read.problem().message)));
            } else if (view) {
                view->messageStrip().addMessage(QString("%1 is empty.").arg(name));
            }
            if (!stop.stop_requested()) handOver({path, {}});
        });
}

// Asks for one text file and reads it. title: what is chosen.
void openTextFile(ProjectWindows& windows, MainWindowController* window, const QString& title,
                  const TextReceiver& receive) {
    const QPointer<MainWindowController> guard(window);
    const QString path = windows.panels().open.chooseTextFile(window, title);
    if (path.isEmpty()) return receive({{}, {}, true});
    readTextInBackground(windows, guard, path, nullptr, receive);
}

QString notImportedMessage(const std::vector<KnownFile>& files) {
    constexpr std::size_t mostNamed = 5;
    QStringList names;
    for (const KnownFile& each : files) {
        if (names.size() < qsizetype{mostNamed})
            names.append(QFileInfo(each.file->path).fileName());
    }
    QString text = "The import was cancelled. Also not imported: " + names.join(", ");
    if (files.size() > mostNamed) {
        text += countText(files.size() - mostNamed, " and 1 other file", " and %1 other files");
    }
    return text + '.';
}

}  // namespace

void importFiles(ProjectWindows& windows, const CommandWindow& command,
                 const std::vector<KnownFile>& files, MainWindowController* parent) {
    if (files.empty() || command.isGone()) return;
    const KnownFile& file = files.front();
    const std::vector<KnownFile> rest(files.begin() + 1, files.end());
    const QPointer<MainWindowController> guard(parent);
    const auto next = [=, &windows](bool cancelled) {
        if (!cancelled) return importFiles(windows, command, rest, guard);
        if (rest.empty() || !guard) return;
        guard->mainView().messageStrip().addMessage(notImportedMessage(rest),
                                                    MessageStrip::Tone::news);
    };
    if (file.isTable) {
        return importTableFile(windows, command, file.file, parent, !rest.empty(), next);
    }
    readTextInBackground(
        windows, command.window, file.file->path, file.file, [=, &windows](OpenedText opened) {
            const bool hasText = !opened.text.empty();
            Document* document = hasText ? currentOrNewDocument(windows, command) : nullptr;
            if (document == nullptr) return next(opened.isCancelled);
            importInto(*document, windows, file.kind, std::move(opened), next);
        });
}

void runImport(ProjectWindows& windows, MainWindowController* window, FileKind kind) {
    const CommandWindow command(window);
    const QString title = QString::fromStdString(importDriver(kind).stepName);
    openTextFile(windows, window, title, [=, &windows](OpenedText opened) {
        if (opened.text.empty()) {
            writeConsoleLine("WARNING: no string obtained from file");
        } else if (Document* document = currentOrNewDocument(windows, command)) {
            importInto(*document, windows, kind, std::move(opened));
        } else {
            writeConsoleLine("Could not get a diversity document");
        }
    });
}

QString leftOutNote(const QString& fileName, const LeftOut& leftOut, bool taxa) {
    const QStringList sentences = leftOutSentences(leftOut, taxa);
    return sentences.isEmpty() ? QString() : fileName + ": " + sentences.join(' ');
}

namespace {

// Made in the background, so that little is left for the main thread.
TaxonFormatter::Names namesIn(std::string_view text) {
    auto names = parseSpeciesList(text).value.value_or(std::vector<std::string>());
    return {std::make_move_iterator(names.begin()), std::make_move_iterator(names.end())};
}

QString namesMessage(const QString& file, std::size_t added, std::size_t known) {
    if (added + known == 0) return QString("There are no names in %1.").arg(file);
    if (added == 0) {
        return countText(known, "The one name in %1 was known already.",
                         "All %1 names in %2 were known already.")
            .arg(file);
    }
    const QString what =
        countText(added, "Added one name", "Added %1 names") +
        QString(" from %1, to complete species names until this window is closed").arg(file);
    if (known == 0) return what + '.';
    return what + countText(known, "; one was known already.", "; %1 were known already.");
}

void addNames(MainViewController& view, const TaxonFormatter::Names& names, const QString& file) {
    TaxonFormatter& formatter = view.taxonFormatter();
    const std::size_t before = formatter.taxonNames().size();
    formatter.addTaxonNames(names);
    const std::size_t added = formatter.taxonNames().size() - before;
    view.messageStrip().addMessage(namesMessage(file, added, names.size() - added),
                                   MessageStrip::Tone::news);
}

}  // namespace

void importSpeciesList(ProjectWindows& windows, MainWindowController* window) {
    if (window == nullptr) return;
    const QPointer<MainWindowController> shown(window);
    JobQueue& jobs = windows.jobs();
    // If cancelled nothing is said: the console line that there are no names is about a file that
    // has none or cannot be read.
    openTextFile(windows, window, "Import Species List", [shown, &jobs](OpenedText opened) {
        if (opened.isCancelled) return;
        if (opened.text.empty()) {
            return writeConsoleLines(parseSpeciesList(std::nullopt).consoleLines);
        }
        if (!shown) return;
        jobs.start(
            shown, [text = std::move(opened.text)] { return namesIn(text); },
            [shown, file = QFileInfo(opened.path).fileName()](const TaxonFormatter::Names& names) {
                addNames(shown->mainView(), names, file);
            });
    });
}

}  // namespace zorvel
