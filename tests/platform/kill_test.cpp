// The program is killed while it writes three projects, again and again. Each time all three open,
// none holds what it never was, and none has lost what it said was saved.
#include <gtest/gtest.h>
#include <time.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <cstdlib>
#include <map>
#include <random>
#include <string>

#include "store/project_file.h"

namespace zorvel {
namespace {

long long milliseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000LL + now.tv_nsec / 1000000;
}

// One project as the child told of it: when each state began, and the last that was saved.
struct Story {
    std::map<std::int64_t, long long> states;
    std::int64_t saved = 0;
};

// See kill_child.cpp; -1 for a file that cannot be read, -2 for records that are no state.
std::int64_t stateIn(const QString& path) {
    auto file = ProjectFile::open(path.toStdString());
    if (!file.ok()) return -1;
    auto records = file.value()->load();
    if (!records.ok()) return -1;
    ObjectContext context;
    context.adopt(std::move(records).value());
    if (context.censusCount() == 0) return 0;
    const std::int64_t state = context.taxa().front().abundance();
    for (const Census& census : context.censuses()) {
        if (census.name() != SharedText(std::to_string(state)) || census.taxonCount() != 1 ||
            census.taxa().front().abundance() != state) {
            return -2;
        }
    }
    return context.censusCount() == static_cast<std::size_t>(1 + state % 20) ? state : -2;
}

class KillTest : public ::testing::Test {
  protected:
    // Empty for an untitled project that has no file yet.
    [[nodiscard]] QString pathOf(const std::string& project) const {
        if (project != "untitled") {
            return folder.filePath(QString::fromStdString(project + ".zorvel"));
        }
        const QDir untitled(folder.filePath("untitled"));
        const QStringList files = untitled.entryList({"*.zorvel"}, QDir::Files);
        EXPECT_LE(files.size(), 1);
        return files.isEmpty() ? QString() : untitled.filePath(files.front());
    }

    // Lets a child work for that long once all three projects are open, and kills it.
    std::map<std::string, Story> workAndDie(int workingTime) {
        QProcess child;
        child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        child.start(ZORVEL_KILL_CHILD, {folder.path()});
        QByteArray told;
        while (told.count(" saved ") < 3 && child.waitForReadyRead(30000)) {
            told += child.readAllStandardOutput();
        }
        QThread::msleep(static_cast<unsigned long>(workingTime));
        died = milliseconds();
        child.kill();
        EXPECT_TRUE(child.waitForFinished());
        EXPECT_EQ(child.exitStatus(), QProcess::CrashExit);
        told += child.readAllStandardOutput();
        std::map<std::string, Story> stories;
        for (const QByteArray& line : told.split('\n')) {
            const QList<QByteArray> words = line.split(' ');
            if (words.size() < 4) continue;
            Story& story = stories[words[0].toStdString()];
            if (words[1] == "state") story.states[words[2].toLongLong()] = words[3].toLongLong();
            if (words[1] == "saved") story.saved = words[2].toLongLong();
        }
        return stories;
    }

    void check(const std::string& project, const Story& story) {
        const QString path = pathOf(project);
        const std::int64_t state = path.isEmpty() ? 0 : stateIn(path);
        ASSERT_TRUE(story.states.contains(state)) << project << " never was " << state;
        EXPECT_GE(state, story.saved) << project << " lost what it had saved";
        const auto lost = story.states.upper_bound(state);
        if (lost == story.states.end()) return;
        // A second is promised; as much again is left to a machine that is busy.
        ++losses;
        EXPECT_LE(died - lost->second, 2000) << project;
    }

    QTemporaryDir folder;
    long long died = 0;
    int losses = 0;
};

TEST_F(KillTest, EveryProjectSurvivesEveryKill) {
    for (const char* name : {"first", "second"}) {
        ASSERT_TRUE(ProjectFile::create(pathOf(name).toStdString(), ObjectContext()).ok());
    }
    const char* wanted = std::getenv("ZORVEL_KILLS");
    const int kills = wanted ? std::atoi(wanted) : 30;
    std::mt19937 random(20240517);
    for (int i = 0; i < kills && !HasFailure(); ++i) {
        SCOPED_TRACE("kill " + std::to_string(i));
        const auto stories = workAndDie(std::uniform_int_distribution<int>(0, 900)(random));
        ASSERT_EQ(stories.size(), 3u);
        for (const auto& [project, story] : stories) check(project, story);
    }
    EXPECT_GT(losses, 0) << "no kill came between an edit and its writing";
}

}  // namespace
}  // namespace zorvel
