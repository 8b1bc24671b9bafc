// The program's windows as the tests drive them: real widgets, a fake panel, seeded random numbers,
// and waits that process events until a condition holds.
#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QLabel>
#include <QSettings>
#include <QTableView>
#include <QTemporaryDir>
#include <latch>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "app/look_choice.h"
#include "app/project_windows.h"
#include "base/console.h"
#include "metrics/random_source.h"
#include "platform/job_queue.h"
#include "platform/preferences.h"
#include "ui/kit/open_panel.h"
#include "ui/kit/value_field.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"

namespace zorvel {

inline const char* const exampleFile = ZORVEL_SOURCE_DIR "/examples/oribatid-mites.csv";

template <class Condition>
bool waitUntil(Condition condition) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > 20000) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return true;
}

class FakeOpenPanel : public OpenPanel {
  public:
    QString chooseTextFile(QWidget* /*parent*/) override { return answer; }
    QString answer;
};

class WindowTest : public ::testing::Test {
  protected:
    static constexpr std::uint64_t seed = 11;
    static constexpr int workers = 3;

    void SetUp() override {
        QSettings().clear();
        Preferences().initializePreferences();
        setConsoleSink([this](std::string_view line) { console.emplace_back(line); });
        windows = std::make_unique<ProjectWindows>(
            *jobs, [this] { return makeRandom(); }, look, panel);
        window = &windows->openUntitled();
    }
    void TearDown() override {
        windows.reset();
        jobs.reset();
        setConsoleSink({});
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
    QTableView& censusTable() { return child<QTableView>("censusTable"); }
    QTableView& speciesTable() { return child<QTableView>("speciesTable"); }

    QTemporaryDir folder;
    std::vector<std::string> console;
    std::unique_ptr<JobQueue> jobs = std::make_unique<JobQueue>(workers);
    LookChoice look{*qApp};
    FakeOpenPanel panel;
    std::function<std::unique_ptr<RandomSource>()> makeRandom = [] {
        return std::make_unique<SeededRandom>(seed);
    };
    std::unique_ptr<ProjectWindows> windows;
    MainWindowController* window = nullptr;
};

}  // namespace zorvel
