// The windows of the open projects, one per document, and the windows of analyses, which may
// outlive their project. It opens files into windows, asks the questions of closing, and ends the
// program with the last window of any kind. It owns the windows until they are closed; the
// documents belong to their controller. Main thread.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <memory>
#include <vector>

#include "model/diversity_document.h"
#include "ui/kit/message_strip.h"
#include "ui/kit/panels.h"
#include "ui/main/metrics_panel.h"

namespace zorvel {

class Document;
class DocumentController;
class Exports;
class JobQueue;
struct KnownFile;
class LookChoice;
class MainWindowController;
class SettingsFile;

class ProjectWindows : public QObject {
    Q_OBJECT
  public:
    // All must outlive the windows.
    ProjectWindows(DocumentController& documents, JobQueue& jobs, RandomSourceMaker makeRandom,
                   LookChoice& look, const Panels& panels);
    ~ProjectWindows() override;

    // Every window shows problems of the settings, and plots follow their changes. They must
    // outlive the windows.
    void follow(SettingsFile& settings);

    // Opens the first window, the projects left by an earlier run, and these files.
    void start(const QStringList& files);

    // An empty project in a window of its own, shown.
    MainWindowController& openUntitled();

    // Reads the files in the background; the user is asked for the kind of a text file if its first
    // lines leave it in doubt. Each becomes a project, in the given window if that is free and in
    // another otherwise; the given window reports a file that cannot be read. A project that is
    // open already comes to the front.
    void openFiles(const QStringList& paths, MainWindowController* window = nullptr);

    // The same for files dropped on a window, except that texts are imported into its project.
    void takeDroppedFiles(const QStringList& paths, MainWindowController& window);

    // Asks for files and opens them.
    void chooseFile(MainWindowController& window);

    // Asks only if something would be lost. False if cancelled.
    bool quit();
    // The same without a question: what is typed is stored, or reported on the console; what cannot
    // be written is kept for the next start.
    void endAtOnce();

    [[nodiscard]] std::vector<MainWindowController*> windows() const;
    // Its project is empty and untouched, and nothing runs in it: an opened project may replace it.
    [[nodiscard]] bool isFree(MainWindowController& window) const;

    [[nodiscard]] DocumentController& documents() { return documents_; }
    [[nodiscard]] const Panels& panels() const { return panels_; }
    [[nodiscard]] JobQueue& jobs() { return jobs_; }
    [[nodiscard]] Exports& exports() { return *exports_; }
    // Shows a message in that window or, if it is closed, in any other; without one in an alert.
    void tell(MainWindowController* window, const QString& message,
              MessageStrip::Tone tone = MessageStrip::Tone::problem);

  signals:
    // Emitted from outside when preferences were stored: every window updates its metrics.
    void preferencesDidChange();
    // The same when a field of the preferences has ended its editing.
    void textDidEndEditing();
    // The same for confidence level and colour of plots, at once.
    void plotPreferencesDidChange();

    // The content of that window is to be printed.
    void printRequested(QWidget* window);

    // Commands of the menus that belong to no project.
    void preferencesRequested();
    void helpRequested();
    void websiteRequested();
    void supportRequested();

  protected:
    // Asks before the window of an analysis closes.
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    // A document that was opened while the program asks before it ends.
    struct Arrival {
        QPointer<Document> document;
        QString path;
    };
    struct Opening {
        QString path;
        QPointer<MainWindowController> window;  // that the command was given in
        MainView::ProgressId progress = 0;      // of the one that the window shows
    };

    MainWindowController& openWindow(Document& document);
    void connectWindow(MainWindowController& window);
    void tellOfSettings(MainWindowController& window);
    void addAnalysisWindow(QWidget& opened);
    // Of projects and of analyses.
    [[nodiscard]] std::vector<QWidget*> shownWindows() const;
    void closeAll();
    void documentDidOpen(Document& document, const QString& path);
    void openKnownFiles(const QStringList& asked, const std::vector<KnownFile>& known);
    QPointer<MainWindowController> endOpening(const QString& path);
    void showProgress(MainWindowController& window);
    [[nodiscard]] MainWindowController* windowOf(const Document& document) const;
    [[nodiscard]] MainWindowController* freeWindow() const;
    bool mayClose(MainWindowController& window);
    // False if an import into one of these windows would be lost and the user cancels. Does not
    // stop the imports: the user may still cancel later.
    bool mayDropImports(const std::vector<MainWindowController*>& windows, bool quits);
    // Waits for what is being written and asks about what could not be; false if the user cancels.
    // discarded: a document that is not asked about, may be null.
    bool mayEnd(const Document* discarded = nullptr);
    // No other window is on the screen.
    [[nodiscard]] bool isLast(const QWidget& window) const;
    // Asks whether to save an untitled project with edits; false if its window stays open for now.
    bool askToKeep(MainWindowController& window);
    void letGo(Document* document);

    DocumentController& documents_;
    JobQueue& jobs_;
    RandomSourceMaker makeRandom_;
    LookChoice& look_;
    Panels panels_;
    SettingsFile* settings_ = nullptr;
    std::vector<QPointer<QWidget>> windows_;  // until they are deleted, in the order of opening
    std::vector<Opening> openings_;
    std::vector<QPointer<Document>> discarded_;
    std::unique_ptr<Exports> exports_;
    std::vector<Arrival> arrivals_;
    bool settling_ = false;
    bool quitting_ = false;
};

}  // namespace zorvel
