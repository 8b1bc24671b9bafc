// Documents of a controller in folders of their own, with a real event loop and short intervals.
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
#include <string>
#include <vector>

#include "model/edits.h"
#include "platform/backups.h"
#include "platform/document.h"
#include "platform/document_controller.h"
#include "platform/job_queue.h"
#include "platform/settings.h"
#include "store/project_file.h"
#include "tests/support/wait_until.h"

namespace zorvel {

// A census of that name, with one taxon, as a step of its own.
inline Census addNamedCensus(Document& document, const std::string& name) {
    ObjectContext& context = document.project().objectContext();
    const Census census = addCensus(context);
    editName(context, census, name);
    editAbundance(context, addTaxon(context, census), 7);
    return census;
}

inline std::vector<std::string> censusNamesOf(const ObjectContext& context) {
    std::vector<std::string> names;
    for (const Census& census : context.censuses()) {
        names.push_back(census.name().value_or(SharedText("-")).str());
    }
    return names;
}

inline std::vector<std::string> censusNames(const Document& document) {
    return censusNamesOf(document.project().objectContext());
}

// What a reader of its own finds in the file; a word for the trouble where there is some.
inline std::vector<std::string> namesInFile(const QString& path) {
    ProjectFileOptions options;
    options.readOnly = true;
    auto file = ProjectFile::open(QFile::encodeName(path).toStdString(), options);
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
    std::vector<QString> kept;
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
                         [this](const QString& message) { kept.push_back(message); });
    }
};

// One run of the program.
struct ProgramRun {
    ProgramRun(const DocumentController::Folders& folders, const SaveSettings& settings)
        : controller(jobs, folders, settings), told(controller) {}

    Document* open(const QString& path) {
        const std::size_t before = told.opened.size();
        const std::size_t failures = told.failed.size();
        controller.open(path);
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
        settings.autosave = std::chrono::milliseconds(40);
        settings.stepPoll = std::chrono::milliseconds(5);
        settings.busyRetry = std::chrono::milliseconds(5);
        settings.firstRetry = std::chrono::milliseconds(20);
        settings.lastRetry = std::chrono::milliseconds(80);
    }

    [[nodiscard]] QString at(const QString& name) const { return folder.filePath(name); }
    [[nodiscard]] DocumentController::Folders folders() const {
        return {at("data/untitled"), at("data/backups")};
    }
    [[nodiscard]] std::unique_ptr<ProgramRun> newRun() {
        return std::make_unique<ProgramRun>(folders(), settings);
    }
    [[nodiscard]] QStringList untitledFiles() const {
        return QDir(folders().untitled).entryList(QDir::Files);
    }
    // A project file with a census of each name.
    QString makeProject(const QString& name, const std::vector<std::string>& censuses) const {
        ObjectContext context;
        for (const std::string& census : censuses) editName(context, addCensus(context), census);
        EXPECT_TRUE(ProjectFile::create(QFile::encodeName(at(name)).toStdString(), context).ok());
        return at(name);
    }
    QString makeFile(const QString& name, const QByteArray& bytes) const {
        QFile file(at(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        return at(name);
    }

    QTemporaryDir folder;
    SaveSettings settings;
};

inline bool isSaved(const Document* document) {
    return document->saveState() == Document::SaveState::saved;
}

// Once the turn has ended in which it was edited.
inline bool isSavedSoon(const Document* document) {
    QCoreApplication::processEvents();
    return waitUntil([&] { return isSaved(document); });
}

}  // namespace zorvel
