#include "app/quitting.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QLabel>
#include <QPointer>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <memory>
#include <vector>

#include "app/document_commands.h"
#include "platform/document_controller.h"
#include "platform/file_reading.h"
#include "platform/job_queue.h"
#include "ui/kit/alerts.h"
#include "ui/kit/shown_text.h"

namespace zorvel {

namespace {

using std::chrono::milliseconds;

constexpr milliseconds silence{500};
constexpr milliseconds patience{10'000};
constexpr milliseconds breath{100};  // between two looks at the windows

QString tr(const char* text) {
    return QCoreApplication::translate("Quitting", text);
}

std::unique_ptr<QLabel> showNotice() {
    auto notice = std::make_unique<QLabel>(tr("Saving the last changes..."));
    notice->setObjectName("savingNotice");
    notice->setWindowFlags(Qt::SplashScreen | Qt::WindowStaysOnTopHint);
    notice->setMargin(24);
    notice->show();
    return notice;
}

std::vector<Document*> waitForWrites(DocumentController& documents, JobQueue& jobs) {
    bool filesAreThere = jobs.finishWrites(silence);
    std::vector<Document*> unsafe = documents.finish(silence);
    QElapsedTimer timer;
    timer.start();
    std::unique_ptr<QLabel> notice;
    // What has failed is not waited for: it says why.
    const auto isOnItsWay = [](const Document* document) { return !document->problem(); };
    while ((!filesAreThere || std::any_of(unsafe.begin(), unsafe.end(), isOnItsWay)) &&
           timer.elapsed() < (patience - silence).count()) {
        if (!notice) notice = showNotice();
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        filesAreThere = jobs.finishWrites(breath);
        unsafe = documents.finish(breath);
    }
    return unsafe;
}

// Waits until it was saved or was not.
bool saveElsewhere(Document& document, const Panels& panels) {
    struct Outcome {
        bool arrived = false;
        bool saved = false;
    };
    QEventLoop loop;
    const QPointer<QEventLoop> waiting(&loop);
    const auto outcome = std::make_shared<Outcome>();
    saveDocumentAs(document, nullptr, panels, [=](bool saved) {
        *outcome = {true, saved};
        if (waiting) waiting->quit();
    });
    if (!outcome->arrived) {
        QTimer::singleShot(patience, &loop, &QEventLoop::quit);
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    }
    return outcome->saved;
}

enum class Answer { saveAs, quitAnyway, cancel };

Answer askAbout(const Document& document, const Panels& panels) {
    const std::optional<FileProblem> problem = document.problem();
    const QString reason = problem ? oneLine(projectMessage(document.displayName(), *problem))
                                   : tr("The disk has not answered in time.");
    return static_cast<Answer>(panels.alerts.ask(
        nullptr, {tr("The last changes to “%1” could not be saved").arg(document.displayName()),
                  reason + "\n\n" +
                      (document.isKeptAside()
                           ? tr("If you quit now, they are kept in a copy that opens at the next "
                                "start.")
                           : tr("If you quit now, they may be lost.")),
                  {tr("Save As..."), tr("Quit Anyway"), tr("Cancel")},
                  1}));
}

// An export, or a plot that was saved.
bool mayGiveUpFiles(JobQueue& jobs, const Panels& panels) {
    if (jobs.finishWrites(milliseconds(0))) return true;
    return panels.alerts.ask(nullptr,
                             {tr("A file is still being written"),
                              tr("If you quit now, what was there before stays in its place."),
                              {tr("Quit Anyway"), tr("Cancel")},
                              0}) == 0;
}

}  // namespace

bool settleBeforeQuitting(DocumentController& documents, JobQueue& jobs, const Panels& panels,
                          const Document* discarded) {
    std::vector<QPointer<Document>> unsafe;
    for (Document* document : waitForWrites(documents, jobs)) {
        if (document != discarded) unsafe.emplace_back(document);
    }
    for (const QPointer<Document>& document : unsafe) {
        if (!document) continue;
        const Answer answer = askAbout(*document, panels);
        if (answer == Answer::cancel) return false;
        if (answer == Answer::saveAs && document && !saveElsewhere(*document, panels)) return false;
    }
    return mayGiveUpFiles(jobs, panels);
}

void settleAtOnce(DocumentController& documents, JobQueue& jobs) {
    waitForWrites(documents, jobs);
}

}  // namespace zorvel
