// How the controller opens documents. A request is located by device and inode, waits while this
// run is reading, making or closing the same file, is read in the background, and becomes a
// document.
#include <QFileInfo>
#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "base/console.h"
#include "model/import.h"
#include "platform/document_controller.h"
#include "platform/file_names.h"
#include "platform/file_reading.h"
#include "platform/job_queue.h"
#include "platform/project_writes.h"
#include "store/replacement_file.h"

namespace zorvel {

struct FileReading {
    // None for a text file.
    std::unique_ptr<ProjectFile> file;
    ProjectRecords records;
    // Why there are no records, for the user, with the file's name; empty if there are.
    QString failure;
    // Of a project file.
    std::optional<FileProblem> problem;
    // The project that this one is the copy aside of; empty if it is none.
    QString asideOf;
    // Of a text file's records.
    LeftOut leftOut;
};

namespace {

// kind: guessed if absent.
FileReading readText(NamedFile& file, std::optional<FileKind> kind) {
    const QString name = QFileInfo(file.path).fileName();
    FileReading reading;
    Result<InputFile> input = file.take();
    Result<std::string> text = input ? std::move(input).value().text() : input.problem();
    if (!text || text.value().empty()) {
        const std::string reason = text ? "the file is empty" : text.problem().message;
        writeConsoleLines({"WARNING: " + reason, "WARNING: no string obtained from file"});
        reading.failure = unreadableMessage(name, reason);
        return reading;
    }
    if (!kind) kind = guessFileKind(text.value());
    const auto names = std::make_shared<NamePool>();
    ParsedCensuses parsed =
        parseAndTell(*kind, std::string(std::move(text).value()), {}, names.get());
    reading.leftOut = parsed.leftOut;
    if (!parsed.value) {
        reading.failure = unreadableMessage(name, reasonOf(parsed), parsed.place);
    } else if (parsed.value->empty()) {
        reading.failure = unreadableMessage(name, "there is no census in the file");
    } else {
        reading.records = recordsOf(std::move(*parsed.value), names);
    }
    return reading;
}

// shownName stands before the message of a failure.
FileReading readProject(const QString& path, const QString& shownName,
                        const ProjectFileOptions& options) {
    FileReading reading;
    const auto fail = [&](const FileProblem& problem) {
        reading.failure = projectMessage(shownName, problem);
        reading.problem = problem;
        return std::move(reading);
    };
    auto opened = ProjectFile::open(encodedPath(path), options);
    if (!opened.ok()) return fail(opened.problem());
    auto records = opened.value()->load();
    if (!records.ok()) return fail(records.problem());
    reading.file = std::move(opened).value();
    reading.records = std::move(records).value();
    return reading;
}

// Files of the shared folder that another run is using, or has removed, are skipped silently.
bool isSkipped(FileTrouble trouble) {
    return trouble == FileTrouble::heldElsewhere || trouble == FileTrouble::busy ||
           trouble == FileTrouble::notFound;
}

}  // namespace

void DocumentController::open(const std::shared_ptr<NamedFile>& file,
                              std::optional<FileKind> kind) {
    Request request{file, Source::any, QFileInfo(file->path).fileName(), kind};
    if (untitled_.holds(file->path)) {
        request.source = Source::untitledFolder;
        untitled_.claim(request.shownName);
    }
    openLocated(request);
}

void DocumentController::openBackup(const QString& path, const QString& displayName) {
    locate(path, {nullptr, Source::backup, displayName});
}

void DocumentController::recover() {
    using Files = std::vector<std::shared_ptr<NamedFile>>;
    jobs_.start(
        this,
        [folder = untitled_.path()] {
            removeUnfinishedFiles(encodedPath(folder));
            Files files;
            for (const QString& name : UntitledFolder::names(folder)) {
                files.push_back(std::make_shared<NamedFile>(folder + "/" + name));
            }
            return files;
        },
        [this](const Files& files) {
            for (const auto& file : files) {
                const QString name = QFileInfo(file->path).fileName();
                if (untitled_.claim(name)) openLocated({file, Source::recovered, name});
            }
        });
}

void DocumentController::locate(const QString& path, const Request& request) {
    jobs_.start(
        this, [path] { return std::make_shared<NamedFile>(path); },
        [this, located = Request(request)](const std::shared_ptr<NamedFile>& file) mutable {
            located.file = file;
            openLocated(located);
        });
}

void DocumentController::openLocated(const Request& request) {
    if (!request.file->identity) return read(request);
    const FileIdentity identity = *request.file->identity;
    if (Document* document = reopened(identity)) return showOpen(request, *document);
    if (mustWait(identity)) {
        request.file->input.reset();  // it is located again
        waiting_.push_back(request);
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
    if (!document.isUntitled()) noteRecent(request.file->path);
    emit documentDidOpen(&document, request.file->path);
}

void DocumentController::addCopy(const Request& request, ProjectRecords records) {
    emit documentDidOpen(&addUntitledCopy(std::move(records), request.shownName),
                         request.file->path);
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
        const FileIdentity& identity = *request.file->identity;
        const Document* document = documentAt(identity);
        const bool opens = document && (!document->closing_ || canReopen(*document));
        return mustWait(identity) && !opens;
    };
    const auto ready = std::stable_partition(waiting_.begin(), waiting_.end(), stays);
    const std::vector<Request> located(ready, waiting_.end());
    waiting_.erase(ready, waiting_.end());
    for (const Request& request : located) locate(request.file->path, request);
}

void DocumentController::read(const Request& request) {
    jobs_.start(
        this,
        [request, options = services_.settings.file]() mutable {
            NamedFile& file = *request.file;
            if (!file.isProject) return readText(file, request.kind);
            options.readOnly = request.source == Source::backup;
            FileReading reading = readProject(file.path, request.shownName, options);
            if (options.readOnly) reading.file.reset();
            if (request.isInFolder()) reading.asideOf = projectOfAside(file.path);
            return reading;
        },
        [this, request](FileReading reading) { finishReading(request, reading); });
}

void DocumentController::finishReading(const Request& request, FileReading& reading) {
    if (request.file->identity) {
        const auto place = std::find(reading_.begin(), reading_.end(), *request.file->identity);
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
    emit openDidFail(request.file->path, reading.failure);
}

void DocumentController::openRecords(const Request& request, FileReading& reading) {
    if (request.source == Source::backup) {
        return addCopy(request, std::move(reading.records));
    }
    const QString& path = request.file->path;
    const bool inFolder = request.isInFolder();
    const bool isText = !reading.file;
    QString name = inFolder ? UntitledFolder::nameIn(request.shownName) : displayNameOf(path);
    if (name.isEmpty()) name = freeUntitledName(true);
    Document& document = addDocument(name, isText ? untitled_.claimNew(name) : QString());
    document.takeOver(std::move(reading.records));
    if (!isText) document.setFile(std::move(reading.file), inFolder);
    document.worthKeeping_ = inFolder;
    if (!inFolder) noteRecent(path);
    emit documentDidOpen(&document, request.source == Source::recovered ? QString() : path);
    if (isText) emit documentDidReadText(&document, path, reading.leftOut);
    if (!reading.asideOf.isEmpty()) {
        emit asideDidOpen(&document,
                          QString("This copy has the changes that could not be saved to %1. "
                                  "Save it under a name of your choice, or close and discard it.")
                              .arg(reading.asideOf));
    }
}

}  // namespace zorvel
