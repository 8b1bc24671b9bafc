// The program's windows as the tests drive them: real widgets, fake panels that answer what the
// test says, folders of the test's own, seeded random numbers, and waits that process events until
// a condition holds.
#pragma once

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <latch>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "app/look_choice.h"
#include "app/project_windows.h"
#include "base/console.h"
#include "metrics/random_source.h"
#include "platform/document_controller.h"
#include "platform/job_queue.h"
#include "platform/preferences.h"
#include "platform/settings.h"
#include "tests/support/wait_until.h"
#include "ui/fake_panels.h"
#include "ui/kit/value_field.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"
#include "ui/main/record_tables.h"

namespace zorvel {

inline const char* const exampleFile = ZORVEL_SOURCE_DIR "/examples/oribatid-mites.csv";

class WindowTest : public ::testing::Test {
  protected:
    static constexpr std::uint64_t seed = 11;
    static constexpr int workers = 3;

    void SetUp() override {
        clearSettings();
        Preferences().initializePreferences();
        setConsoleSink([this](std::string_view line) { console.emplace_back(line); });
        startProgram();
    }
    void TearDown() override {
        endProgram();
        jobs.reset();
        setConsoleSink({});
    }

    // As at the start of the program, with what an earlier one has left in the folders.
    void startProgram(const QStringList& files = {}) {
        documents = std::make_unique<DocumentController>(
            *jobs,
            DocumentController::Folders{folder.filePath("untitled"), folder.filePath("backups")});
        windows = std::make_unique<ProjectWindows>(
            *documents, *jobs, [this] { return makeRandom(); }, look,
            Panels{panel, savePanel, alerts});
        windows->start(files);
        window = windows->windows().front();
        drainJobs();
    }
    void endProgram() {
        windows.reset();
        documents.reset();
    }
    void sendDeletions() { QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); }

    ObjectContext& context() { return window->document().project().objectContext(); }
    void trigger(const char* name) { child<QAction>(name).trigger(); }
    bool waitUntilSaved() {
        return waitUntil(
            [this] { return window->document().saveState() == Document::SaveState::saved; });
    }

    QString write(const QString& name, const QByteArray& bytes) {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return file.fileName();
    }

    // Into the test's window, until what is to be shown at once is shown.
    void open(const QString& path) {
        windows->openFile(path, window);
        ASSERT_TRUE(waitUntil([this] { return !window->mainView().isInProgress(); }));
    }

    // Until neither of the values from the background is grey or empty.
    bool waitForJobs() {
        return waitUntil([this] {
            return !value("rarefiedRichness").isStale() && !value("alroySQS").isStale() &&
                   !text("rarefiedRichness").empty() && !text("alroySQS").empty();
        });
    }

    // Until all that was given to the queue before has ended and been delivered or dropped: every
    // worker must have come to the end of its earlier work to meet the others here.
    void drainJobs() {
        auto meeting = std::make_shared<std::latch>(workers);
        QObject receiver;
        int met = 0;
        for (int i = 0; i < workers; ++i) {
            jobs->start(
                &receiver,
                [meeting] {
                    meeting->arrive_and_wait();
                    return 0;
                },
                [&met](int) { ++met; });
        }
        EXPECT_TRUE(waitUntil([&met] { return met == workers; }));
    }

    template <class Widget>
    Widget& child(const char* name) {
        auto* widget = window->findChild<Widget*>(name);
        if (widget == nullptr) throw std::runtime_error(std::string("no ") + name);
        return *widget;
    }
    ValueField& value(const std::string& key) {
        return child<ValueField>((key + "ValueTextField").c_str());
    }
    std::string text(const std::string& key) { return value(key).text().toStdString(); }
    std::string label(const char* name) { return child<QLabel>(name).text().toStdString(); }
    CensusTableView& censusTable() { return child<CensusTableView>("censusTable"); }
    SpeciesTableView& speciesTable() { return child<SpeciesTableView>("speciesTable"); }
    std::string cell(QTableView& table, int row, int column) {
        return table.model()->index(row, column).data().toString().toStdString();
    }
    // Types into a cell's editor, in place of what stands there, and presses the key.
    void type(RecordTableView& table, int row, int column, const QString& text,
              Qt::Key key = Qt::Key_Return) {
        table.beginEditing(table.model()->index(row, column));
        ASSERT_NE(table.openEditor(), nullptr);
        QTest::keyClicks(table.openEditor(), text);
        QTest::keyClick(table.openEditor(), key);
    }

    QTemporaryDir folder;
    std::vector<std::string> console;
    std::unique_ptr<JobQueue> jobs = std::make_unique<JobQueue>(workers);
    LookChoice look{*qApp};
    FakeOpenPanel panel;
    FakeSavePanel savePanel;
    FakeAlerts alerts;
    std::function<std::unique_ptr<RandomSource>()> makeRandom = [] {
        return std::make_unique<SeededRandom>(seed);
    };
    std::unique_ptr<DocumentController> documents;
    std::unique_ptr<ProjectWindows> windows;
    MainWindowController* window = nullptr;
};

}  // namespace zorvel
