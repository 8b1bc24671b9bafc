// The program is killed while it writes three projects, again and again. Each time all three open,
// none holds what it never was, and none has lost what it said was saved.
#include <gtest/gtest.h>
#include <time.h>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "state_digest.h"
#include "store/project_file.h"

namespace zorvel {
namespace {

long long milliseconds() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return now.tv_sec * 1000LL + now.tv_nsec / 1000000;
}

// One project as the child told of it: its states in order, and the last that was said to be saved.
struct Story {
    struct State {
        std::string digest;
        long long time = 0;
    };
    std::vector<State> states;
    std::size_t saved = 0;
    bool anySaved = false;

    [[nodiscard]] std::size_t lastOf(const std::string& digest) const {
        for (std::size_t i = states.size(); i-- > 0;) {
            if (states[i].digest == digest) return i;
        }
        return states.size();
    }
};
using Stories = std::map<std::string, Story>;

class KillTest : public ::testing::Test {
  protected:
    void SetUp() override {
        for (const char* name : {"first", "second"}) {
            const ObjectContext nothing;
            ASSERT_TRUE(ProjectFile::create(pathOf(name), nothing).ok());
        }
    }

    [[nodiscard]] std::string pathOf(const std::string& project) const {
        if (project != "untitled") {
            return folder.filePath(QString::fromStdString(project) + ".zorvel").toStdString();
        }
        const QDir untitled(folder.filePath("untitled"));
        const QStringList files = untitled.entryList({"*.zorvel"}, QDir::Files);
        EXPECT_LE(files.size(), 1);
        return files.isEmpty() ? "" : untitled.filePath(files.front()).toStdString();
    }

    // Lets a child work for that long once it has begun, and kills it.
    Stories workAndDie(unsigned seed, int workingTime) {
        QProcess child;
        child.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        child.start(ZORVEL_KILL_CHILD, {folder.path(), QString::number(seed)});
        QByteArray told;
        while (!told.contains(" ready ") && child.waitForReadyRead(30000)) {
            told += child.readAllStandardOutput();
        }
        EXPECT_TRUE(told.contains(" ready ")) << told.toStdString();
        QThread::msleep(static_cast<unsigned long>(workingTime));
        died = milliseconds();
        child.kill();
        EXPECT_TRUE(child.waitForFinished());
        EXPECT_EQ(child.exitStatus(), QProcess::CrashExit);
        told += child.readAllStandardOutput();
        return storiesIn(told);
    }

    static Stories storiesIn(const QByteArray& told) {
        Stories stories;
        for (const QByteArray& line : told.split('\n')) {
            const QList<QByteArray> words = line.split(' ');
            if (words.size() < 3) continue;
            Story& story = stories[words[0].toStdString()];
            const std::string digest = words[2].toStdString();
            if (words[1] == "state") story.states.push_back({digest, words[3].toLongLong()});
            if (words[1] == "saved") {
                story.saved = story.lastOf(digest);
                story.anySaved = true;
            }
        }
        return stories;
    }

    static std::string digestIn(const std::string& path) {
        auto file = ProjectFile::open(path);
        if (!file.ok()) return "not opened: " + file.problem().detail;
        auto records = file.value()->load();
        if (!records.ok()) return "not read: " + records.problem().detail;
        ObjectContext context;
        context.adopt(std::move(records).value());
        return stateDigest(context);
    }

    void check(const std::string& project, const Story& story) {
        const std::string path = pathOf(project);
        if (path.empty()) {
            // An untitled project that was not written yet: nothing of it is older than a second.
            if (story.states.size() > 1) noteLoss(project, died - story.states[1].time);
            return;
        }
        const std::string digest = digestIn(path);
        const std::size_t place = story.lastOf(digest);
        ASSERT_LT(place, story.states.size()) << project << " never was " << digest;
        EXPECT_GE(place, story.saved) << project << " lost what it had saved";
        if (place + 1 < story.states.size()) {
            noteLoss(project, died - story.states[place + 1].time);
        }
    }

    // The age of the oldest edit that was lost. A second is promised; as much again is left to a
    // machine that is busy with other things.
    void noteLoss(const std::string& project, long long age) {
        oldestLoss = std::max(oldestLoss, age);
        ++losses;
        EXPECT_LE(age, 2000) << project;
    }

    QTemporaryDir folder;
    long long died = 0;
    long long oldestLoss = 0;
    int losses = 0;
};

TEST_F(KillTest, EveryProjectSurvivesEveryKill) {
    const char* wanted = std::getenv("ZORVEL_KILLS");
    const int kills = wanted ? std::atoi(wanted) : 30;
    std::mt19937 random(20240517);
    for (int i = 0; i < kills && !HasFailure(); ++i) {
        SCOPED_TRACE("kill " + std::to_string(i));
        const int workingTime = std::uniform_int_distribution<int>(0, 900)(random);
        const Stories stories = workAndDie(static_cast<unsigned>(i), workingTime);
        ASSERT_EQ(stories.size(), 3u);
        for (const auto& [project, story] : stories) check(project, story);
    }
    EXPECT_GT(losses, 0) << "no kill came between an edit and its writing";
    std::cout << kills << " kills, " << losses << " of them between an edit and its writing; the "
              << "oldest lost edit was " << oldestLoss << " ms old\n";
}

}  // namespace
}  // namespace zorvel
