#include "app/project_windows.h"

#include <QFileInfo>
#include <algorithm>
#include <utility>

#include "app/document_commands.h"
#include "app/exports.h"
#include "app/file_kinds.h"
#include "app/imports.h"
#include "app/menus.h"
#include "app/table_imports.h"
#include "platform/document_controller.h"
#include "platform/settings.h"
#include "ui/analysis/plot_page.h"
#include "ui/analysis/project_wide_metrics_window_controller.h"
#include "ui/kit/window_placement.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"

namespace zorvel {

namespace {

const char settingsMessage[] = "settings";  // name of the message in the strip

bool hasTaxon(const ObjectContext& project) {
    const std::vector<Census> censuses = project.censuses();
    return std::any_of(censuses.begin(), censuses.end(),
                       [](const Census& census) { return census.taxonCount() > 0; });
}

}  // namespace

ProjectWindows::ProjectWindows(DocumentController& documents, JobQueue& jobs,
                               RandomSourceMaker makeRandom, LookChoice& look, const Panels& panels)
    : documents_(documents),
      jobs_(jobs),
      makeRandom_(std::move(makeRandom)),
      look_(look),
      panels_(panels),
      exports_(std::make_unique<Exports>(*this, makeRandom_)) {
    connect(&documents_, &DocumentController::documentDidOpen, this,
            [this](Document* document, const QString& path) { documentDidOpen(*document, path); });
    connect(&documents_, &DocumentController::documentDidReadText, this,
            [this](const Document* document, const QString& path, const LeftOut& leftOut) {
                const bool taxa = hasTaxon(document->project().objectContext());
                const QString note = leftOutNote(QFileInfo(path).fileName(), leftOut, taxa);
                if (!note.isEmpty()) tell(windowOf(*document), note);
            });
    connect(
        &documents_, &DocumentController::openDidFail, this,
        [this](const QString& path, const QString& message) { tell(endOpening(path), message); });
    connect(&documents_, &DocumentController::asideDidOpen, this,
            [this](const Document* document, const QString& message) {
                tell(windowOf(*document), message);
            });
    connect(&documents_, &DocumentController::changesWereKept, this,
            [this](const QString& message) { tell(nullptr, message); });
}

ProjectWindows::~ProjectWindows() {
    // Closed ones too, which wait for their deletion: they use their documents until then.
    for (const auto& window : windows_) delete window;
}

std::vector<QWidget*> ProjectWindows::shownWindows() const {
    std::vector<QWidget*> shown;
    for (const QPointer<QWidget>& window : windows_) {
        if (window && !window->isHidden()) shown.push_back(window);
    }
    return shown;
}

std::vector<MainWindowController*> ProjectWindows::windows() const {
    std::vector<MainWindowController*> projects;
    for (QWidget* window : shownWindows()) {
        if (auto* project = qobject_cast<MainWindowController*>(window)) {
            projects.push_back(project);
        }
    }
    return projects;
}

void ProjectWindows::follow(SettingsFile& settings) {
    settings_ = &settings;
    const auto tellAll = [this] {
        for (MainWindowController* window : windows()) tellOfSettings(*window);
    };
    connect(settings_, &SettingsFile::problemDidChange, this, tellAll);
    tellAll();
    connect(settings_, &SettingsFile::valuesDidArrive, this,
            &ProjectWindows::plotPreferencesDidChange);
    connect(settings_, &SettingsFile::valuesDidArrive, this, &ProjectWindows::textDidEndEditing);
}

void ProjectWindows::tellOfSettings(MainWindowController& window) {
    const QString problem = settings_ != nullptr ? settings_->problem() : QString();
    MessageStrip& strip = window.mainView().messageStrip();
    problem.isEmpty() ? strip.withdraw(settingsMessage)
                      : strip.setMessage(settingsMessage, problem);
}

void ProjectWindows::start(const QStringList& files) {
    MainWindowController& first = openUntitled();
    documents_.recover();
    openFiles(files, &first);
}

MainWindowController& ProjectWindows::openUntitled() {
    return openWindow(documents_.newDocument());
}

MainWindowController& ProjectWindows::openWindow(Document& document) {
    const std::vector<MainWindowController*> open = windows();
    auto* window = new MainWindowController(document, jobs_, makeRandom_, panels_);
    window->setAttribute(Qt::WA_DeleteOnClose);
    if (!open.empty()) cascade(*window, *open.back());
    std::erase(windows_, nullptr);
    windows_.emplace_back(window);
    connectWindow(*window);
    tellOfSettings(*window);
    window->show();
    return *window;
}

void ProjectWindows::connectWindow(MainWindowController& window) {
    addMenus(window, *this, look_);
    MainWindowController* const shown = &window;
    MainViewController* const view = &window.mainView();
    connect(view, &MainViewController::openRequested, this, [=, this] { chooseFile(*shown); });
    connect(view, &MainViewController::analysisWindowDidOpen, this,
            [this](QWidget* opened) { addAnalysisWindow(*opened); });
    connect(shown, &MainWindowController::filesDropped, this,
            [=, this](const QStringList& paths) { takeDroppedFiles(paths, *shown); });
    connect(view, &MainViewController::tableGiven, this,
            [=, this](const QString& name, const QString& text) {
                importTableText(*this, *shown, name, text.toStdString());
            });
    connect(shown, &MainWindowController::saveAsRequested, this,
            [=, this] { saveWindowAs(*shown, panels_); });
    connect(this, &ProjectWindows::preferencesDidChange, view, &MainViewController::updateMetrics);
    connect(this, &ProjectWindows::textDidEndEditing, view, &MainViewController::editingDidEnd);
    window.setCloseQuestion([=, this] { return mayClose(*shown); });
}

void ProjectWindows::addAnalysisWindow(QWidget& opened) {
    std::erase(windows_, nullptr);
    windows_.emplace_back(&opened);
    opened.installEventFilter(this);
    addCommonKeyCommands(opened, *this);
    addKeyCommand(opened, "showHelp", {QKeySequence::HelpContents},
                  [this] { emit helpRequested(); });
    if (auto* plot = opened.findChild<PlotPage*>()) {
        connect(this, &ProjectWindows::plotPreferencesDidChange, plot,
                &PlotPage::preferencesDidChange);
        connect(plot, &PlotPage::printRequested, this,
                [this, &opened] { emit printRequested(&opened); });
    } else if (auto* metrics = qobject_cast<ProjectWideMetricsWindowController*>(&opened)) {
        connect(&metrics->viewController(), &ProjectWideMetricsViewController::printRequested, this,
                [this, metrics] { emit printRequested(metrics); });
    }
}

void ProjectWindows::chooseFile(MainWindowController& window) {
    const QPointer<MainWindowController> guard(&window);
    const QStringList paths = panels_.open.chooseFiles(&window);
    openFiles(paths, guard);
}

void ProjectWindows::openFiles(const QStringList& paths, MainWindowController* window) {
    if (paths.isEmpty()) return;
    for (const QString& path : paths) openings_.push_back({path, window});
    if (window != nullptr) showProgress(*window);
    findKinds(*this, window, paths,
              [this, paths](const std::vector<KnownFile>& known) { openKnownFiles(paths, known); });
}

// Files that the user decided against are not among the known ones.
void ProjectWindows::openKnownFiles(const QStringList& asked, const std::vector<KnownFile>& known) {
    auto next = known.begin();
    std::vector<KnownFile> tables;
    QPointer<MainWindowController> tableWindow;
    for (const QString& path : asked) {
        if (next == known.end() || next->file->path != path) {
            endOpening(path);
            continue;
        }
        const KnownFile& file = *next++;
        if (file.isTable) {
            tableWindow = endOpening(path);
            tables.push_back(file);
            continue;
        }
        documents_.open(file.file, file.isText ? std::optional(file.kind) : std::nullopt);
    }
    // Each becomes a project of its own; they are shown one after the other.
    const bool takesWindow = tables.size() == 1 && tableWindow != nullptr && isFree(*tableWindow);
    importFiles(*this, CommandWindow(takesWindow ? tableWindow : nullptr), tables, tableWindow);
}

void ProjectWindows::takeDroppedFiles(const QStringList& paths, MainWindowController& window) {
    const CommandWindow command(&window);
    findKinds(*this, &window, paths, [this, command](const std::vector<KnownFile>& known) {
        std::vector<KnownFile> imported;
        for (const KnownFile& file : known) {
            if (file.isText) {
                imported.push_back(file);
            } else {
                openFiles({file.file->path}, command.window);
            }
        }
        importFiles(*this, command, imported, command.window);
    });
}

// If several files are being opened, the name of the first is shown.
void ProjectWindows::showProgress(MainWindowController& window) {
    const auto first = std::find_if(openings_.begin(), openings_.end(),
                                    [&](const Opening& each) { return each.window == &window; });
    if (first == openings_.end()) return;
    MainViewController& view = window.mainView();
    view.stopProgress(first->progress);
    first->progress =
        view.startProgress(QString("opening %1...").arg(QFileInfo(first->path).fileName()));
}

QPointer<MainWindowController> ProjectWindows::endOpening(const QString& path) {
    const auto found = std::find_if(openings_.begin(), openings_.end(),
                                    [&](const Opening& each) { return each.path == path; });
    if (found == openings_.end()) return nullptr;
    QPointer<MainWindowController> window = found->window;
    if (window) window->mainView().stopProgress(found->progress);
    openings_.erase(found);
    if (window) showProgress(*window);
    return window;
}

bool ProjectWindows::isFree(MainWindowController& window) const {
    MainView::ProgressId opening = 0;
    for (const Opening& each : openings_) {
        if (each.window == &window && each.progress != 0) opening = each.progress;
    }
    const Document& document = window.document();
    return !window.mainView().isInProgressBeside(opening) && document.isUntouched() &&
           document.project().objectContext().censusCount() == 0;
}

MainWindowController* ProjectWindows::freeWindow() const {
    for (MainWindowController* window : windows()) {
        if (isFree(*window)) return window;
    }
    return nullptr;
}

MainWindowController* ProjectWindows::windowOf(const Document& document) const {
    for (MainWindowController* window : windows()) {
        if (&window->document() == &document) return window;
    }
    return nullptr;
}

void ProjectWindows::documentDidOpen(Document& document, const QString& path) {
    if (settling_ && windowOf(document) == nullptr) {
        arrivals_.push_back({&document, path});
        return;
    }
    const bool asked = std::any_of(openings_.begin(), openings_.end(),
                                   [&](const Opening& each) { return each.path == path; });
    MainWindowController* window = endOpening(path);
    // Every window was closed while the file was read.
    if (asked && windows().empty()) return documents_.close(document);
    if (MainWindowController* shown = windowOf(document)) {
        window = shown;
    } else {
        if (window == nullptr || window->isHidden() || !isFree(*window)) window = freeWindow();
        if (window != nullptr) {
            Document& empty = window->document();
            window->showDocument(document);
            documents_.close(empty);
            showProgress(*window);
        } else {
            window = &openWindow(document);
        }
    }
    window->raise();
    window->activateWindow();
}

void ProjectWindows::tell(MainWindowController* window, const QString& message,
                          MessageStrip::Tone tone) {
    const std::vector<MainWindowController*> open = windows();
    if (window != nullptr && !window->isHidden()) {
        window->mainView().messageStrip().addMessage(message, tone);
    } else if (!open.empty()) {
        open.back()->mainView().messageStrip().addMessage(message, tone);
    } else if (!quitting_) {
        panels_.alerts.warn(nullptr, message, {});
    }
}

}  // namespace zorvel
