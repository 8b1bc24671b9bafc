#include <QHeaderView>
#include <QPushButton>
#include <QScrollBar>
#include <QToolButton>
#include <set>

#include "ui/kit/message_strip.h"
#include "ui/window_fixture.h"

namespace zorvel {
namespace {

class OpeningTest : public WindowTest {
  protected:
    std::string message() { return label("messageText"); }
    bool stripShown() { return child<MessageStrip>("messageStrip").isVisible(); }
    bool emptyPageShown() { return child<QPushButton>("openButton").isVisible(); }
};

TEST_F(OpeningTest, AnEmptyWindowSaysWhatToDoFirst) {
    EXPECT_TRUE(emptyPageShown());
    EXPECT_FALSE(stripShown());
    panel.answer = {write("one.csv", ",a,b\nNorth,3,4\n")};
    QTest::mouseClick(&child<QPushButton>("openButton"), Qt::LeftButton);
    ASSERT_TRUE(waitUntil([this] { return censusTable().model()->rowCount() == 1; }));
    EXPECT_FALSE(emptyPageShown());
    EXPECT_EQ(windows->windows().size(), 1u);
}

// Its layout is that of the window before it, whose table needed a scroll bar.
TEST_F(OpeningTest, ATableOfASecondWindowIsAsWideAsItsRoom) {
    open(exampleFile);
    windows->openFile(write("one.csv", ",a,b\nNorth,3,4\n"), window);
    ASSERT_TRUE(waitUntil([this] { return windows->windows().size() == 2; }));
    auto& table = *windows->windows().back()->findChild<RecordTableView*>("censusTable");
    ASSERT_TRUE(waitUntil([&] { return table.model()->rowCount() == 1; }));
    EXPECT_TRUE(waitUntil([&] { return !table.verticalScrollBar()->isVisible(); }));
    EXPECT_EQ(table.horizontalHeader()->length(), table.width());
}

TEST_F(OpeningTest, ACancelledPanelOpensNothing) {
    QTest::mouseClick(&child<QPushButton>("openButton"), Qt::LeftButton);
    EXPECT_FALSE(window->mainView().isInProgress());
    EXPECT_TRUE(windows->isFree(*window));
}

TEST_F(OpeningTest, FilesThatCannotBeRead) {
    const struct {
        QString path;
        const char* begins;
    } cases[] = {
        {write("cell.csv", ",a,b\nNorth,3,4\nSouth,x,1\n"),
         "cell.csv could not be read (line 3, cell 2): "},
        {write("empty.csv", ""), "empty.csv could not be read: the file is empty"},
        {folder.filePath("missing.csv"), "missing.csv cannot be opened: No such file"},
        {folder.path(), " cannot be read: Is a directory"},
    };
    for (const auto& test : cases) {
        console.clear();
        open(test.path);
        EXPECT_TRUE(stripShown());
        EXPECT_TRUE(emptyPageShown());
        EXPECT_EQ(window->windowTitle(), "Untitled[*]");
        EXPECT_NE(message().find(test.begins), std::string::npos) << message();
        EXPECT_GE(console.size(), 2u);
        EXPECT_EQ(console.back().rfind("WARNING: ", 0), 0u);
        QTest::mouseClick(&child<QToolButton>("dismissMessageButton"), Qt::LeftButton);
        EXPECT_FALSE(stripShown());
    }
}

// Cells, names and paths come from files, and may be longer than any window is wide.
TEST_F(OpeningTest, LongTextsLeaveTheWindowItsWidth) {
    const int width = window->mainView().minimumSizeHint().width();
    const int panelWidth = child<QWidget>("metricsPanel").minimumSizeHint().width();
    open(write("cell.csv", ",a\nNorth," + QByteArray(5'000'000, 'x') + '\n'));
    EXPECT_LT(message().size(), 1000u);
    EXPECT_LE(window->mainView().minimumSizeHint().width(), width);
    window->mainView().startProgress("long", QString(250, 'x'));
    EXPECT_LE(window->mainView().minimumSizeHint().width(), width);
    window->mainView().stopProgress("long");
    open(write("name.csv", ",a\n" + QByteArray(5'000'000, 'N') + ",3\n"));
    ASSERT_TRUE(waitUntil([this] { return !label("metricsNote").empty(); }));
    EXPECT_LT(label("metricsHeading").size(), 2000u);
    EXPECT_LE(window->mainView().minimumSizeHint().width(), width);
    EXPECT_LE(child<QWidget>("metricsPanel").minimumSizeHint().width(), panelWidth);
}

TEST_F(OpeningTest, MessagesStayWhatTheyAreWhenAnotherProjectTakesTheWindow) {
    window->mainView().messageStrip().addMessage("done", MessageStrip::Tone::news);
    open(exampleFile);
    EXPECT_TRUE(stripShown());
    EXPECT_EQ(window->mainView().messageStrip().tone(), MessageStrip::Tone::news);
    EXPECT_EQ(censusTable().model()->rowCount(), 70);
}

TEST_F(OpeningTest, AFileTakesAFreeWindowOrOneOfItsOwn) {
    windows->openFile(write("first.csv", ",a\nNorth,3\n"), window);
    windows->openFile(write("second.csv", ",a\nSouth,4\n"), window);
    ASSERT_TRUE(waitUntil([this] { return windows->windows().size() == 2; }));
    const std::vector<MainWindowController*> open = windows->windows();
    EXPECT_NE(open[0]->pos(), open[1]->pos());
    std::set<std::string> names;
    for (MainWindowController* each : open) {
        EXPECT_FALSE(each->mainView().isInProgress());
        const ObjectContext& shown = each->document().project().objectContext();
        ASSERT_EQ(shown.censusCount(), 1u);
        names.insert(shown.censuses()[0].name()->str());
    }
    EXPECT_EQ(names, (std::set<std::string>{"North", "South"}));
    EXPECT_EQ(documents->documents().size(), 2u);
}

TEST_F(OpeningTest, AnErrorIsToldWhereTheFileWasAskedFor) {
    open(exampleFile);
    windows->openUntitled();
    open(write("bad.csv", ",a\nNorth,x\n"));
    EXPECT_TRUE(stripShown());
    EXPECT_EQ(windows->windows().size(), 2u);
    // With no window left, in an alert.
    for (MainWindowController* each : windows->windows()) each->close();
    sendDeletions();
    windows->openFile(folder.filePath("missing.csv"));
    ASSERT_TRUE(waitUntil([this] { return !alerts.warnings.isEmpty(); }));
    EXPECT_TRUE(alerts.warnings[0].startsWith("missing.csv cannot be opened"));
}

TEST_F(OpeningTest, AWindowMayCloseWhileItsJobsRun) {
    open(exampleFile);
    windows->openFile(exampleFile, window);
    for (MainWindowController* each : windows->windows()) each->close();
    sendDeletions();
    drainJobs();
    EXPECT_TRUE(windows->windows().empty());
    EXPECT_TRUE(documents->documents().empty());
}

}  // namespace
}  // namespace zorvel
