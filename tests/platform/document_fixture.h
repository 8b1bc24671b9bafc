// Documents of a controller in folders of their own, with a real event loop and short intervals, on
// a disk that can fail.
#pragma once

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QTemporaryDir>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "model/edits.h"
#include "platform/document_controller.h"
#include "platform/file_reading.h"
#include "platform/job_queue.h"
#include "platform/project_writes.h"
#include "platform/settings.h"
#include "test_disk.h"
#include "tests/support/wait_until.h"

namespace zorvel {

using Names = std::vector<std::string>;
using State = Document::SaveState;
using std::chrono::milliseconds;

// A census of that name, with one taxon, as a step of its own.
inline void addNamedCensus(Document& document, const std::string& name) {
    ObjectContext& context = document.project().objectContext();
    const Census census = addCensus(context);
    editName(context, census, name);
    editAbundance(context, addTaxon(context, census), 7);
}

inline Names censusNamesOf(const ObjectContext& context) {
    Names names;
    for (const Census& census : context.censuses()) {
        names.push_back(census.name().value_or(SharedText("-")).str());
    }
    return names;
}
inline Names censusNames(const Document& document) {
    return censusNamesOf(document.project().objectContext());
}

inline void undoAll(Document& document) {
    ObjectContext& context = document.project().objectContext();
    while (context.canUndo()) context.undo();
}

// What a reader of its own finds in the file; a word for the trouble if there is some.
inline Names namesInFile(const QString& path) {
    ProjectFileOptions options;
    options.readOnly = true;
    auto file = ProjectFile::open(encodedPath(path), options);
    if (!file.ok()) return {"cannot be opened"};
    auto records = file.value()->load();
    if (!records.ok()) return {"cannot be read"};
    ObjectContext context;
    context.adopt(std::move(records).value());
    return censusNamesOf(context);
}

inline QStringList backupPaths(const Document& document) {
    QStringList paths;
    for (const Backup& backup : backupsIn(document.backupFolder())) paths.append(backup.path);
    return paths;
}

// Once the turn has ended in which it was edited.
inline bool isSaved(const Document* document) {
    return document->saveState() == State::saved;
}
inline bool isSavedSoon(const Document& document) {
    QCoreApplication::processEvents();
    return waitUntil([&] { return isSaved(&document); });
}
inline bool addAndSave(Document& document, const std::string& name) {
    addNamedCensus(document, name);
    return isSavedSoon(document);
}
inline bool becomes(const Document& document, State state) {
    return waitUntil([&] { return document.saveState() == state; });
}

// What a controller has told.
struct Told {
    struct Opened {
        QPointer<Document> document;
        QString path;
    };
    struct Failed {
        QString path;
        QString message;
    };
    std::vector<Opened> opened;
    std::vector<Failed> failed;
    QStringList kept;
    QStringList asides;
    QObject connections;  // they end with this, before the controller tells its last

    explicit Told(DocumentController& controller) {
        QObject::connect(&controller, &DocumentController::documentDidOpen, &connections,
                         [this](Document* document, const QString& path) {
                             opened.push_back({document, path});
                         });
        QObject::connect(&controller, &DocumentController::openDidFail, &connections,
                         [this](const QString& path, const QString& message) {
                             failed.push_back({path, message});
                         });
        QObject::connect(&controller, &DocumentController::changesWereKept, &connections,
                         [this](const QString& message) { kept.append(message); });
        QObject::connect(&controller, &DocumentController::asideDidOpen, &connections,
                         [this](Document*, const QString& message) { asides.append(message); });
    }
};

// One run of the program.
struct ProgramRun {
    ProgramRun(const DocumentController::Folders& folders, const SaveSettings& settings)
        : controller(jobs, folders, settings), told(controller) {}

    void beginOpening(const QString& path) {
        controller.open(std::make_shared<NamedFile>(path), std::nullopt);
    }
    // Null if it cannot be opened.
    Document* open(const QString& path) {
        const std::size_t before = told.opened.size();
        const std::size_t failures = told.failed.size();
        beginOpening(path);
        waitUntil([&] { return told.opened.size() > before || told.failed.size() > failures; });
        return told.opened.size() > before ? told.opened.back().document.data() : nullptr;
    }

    JobQueue jobs;
    DocumentController controller;
    Told told;
};

class DocumentFixture : public ::testing::Test {
  protected:
    DocumentFixture() {
        clearSettings();
        settings.autosave = milliseconds(40);
        settings.stepPoll = milliseconds(5);
        settings.busyRetry = milliseconds(5);
        settings.firstRetry = milliseconds(20);
        settings.lastRetry = milliseconds(80);
        settings.file.vfs = disk.name();
    }

    [[nodiscard]] QString at(const QString& name) const { return folder.filePath(name); }
    [[nodiscard]] DocumentController::Folders folders() const {
        return {at("data/untitled"), at("data/backups")};
    }
    void restart() {
        run.reset();
        run = std::make_unique<ProgramRun>(folders(), settings);
    }
    [[nodiscard]] QStringList untitledFiles() const {
        return QDir(folders().untitled).entryList({"*.zorvel"}, QDir::Files);
    }
    [[nodiscard]] Names namesInUntitledFile() const {
        return namesInFile(folders().untitled + "/" + untitledFiles().value(0));
    }
    // A project file with a census of each name.
    QString makeProject(const QString& name, const Names& censuses) const {
        ObjectContext context;
        for (const std::string& census : censuses) editName(context, addCensus(context), census);
        EXPECT_TRUE(ProjectFile::create(encodedPath(at(name)), context).ok());
        return at(name);
    }
    QString makeFile(const QString& name, const QByteArray& bytes) const {
        QFile file(at(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        return at(name);
    }
    Document& open(const QString& path) {
        Document* document = run->open(path);
        if (!document) throw std::runtime_error("not opened: " + path.toStdString());
        return *document;
    }
    // A new run with a project "a" that has one census.
    Document& openNorth() {
        restart();
        return open(makeProject("a.zorvel", {"North"}));
    }
    std::optional<FileProblem> saveAs(Document& document, const QString& name) {
        std::optional<std::optional<FileProblem>> answer;
        document.saveAs(at(name), [&](const auto& problem) { answer = problem; });
        EXPECT_TRUE(waitUntil([&] { return answer.has_value(); }));
        return answer.value_or(std::nullopt);
    }
    void closeAndWait(Document& document) {
        run->controller.close(document);
        EXPECT_TRUE(run->controller.finish(std::chrono::seconds(20)).empty());
    }
    // The projects that the run finds left in the folder.
    std::vector<Document*> recovered(std::size_t expected) {
        run->controller.recover();
        waitUntil([&] { return run->told.opened.size() >= expected; });
        processEventsFor(60);
        std::vector<Document*> documents;
        for (const auto& opened : run->told.opened) {
            EXPECT_EQ(opened.path, "");
            documents.push_back(opened.document);
        }
        EXPECT_EQ(documents.size(), expected);
        return documents;
    }

    QTemporaryDir folder;
    TestDisk disk;
    SaveSettings settings;
    std::unique_ptr<ProgramRun> run;  // ends before its disk
};

}  // namespace zorvel
