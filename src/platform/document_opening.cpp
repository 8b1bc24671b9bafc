// How the controller opens documents. A request is located by device and inode, waits while this
// run is reading, making or closing the same file, is read in the background, and becomes a
// document.
#include <QFileInfo>
#include <algorithm>
#include <utility>

#include "platform/document_controller.h"
#include "platform/file_names.h"
#include "platform/file_reading.h"
#include "platform/job_queue.h"
#include "platform/project_writes.h"
#include "store/replacement_file.h"

namespace zorvel {

namespace {

// Files of the shared folder that another run is using, or has removed, are skipped silently.
bool isSkipped(FileTrouble trouble) {
    return trouble == FileTrouble::heldElsewhere || trouble == FileTrouble::busy ||
           trouble == FileTrouble::notFound;
}

}  // namespace

void DocumentController::open(const std::shared_ptr<NamedFile>& file,
                              std::optional<FileKind> kind) {
    Request request{file->path,     Source::any, QFileInfo(file->path).fileName(),
                    file->identity, file,        kind};
    if (untitled_.holds(request.path)) {
        request.source = Source::untitledFolder;
        untitled_.claim(request.shownName);
    }
    openLocated(request);
}

void DocumentController::openBackup(const QString& path, const QString& displayName) {
    locate({path, Source::backup, displayName, std::nullopt});
}

void DocumentController::recover() {
    jobs_.start(
        this,
        [folder = untitled_.path()] {
            removeUnfinishedFiles(encodedPath(folder));
            return UntitledFolder::names(folder);
        },
        [this](const QStringList& names) {
            for (const QString& name : names) {
                if (!untitled_.claim(name)) continue;
                read({untitled_.pathOf(name), Source::recovered, name, std::nullopt});
            }
        });
}

void DocumentController::locate(const Request& request) {
    jobs_.start(
        this, [path = request.path] { return std::make_shared<NamedFile>(path); },
        [this, located = Request(request)](const std::shared_ptr<NamedFile>& file) mutable {
            located.file = file;
            located.identity = file->identity;
            openLocated(located);
        });
}

void DocumentController::openLocated(const Request& request) {
    if (!request.identity) return read(request);
    const FileIdentity identity = *request.identity;
    if (Document* document = reopened(identity)) return showOpen(request, *document);
    if (mustWait(identity)) {
        waiting_.push_back(request);
        waiting_.back().file = nullptr;  // it is located again
        return;
    }
    reading_.push_back(identity);
    read(request);
}

Document* DocumentController::documentAt(const FileIdentity& identity) const {
    for (const auto& document : documents_) {
        if (document->file_ && document->file_->identity == identity) return document.get();
    }
    return nullptr;
}

bool DocumentController::canReopen(const Document& closing) {
    return !closing.ending_ && closing.problem().has_value();
}

// A closed document whose changes cannot be written yet is opened again as it is.
Document* DocumentController::reopened(const FileIdentity& identity) {
    Document* document = documentAt(identity);
    if (!document || !document->closing_) return document;
    if (!canReopen(*document)) return nullptr;
    document->closing_ = false;
    return document;
}

void DocumentController::showOpen(const Request& request, Document& document) {
    if (request.source == Source::backup) {
        addCopy(request, document.project().objectContext().records());
        return;
    }
    if (!document.isUntitled()) noteRecent(request.path);
    emit documentDidOpen(&document, request.path);
}

void DocumentController::addCopy(const Request& request, ProjectRecords records) {
    emit documentDidOpen(&addUntitledCopy(std::move(records), request.shownName), request.path);
}

bool DocumentController::isBeingRead(const FileIdentity& identity) const {
    return std::find(reading_.begin(), reading_.end(), identity) != reading_.end();
}

bool DocumentController::mustWait(const FileIdentity& identity) const {
    if (isBeingRead(identity) || documentAt(identity)) return true;
    return std::any_of(documents_.begin(), documents_.end(),
                       [](const auto& document) { return document->isMakingFile(); });
}

// Their paths may lead to other files by now, so each is located again.
void DocumentController::resumeWaiting() {
    const auto stays = [this](const Request& request) {
        const Document* document = documentAt(*request.identity);
        const bool opens = document && (!document->closing_ || canReopen(*document));
        return mustWait(*request.identity) && !opens;
    };
    const auto ready = std::stable_partition(waiting_.begin(), waiting_.end(), stays);
    const std::vector<Request> located(ready, waiting_.end());
    waiting_.erase(ready, waiting_.end());
    for (const Request& request : located) locate(request);
}

void DocumentController::read(const Request& request) {
    jobs_.start(
        this,
        [request, options = services_.settings.file]() mutable {
            if (request.source == Source::any) {
                return readAnyFile(*request.file, options, request.kind);
            }
            options.readOnly = request.source == Source::backup;
            FileReading reading = readProjectFile(request.path, request.shownName, options);
            if (options.readOnly) {
                reading.file.reset();
            } else {
                reading.asideOf = projectOfAside(request.path);
            }
            return reading;
        },
        [this, request](FileReading reading) { finishReading(request, reading); });
}

void DocumentController::finishReading(const Request& request, FileReading& reading) {
    if (request.identity) {
        const auto place = std::find(reading_.begin(), reading_.end(), *request.identity);
        if (place != reading_.end()) reading_.erase(place);
    }
    if (reading.failure.isEmpty()) {
        openRecords(request, reading);
    } else {
        reportFailure(request, reading);
    }
    resumeWaiting();
}

void DocumentController::reportFailure(const Request& request, const FileReading& reading) {
    if (request.source == Source::recovered) {
        untitled_.giveUp(request.shownName);
        const FileTrouble trouble = reading.problem->trouble;
        if (isSkipped(trouble) || !untitled_.isNewProblem(request.shownName, trouble)) return;
    }
    emit openDidFail(request.path, reading.failure);
}

void DocumentController::openRecords(const Request& request, FileReading& reading) {
    if (request.source == Source::backup) {
        return addCopy(request, std::move(reading.records));
    }
    const bool inFolder = request.source != Source::any;
    const bool isText = !reading.file;
    QString name =
        inFolder ? UntitledFolder::nameIn(request.shownName) : displayNameOf(request.path);
    if (name.isEmpty()) name = freeUntitledName(true);
    Document& document = addDocument(name, reading.file ? QString() : untitled_.claimNew(name));
    document.takeOver(std::move(reading.records));
    if (reading.file) document.setFile(std::move(reading.file), inFolder);
    document.worthKeeping_ = inFolder;
    if (!inFolder) noteRecent(request.path);
    emit documentDidOpen(&document, request.source == Source::recovered ? QString() : request.path);
    if (isText) emit documentDidReadText(&document, request.path, reading.leftOut);
    if (!reading.asideOf.isEmpty()) {
        emit asideDidOpen(&document,
                          QString("This copy has the changes that could not be saved to %1. "
                                  "Save it under a name of your choice, or close and discard it.")
                              .arg(reading.asideOf));
    }
}

}  // namespace zorvel
