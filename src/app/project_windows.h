// The windows of the open projects, one a document, and those that outlive their project: opens
// files into them, asks what has to be asked when they close, and ends the program, which ends with
// the last window of any kind. It owns the windows until they are closed; the documents belong to
// their controller. Main thread.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <memory>
#include <vector>

#include "app/secondary_windows.h"
#include "ui/kit/message_strip.h"
#include "ui/kit/panels.h"
#include "ui/main/metrics_panel.h"

namespace zorvel {

class Document;
class DocumentController;
class Exports;
class JobQueue;
struct KnownFile;
struct Question;
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

    // Every window tells what is wrong with the settings, and plots follow them. They must outlive
    // the windows.
    void follow(SettingsFile& settings);

    // The first window, what an earlier run has left, and these files.
    void start(const QStringList& files);

    // An empty project in a window of its own, shown.
    MainWindowController& openUntitled();

    // Reads the files in the background; the person is asked what a text file holds where its first
    // lines leave a doubt. Each becomes a project, which takes the given window if that is free,
    // and another otherwise; the given window tells of a file that cannot be read. A project that
    // is open already comes to the front.
    void openFiles(const QStringList& paths, MainWindowController* window = nullptr);
    void openFile(const QString& path, MainWindowController* window = nullptr) {
        openFiles({path}, window);
    }

    // The same for files dropped on a window, but for texts: they are imported into its project.
    void takeDroppedFiles(const QStringList& paths, MainWindowController& window);

    // Asks for files and opens them.
    void chooseFile(MainWindowController& window);

    void duplicate(MainWindowController& window);
    void browseBackups(MainWindowController& window);

    // Asks nothing, unless something could not be saved. False where the person wants to stay.
    bool quit();
    // The same without a question: what is typed is stored, and what cannot be is told on the
    // console; what cannot be written is kept for the next start.
    void endAtOnce();

    [[nodiscard]] std::vector<MainWindowController*> windows() const;
    // Takes a window without a parent over; it must delete itself when it closes, or be hidden.
    void addSecondary(QWidget& window) { secondary_.add(window); }
    // Nothing in it, and nothing on its way: an opened project may take its place.
    [[nodiscard]] bool isFree(MainWindowController& window) const;

    [[nodiscard]] DocumentController& documents() { return documents_; }
    [[nodiscard]] const Panels& panels() const { return panels_; }
    [[nodiscard]] JobQueue& jobs() { return jobs_; }
    [[nodiscard]] Exports& exports() { return *exports_; }
    // In the strip of that window or of any other; without one in an alert.
    void tell(MainWindowController* window, const QString& message,
              MessageStrip::Tone tone = MessageStrip::Tone::problem);

  signals:
    // To be emitted by whoever has stored preferences: every window shows its metrics anew.
    void preferencesDidChange();
    // The same where a field outside of the windows has ended its editing.
    void textDidEndEditing();
    // The same for level and color of plots, at once.
    void plotPreferencesDidChange();

    // What that window shows is to be printed.
    void printRequested(QWidget* window);

    // Commands of the menus that belong to no project.
    void preferencesRequested();
    void helpRequested();
    void websiteRequested();
    void supportRequested();

  private:
    // What was opened while the end of the program is being settled.
    struct Arrival {
        QPointer<Document> document;
        QString path;
    };
    struct Opening {
        QString path;
        QPointer<MainWindowController> window;  // where it was asked for
    };

    MainWindowController& openWindow(Document& document);
    void connectWindow(MainWindowController& window);
    void tellOfSettings(MainWindowController& window);
    void addAnalysisWindow(QWidget& opened);
    void documentDidOpen(Document& document, const QString& path);
    void openDidFail(const QString& path, const QString& message);
    void openKnownFiles(const QStringList& asked, const std::vector<KnownFile>& known);
    QPointer<MainWindowController> endOpening(const QString& path);
    void showProgress(MainWindowController& window);
    [[nodiscard]] MainWindowController* windowOf(const Document& document) const;
    [[nodiscard]] MainWindowController* freeWindow() const;
    bool mayClose(MainWindowController& window);
    bool mayCloseSecondary(QWidget& window);
    // False where the user wants to stay because an import into one of these windows would be lost.
    // Cancels none: the user may still decide to stay.
    bool mayDropImports(const std::vector<MainWindowController*>& windows,
                        const Question& question);
    // Settles what has to be settled before the program ends; false where the person wants to stay.
    // discarded: see settleBeforeQuitting().
    bool mayEnd(const Document* discarded = nullptr);
    // No other window is on the screen.
    [[nodiscard]] bool isLast(const QWidget& window) const;
    // What becomes of an untitled project with edits; false where its window stays open for now.
    bool askToKeep(MainWindowController& window);
    void letGo(Document* document);

    DocumentController& documents_;
    JobQueue& jobs_;
    RandomSourceMaker makeRandom_;
    LookChoice& look_;
    Panels panels_;
    SettingsFile* settings_ = nullptr;
    std::vector<QPointer<MainWindowController>> windows_;
    SecondaryWindows secondary_;
    std::vector<Opening> openings_;
    std::vector<QPointer<Document>> discarded_;
    std::unique_ptr<Exports> exports_;
    std::vector<Arrival> arrivals_;
    bool settling_ = false;
    bool quitting_ = false;
};

}  // namespace zorvel
