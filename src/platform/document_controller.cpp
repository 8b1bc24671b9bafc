#include "platform/document_controller.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QMetaObject>
#include <QStandardPaths>
#include <algorithm>
#include <thread>
#include <utility>

#include "platform/file_reading.h"
#include "platform/job_queue.h"
#include "platform/settings.h"

namespace zorvel {

namespace {

const char recentKey[] = "recentPaths";

QStringList storedRecentPaths() {
    return setting(recentKey).toStringList();
}

}  // namespace

DocumentController::Folders DocumentController::userFolders() {
    QString data = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    // The XDG standard says to ignore a relative folder, which Qt 6.4 takes.
    const QString named = qEnvironmentVariable("XDG_DATA_HOME");
    if (QDir::isRelativePath(data)) {
        data = QDir::homePath() + "/.local/share" + data.mid(named.size());
    }
    return {data + "/untitled", data + "/backups"};
}

DocumentController::DocumentController(JobQueue& jobs, const Folders& folders,
                                       const SaveSettings& settings)
    : jobs_(jobs),
      writer_(std::make_unique<JobQueue>(1)),
      services_{writer_.get(), settings, folders.backups, &untitled_},
      untitled_(folders.untitled) {}

// Changes that cannot be written even now stay in the copy aside. A thread that hangs in a disk is
// left running until the process ends, with all that it uses.
DocumentController::~DocumentController() {
    constexpr std::chrono::seconds patience(1);
    for (Document* document : documents()) close(*document);
    for (Document* document : finish(patience)) {
        if (document->isKeptAside()) leaveAside(*document);
    }
    finish(patience);
    const bool hangs = std::any_of(documents_.begin(), documents_.end(),
                                   [](const auto& document) { return document->isBusy(); });
    documents_.clear();
    if (hangs) static_cast<void>(writer_.release());
}

std::vector<Document*> DocumentController::documents() const {
    std::vector<Document*> open;
    for (const auto& document : documents_) {
        if (!document->closing_) open.push_back(document.get());
    }
    return open;
}

QStringList DocumentController::recentPaths() const {
    QStringList paths = storedRecentPaths();
    paths.removeIf([this](const QString& path) { return missingPaths_.contains(path); });
    return paths;
}

// One look at a time: on a dead network it may never end.
void DocumentController::lookForRecentPaths() {
    if (std::exchange(lookingForRecent_, true)) return;
    pathsSinceLook_.clear();
    jobs_.start(
        this,
        [paths = storedRecentPaths()]() mutable {
            paths.removeIf([](const QString& path) { return QFileInfo::exists(path); });
            return paths;
        },
        [this](const QStringList& missing) {
            lookingForRecent_ = false;
            missingPaths_ = missing;
            missingPaths_.removeIf(
                [this](const QString& path) { return pathsSinceLook_.contains(path); });
            emit recentPathsDidChange();
        });
}

void DocumentController::clearRecentPaths() {
    removeSetting(recentKey);
    emit recentPathsDidChange();
}

void DocumentController::noteRecent(const QString& path) {
    const QString absolute = QFileInfo(path).absoluteFilePath();
    QStringList paths = storedRecentPaths();
    paths.removeAll(absolute);
    paths.prepend(absolute);
    missingPaths_.removeAll(absolute);
    pathsSinceLook_.append(absolute);
    constexpr qsizetype kept = 10;
    storeSetting(recentKey, paths.mid(0, kept));
    emit recentPathsDidChange();
}

Document& DocumentController::newDocument() {
    return addDocument(freeUntitledName(false), untitled_.claimNew({}));
}

Document& DocumentController::duplicate(const Document& document) {
    Document& copy =
        addUntitledCopy(document.project().objectContext().records(), document.displayName());
    emit documentDidOpen(&copy, {});
    return copy;
}

Document& DocumentController::addDocument(const QString& untitledName,
                                          const QString& untitledPath) {
    documents_.emplace_back(new Document(services_, *this, untitledName, untitledPath));
    return *documents_.back();
}

Document& DocumentController::addUntitledCopy(ProjectRecords records, const QString& name) {
    Document& document = addDocument(name, untitled_.claimNew(name));
    document.takeOver(std::move(records));
    document.worthKeeping_ = true;
    document.saveUnchanged();
    return document;
}

QString DocumentController::freeUntitledName(bool forOpened) const {
    for (int number = 1;; ++number) {
        QString name = number == 1 ? "Untitled" : QString("Untitled %1").arg(number);
        const auto isTaken = [&](const auto& document) {
            return !document->closing_ && document->displayName() == name &&
                   (!forOpened || !document->isUntouched());
        };
        if (std::none_of(documents_.begin(), documents_.end(), isTaken)) return name;
    }
}

void DocumentController::close(Document& document) {
    beginClosing(document, document.isUntouched());
}

void DocumentController::discard(Document& document) {
    beginClosing(document, true);
}

void DocumentController::beginClosing(Document& document, bool discard) {
    if (std::exchange(document.closing_, true)) return;
    document.disconnect();
    if (discard) {
        document.release(true);
        return;
    }
    document.saveNow();
    continueClosing(document);
}

void DocumentController::continueClosing(Document& document) {
    resumeWaiting();
    if (!document.closing_ || document.isBusy()) return;
    if (!document.isUnsaved()) {
        document.release(false);
    } else if (document.saveState() == Document::SaveState::stuck && document.isKeptAside()) {
        leaveAside(document);
    }
}

void DocumentController::leaveAside(Document& document) {
    const QString message = projectMessage(document.displayName(), *document.problem());
    document.release(false);
    emit changesWereKept(message + " The changes are kept in an untitled project.");
}

void DocumentController::forget(Document& document) {
    const auto place = std::find_if(documents_.begin(), documents_.end(),
                                    [&](const auto& each) { return each.get() == &document; });
    gone_.push_back(std::move(*place));
    documents_.erase(place);
    QMetaObject::invokeMethod(
        this, [this] { gone_.clear(); }, Qt::QueuedConnection);
    resumeWaiting();
}

std::vector<Document*> DocumentController::unsafeDocuments() const {
    std::vector<Document*> unsafe;
    for (const auto& document : documents_) {
        if (!document->ending_ && (document->isUnsaved() || document->isBusy())) {
            unsafe.push_back(document.get());
        }
    }
    return unsafe;
}

bool DocumentController::hasWorkToFinish() const {
    return std::any_of(documents_.begin(), documents_.end(), [](const auto& document) {
        return document->isBusy() || (document->isUnsaved() && !document->problem());
    });
}

// Timers do not run meanwhile: files that were in use are tried again from here.
std::vector<Document*> DocumentController::finish(std::chrono::milliseconds atMost) {
    for (const auto& document : documents_) document->saveNow();
    QElapsedTimer timer;
    QElapsedTimer sinceTry;
    timer.start();
    sinceTry.start();
    while (hasWorkToFinish() && timer.elapsed() < atMost.count()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        QCoreApplication::sendPostedEvents(writer_.get());
        if (sinceTry.elapsed() < services_.settings.busyRetry.count()) continue;
        sinceTry.restart();
        for (Document* document : unsafeDocuments()) {
            if (!document->problem()) document->saveNow();
        }
    }
    return unsafeDocuments();
}

}  // namespace zorvel
