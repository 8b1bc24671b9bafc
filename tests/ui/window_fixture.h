// The program's windows as the tests drive them: real widgets, fake panels that answer what the
// test says, a folder of the test's own, seeded random numbers, and keys as a user presses them.
#pragma once

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>
#include <QWindow>
#include <latch>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
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
#include "ui/kit/message_strip.h"
#include "ui/kit/value_field.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"
#include "ui/main/record_tables.h"
#include "ui/main/table_cells.h"

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
        releaseJobs();
        endProgram();
        jobs.reset();
        setConsoleSink({});
    }

    // As at the start of the program, with the folders as an earlier one left them.
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

    // Keys reach the window, and go from there to the widget with the focus, shortcuts first.
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(window->windowHandle(), key, modifiers);
    }
    void press(QKeySequence::StandardKey key) {
        const QKeyCombination keys = QKeySequence(key)[0];
        press(keys.key(), keys.keyboardModifiers());
    }
    void typeText(const std::string& text) {
        for (const char c : text) QTest::keyClick(window->windowHandle(), c);
    }

    // Keeps every worker from its next job until releaseJobs(), or the end of the test.
    void holdJobs() {
        held = std::make_shared<std::latch>(1);
        for (int i = 0; i < workers; ++i) {
            jobs->start(
                &holder,
                [gate = held] {
                    gate->wait();
                    return 0;
                },
                [](int) {});
        }
    }
    void releaseJobs() {
        if (const auto gate = std::exchange(held, nullptr)) gate->count_down();
    }

    ObjectContext& context() { return window->document().project().objectContext(); }
    Census census(std::size_t place = 0) { return context().censuses().at(place); }
    // The records of the project, a line each: "North", "Abies,3", "-,1,out".
    std::vector<std::string> records() {
        std::vector<std::string> lines;
        const auto nameOf = [](const auto& record) {
            return record.name() ? record.name()->str() : std::string("-");
        };
        for (const Census& each : context().censuses()) {
            lines.push_back(nameOf(each));
            for (const Zorvel& taxon : each.taxa()) {
                lines.push_back(nameOf(taxon) + "," + std::to_string(taxon.abundance()) +
                                (taxon.include() ? "" : ",out"));
            }
        }
        return lines;
    }
    // A copy of the records with what is typed in open editors.
    std::shared_ptr<const ObjectContext> drafts() {
        return context().frozenCopy(
            [this](ObjectContext& copy) { window->mainView().storeDrafts(copy); });
    }
    void trigger(const char* name) { child<QAction>(name).trigger(); }
    MessageStrip& strip() { return window->mainView().messageStrip(); }
    QStringList messages() { return strip().messages(); }
    bool isIdle() { return !window->mainView().isInProgress(); }
    // Gives the project a file of its own.
    void saveAs(const QString& path) {
        savePanel.answer = path;
        trigger("saveDocumentAs");
        ASSERT_TRUE(waitUntil([&] { return window->document().path() == path; }));
        ASSERT_TRUE(waitUntilSaved());
    }
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

    // Into the test's window; until the file is read.
    void open(const QString& path) {
        windows->openFiles({path}, window);
        ASSERT_TRUE(waitUntil([this] { return isIdle(); }));
    }
    // Two censuses with three species each, in the active window.
    void openTrees() {
        open(write("trees.csv", ",Abies,Betula,Larix\nNorth,3,14,2\nSouth,5,6,1\n"));
        ASSERT_TRUE(waitUntil([this] { return window->isActiveWindow(); }));
        ASSERT_EQ(records(), (std::vector<std::string>{"North", "Abies,3", "Betula,14", "Larix,2",
                                                       "South", "Abies,5", "Betula,6", "Larix,1"}));
    }

    // Until the values from background jobs are there.
    bool waitForJobs() {
        return waitUntil([this] {
            return !value("rarefiedRichness").isStale() && !value("alroySQS").isStale() &&
                   !text("rarefiedRichness").empty() && !text("alroySQS").empty();
        });
    }

    // Until every earlier job has ended and its result was delivered or dropped: the workers meet
    // here after their earlier work.
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
    std::vector<std::string> column(QTableView& table, int number) {
        std::vector<std::string> cells;
        for (int row = 0; row < table.model()->rowCount(); ++row) {
            cells.push_back(cell(table, row, number));
        }
        return cells;
    }
    // Opens a cell's editor, with its text selected.
    TableTextField& edit(RecordTableView& table, int row, int number) {
        table.beginEditing(table.model()->index(row, number));
        TableTextField* opened = table.openEditor();
        if (opened == nullptr) throw std::runtime_error("no editor");
        return *opened;
    }
    // Types into a cell's editor instead of its text, and presses the key.
    void type(RecordTableView& table, int row, int number, const QString& text,
              Qt::Key key = Qt::Key_Return) {
        QTest::keyClicks(&edit(table, row, number), text);
        QTest::keyClick(table.openEditor(), key);
    }

    QTemporaryDir folder;
    std::vector<std::string> console;
    std::shared_ptr<std::latch> held;
    QObject holder;
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
