// What a project's window shows: how files come into it, the selected census, its metrics.
#include <QClipboard>
#include <QHeaderView>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSplitter>
#include <QToolButton>
#include <future>
#include <set>

#include "ui/window_fixture.h"

namespace zorvel {
namespace {

class MainWindowTest : public WindowTest {
  protected:
    std::string copiedMetrics() {
        EXPECT_TRUE(waitForJobs());
        trigger("copyAllMetrics");
        return QApplication::clipboard()->text().toStdString();
    }
    void addToSelection(int row) {
        censusTable().selectionModel()->select(
            censusTable().model()->index(row, 0),
            QItemSelectionModel::Select | QItemSelectionModel::Rows);
    }
    bool isEmptyPageShown() { return child<QPushButton>("openButton").isVisible(); }
};

TEST_F(MainWindowTest, ShowsEachCensusReachedByKeyboard) {
    open(exampleFile);
    EXPECT_EQ(window->windowTitle(), "oribatid-mites (untitled)[*]");
    ASSERT_EQ(censusTable().model()->rowCount(), 70);
    ASSERT_TRUE(censusTable().hasFocus());
    const struct {
        const char* name;
        int species;
        const char* metrics;
    } censuses[] = {
        {"Core 1", 20,
         "Core 1\nIndividuals\t140\nRichness\t20\nRarefied richness (50)\t14.3\nChao1\t22.5\nAlroy "
         "SQS (quota: 0.80)\t10.1\nShannon's H\t2.286\nFisher's alpha\t6.385\nPielou's "
         "J\t0.763\nSimpson's D\t0.835\nBuzas-Gibson's E\t0.492"},
        {"Core 2", 23,
         "Core 2\nIndividuals\t268\nRichness\t23\nRarefied richness (50)\t12.2\nChao1\t25.5\nAlroy "
         "SQS (quota: 0.80)\t8.2\nShannon's H\t1.930\nFisher's alpha\t6.025\nPielou's "
         "J\t0.616\nSimpson's D\t0.712\nBuzas-Gibson's E\t0.300"}};
    for (const auto& census : censuses) {
        EXPECT_EQ(copiedMetrics(), census.metrics);
        EXPECT_EQ(label("metricsHeading"), census.name);
        EXPECT_EQ(label("speciesHeading"), std::string("Species of ") + census.name);
        EXPECT_EQ(speciesTable().model()->rowCount(), census.species);
        press(Qt::Key_Down);
    }
}

// Holds its first number back until the gate opens.
class GatedRandom final : public RandomSource {
  public:
    GatedRandom(std::shared_future<void> gate, std::uint64_t seed)
        : gate_(std::move(gate)), numbers_(seed) {}

  protected:
    void fill(Buffer& buffer) override {
        gate_.wait();
        for (std::uint32_t& bits : buffer) bits = numbers_.bits32();
    }

  private:
    std::shared_future<void> gate_;
    SeededRandom numbers_;
};

TEST_F(MainWindowTest, AnEarlierValueIsMarkedAndALateOneIsDropped) {
    std::promise<void> gate;
    makeRandom = [opened = gate.get_future().share(), made = 0]() mutable {
        return made++ == 1 ? std::unique_ptr<RandomSource>(new GatedRandom(opened, seed))
                           : std::make_unique<SeededRandom>(seed);
    };
    open(write("two.csv", ",a,b,c\nNorth,30,20,9\nSouth,40,1,0\n"));
    ASSERT_TRUE(waitForJobs());
    const std::string ofNorth = text("alroySQS");
    press(Qt::Key_Down);  // its job waits
    EXPECT_EQ(label("metricsHeading"), "South");
    EXPECT_EQ(text("alroySQS"), ofNorth);
    EXPECT_TRUE(value("alroySQS").isStale());
    EXPECT_TRUE(value("alroySQS").toolTip().contains("North"));
    press(Qt::Key_Up);
    ASSERT_TRUE(waitForJobs());
    gate.set_value();
    drainJobs();
    EXPECT_EQ(text("alroySQS"), ofNorth);
    EXPECT_FALSE(value("alroySQS").isStale());
    press(Qt::Key_Down);
    ASSERT_TRUE(waitForJobs());
    EXPECT_NE(text("alroySQS"), ofNorth);
}

TEST_F(MainWindowTest, AnAbsentEstimateKeepsTheTextAndSaysWhy) {
    const std::string note = "SQS has no estimate: every specimen belongs to a species of its own.";
    open(write("absent.csv", ",a,b,c,d,e,f,g,h,i,j,k\nSouth" + QByteArray(",1").repeated(11) +
                                 "\nNorth,30,20,9" + QByteArray(",0").repeated(8) + '\n'));
    ASSERT_TRUE(waitUntil([this] { return !label("metricsNote").empty(); }));
    EXPECT_EQ(text("alroySQS"), "");
    EXPECT_EQ(label("metricsNote"), note);
    press(Qt::Key_Down);
    ASSERT_TRUE(waitForJobs());
    EXPECT_EQ(label("metricsNote"), "");
    const std::string ofNorth = text("alroySQS");
    console.clear();
    press(Qt::Key_Up);
    ASSERT_TRUE(waitUntil([this] { return !label("metricsNote").empty(); }));
    EXPECT_EQ(text("alroySQS"), ofNorth);
    EXPECT_TRUE(value("alroySQS").isStale());
    EXPECT_EQ(label("metricsNote"), note + " The grey value is that of North.");
    EXPECT_EQ(console.empty() ? "" : console.front(),
              "WARNING: Good's U is 0: everything but the dominant is a singleton, and it may be "
              "too");
}

TEST_F(MainWindowTest, TheTopmostOfTheSelectedCensusesIsShown) {
    open(exampleFile);
    censusTable().selectRow(4);
    addToSelection(7);
    EXPECT_EQ(label("metricsHeading"), "Core 5");
    addToSelection(2);
    EXPECT_EQ(label("metricsHeading"), "Core 3");
    censusTable().sortByColumn(0, Qt::DescendingOrder);
    EXPECT_TRUE(waitUntil([this] { return label("metricsHeading") == "Core 8"; }));
    // Without a selected census the panel stays.
    censusTable().clearSelection();
    EXPECT_EQ(label("metricsHeading"), "Core 8");
    EXPECT_EQ(speciesTable().model()->rowCount(), 0);
    EXPECT_EQ(label("speciesHeading"), "Species");
}

// However the splitters are dragged.
TEST_F(MainWindowTest, ASmallWindowKeepsItsToolsAndGivesNamesTheMostRoom) {
    QByteArray text = "," + QByteArray(200, 'T');
    for (int i = 0; i < 40; ++i) text += ",t" + QByteArray::number(i);
    open(write("long.csv", text + '\n' + QByteArray(200, 'N') + QByteArray(",7").repeated(41)));
    auto& search = child<QLineEdit>("searchBar");
    search.setText("t");
    EXPECT_LE(window->minimumSizeHint().width(), window->minimumWidth());
    for (const QSize& size : {QSize(780, 420), QSize(1012, 656), QSize(1600, 900)}) {
        window->resize(size);
        for (const QList<int>& sizes :
             {QList{250, 470, 304}, {2000, 1, 1}, {1, 2000, 1}, {1, 1, 2000}}) {
            child<QSplitter>("splitter").setSizes(sizes);
            QCoreApplication::processEvents();
            for (const char* pane : {"censusTitle", "speciesTitle"}) {
                auto& title = child<QWidget>(pane);
                const auto parts = title.findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
                for (const QWidget* part : parts) {
                    EXPECT_TRUE(title.rect().contains(part->geometry()));
                    for (const QWidget* other : parts) {
                        EXPECT_TRUE(part == other ||
                                    !part->geometry().intersects(other->geometry()))
                            << part->objectName().toStdString();
                    }
                }
            }
            const auto signs = search.findChildren<QToolButton*>();
            EXPECT_EQ(signs.size(), 2);  // to search and to clear
            for (const QToolButton* sign : signs) {
                EXPECT_TRUE(sign->isVisible() && search.rect().contains(sign->geometry()));
            }
            const QHeaderView& columns = *speciesTable().horizontalHeader();
            EXPECT_GT(columns.sectionSize(1), columns.sectionSize(2)) << size.width();
            EXPECT_EQ(columns.length(), speciesTable().viewport()->width());
            const auto& metrics = child<QWidget>("metricsPanel");
            EXPECT_LE(metrics.width(), child<QScrollArea>("metricsScroll").viewport()->width());
            EXPECT_LE(child<QWidget>("metricsHeading").geometry().right(), metrics.width());
        }
    }
}

TEST_F(MainWindowTest, TheLayoutIsKeptForTheNextWindow) {
    open(exampleFile);
    window->resize(1300, 800);  // room for names, which would take what wide columns have
    QHeaderView* header = speciesTable().horizontalHeader();
    header->resizeSection(2, 140);
    EXPECT_EQ(header->length(), speciesTable().viewport()->width());
    header->resizeSection(1, header->sectionSize(1) + 20);
    EXPECT_EQ(header->sectionSize(2), 120);
    child<QSplitter>("censusSplitter").setSizes({300, 400});
    child<QSplitter>("splitter").setSizes({300, 600, 400});
    const QList<int> heights = child<QSplitter>("censusSplitter").sizes();
    const QList<int> panes = child<QSplitter>("splitter").sizes();
    const QByteArray layout = window->mainView().saveLayout();
    window->close();
    window = &windows->openUntitled();
    open(exampleFile);
    EXPECT_EQ(window->size(), QSize(1300, 800));
    EXPECT_EQ(child<QSplitter>("censusSplitter").sizes(), heights);
    EXPECT_EQ(child<QSplitter>("splitter").sizes(), panes);
    header = speciesTable().horizontalHeader();
    EXPECT_EQ(header->sectionSize(2), 120);
    EXPECT_EQ(header->length(), speciesTable().viewport()->width());
    window->mainView().restoreLayout(layout.left(layout.size() / 2));  // damaged
    EXPECT_EQ(header->sectionSize(2), 120);
}

TEST_F(MainWindowTest, AnEmptyWindowSaysWhatToDoFirst) {
    EXPECT_TRUE(isEmptyPageShown());
    QTest::mouseClick(&child<QPushButton>("openButton"), Qt::LeftButton);  // cancelled
    EXPECT_TRUE(isIdle() && windows->isFree(*window));
    panel.answer = {write("one.csv", ",a,b\nNorth,3,4\n")};
    QTest::mouseClick(&child<QPushButton>("openButton"), Qt::LeftButton);
    ASSERT_TRUE(waitUntil([this] { return censusTable().model()->rowCount() == 1; }));
    EXPECT_FALSE(isEmptyPageShown());
    EXPECT_EQ(windows->windows().size(), 1u);
}

// Its layout is that of the window before it, whose table needed a scroll bar.
TEST_F(MainWindowTest, ATableOfASecondWindowIsAsWideAsItsRoom) {
    open(exampleFile);
    windows->openFiles({write("one.csv", ",a,b\nNorth,3,4\n")}, window);
    ASSERT_TRUE(waitUntil([this] { return windows->windows().size() == 2; }));
    window = windows->windows().back();
    ASSERT_TRUE(waitUntil([this] { return censusTable().model()->rowCount() == 1; }));
    EXPECT_TRUE(waitUntil([this] { return !censusTable().verticalScrollBar()->isVisible(); }));
    EXPECT_EQ(censusTable().horizontalHeader()->length(), censusTable().width());
}

TEST_F(MainWindowTest, AFileThatCannotBeReadIsReportedWhereItWasAskedFor) {
    const std::pair<QString, const char*> cases[] = {
        {write("cell.csv", ",a,b\nNorth,3,4\nSouth,x,1\n"),
         "cell.csv could not be read (line 3, cell 2): "},
        {folder.path(), " cannot be read: Is a directory"},
    };
    for (const auto& [path, reason] : cases) {
        console.clear();
        open(path);
        EXPECT_TRUE(isEmptyPageShown());
        EXPECT_EQ(window->windowTitle(), "Untitled[*]");
        EXPECT_NE(label("messageText").find(reason), std::string::npos) << label("messageText");
        EXPECT_EQ(console.back().rfind("WARNING: ", 0), 0u);
        QTest::mouseClick(&child<QToolButton>("dismissMessageButton"), Qt::LeftButton);
        EXPECT_FALSE(strip().isVisible());
    }
    windows->openUntitled();
    open(cases[0].first);
    EXPECT_TRUE(strip().isVisible());
    // With no window left, in an alert.
    for (MainWindowController* each : windows->windows()) each->close();
    sendDeletions();
    windows->openFiles({folder.filePath("missing.csv")});
    ASSERT_TRUE(waitUntil([this] { return !alerts.warnings.isEmpty(); }));
    EXPECT_TRUE(alerts.warnings[0].startsWith("missing.csv cannot be opened"));
}

// Cells, names and paths come from files, and may be longer than any window is wide.
TEST_F(MainWindowTest, LongTextsLeaveTheWindowItsWidth) {
    const int width = window->mainView().minimumSizeHint().width();
    const int panelWidth = child<QWidget>("metricsPanel").minimumSizeHint().width();
    alerts.chosen = {2};  // as a matrix
    open(write("cell.csv", ",a\nNorth," + QByteArray(1'000'000, 'x') + '\n'));
    EXPECT_LT(label("messageText").size(), 1000u);
    EXPECT_LE(window->mainView().minimumSizeHint().width(), width);
    const int progress = window->mainView().startProgress(QString(250, 'x'));
    EXPECT_LE(window->mainView().minimumSizeHint().width(), width);
    window->mainView().stopProgress(progress);
    open(write("name.csv", ",a\n" + QByteArray(1'000'000, 'N') + ",3\n"));
    ASSERT_TRUE(waitUntil([this] { return !label("metricsNote").empty(); }));
    EXPECT_LT(label("metricsHeading").size(), 2000u);
    EXPECT_LE(window->mainView().minimumSizeHint().width(), width);
    EXPECT_LE(child<QWidget>("metricsPanel").minimumSizeHint().width(), panelWidth);
}

TEST_F(MainWindowTest, AFileTakesAFreeWindowOrOneOfItsOwn) {
    strip().addMessage("done", MessageStrip::Tone::news);
    censusTable().sortByColumn(0, Qt::DescendingOrder);
    child<QLineEdit>("searchBar").setText("zzz");
    windows->openFiles({write("first.csv", ",a\nNorth,3\nWest,1\n")}, window);
    windows->openFiles({write("second.csv", ",a\nNorth,3\nWest,1\n")}, window);
    ASSERT_TRUE(waitUntil([this] { return windows->windows().size() == 2; }));
    EXPECT_EQ(documents->documents().size(), 2u);
    EXPECT_NE(windows->windows()[0]->pos(), windows->windows()[1]->pos());
    EXPECT_EQ(messages(), QStringList{"done"});
    EXPECT_EQ(strip().tone(), MessageStrip::Tone::news);
    for (MainWindowController* each : windows->windows()) {
        window = each;
        EXPECT_TRUE(isIdle());
        EXPECT_EQ(column(censusTable(), 0), (std::vector<std::string>{"North", "West"}));
        EXPECT_EQ(speciesTable().model()->rowCount(), 1);
    }
}

TEST_F(MainWindowTest, AWindowMayCloseWhileItsJobsRun) {
    open(exampleFile);
    windows->openFiles({exampleFile}, window);
    for (MainWindowController* each : windows->windows()) each->close();
    sendDeletions();
    drainJobs();
    EXPECT_TRUE(windows->windows().empty());
    EXPECT_TRUE(documents->documents().empty());
}

TEST_F(MainWindowTest, ProblemsOfTheSettingsStandInEveryWindowUntilTheyAreSolved) {
    const QString path = write("zorvel.ini.d", {}) + "/zorvel.ini";  // below a file
    SettingsFile file(path);
    windows->follow(file);
    const auto all = [this] {
        QStringList shown;
        for (MainWindowController* each : windows->windows()) {
            shown += each->mainView().messageStrip().messages();
        }
        return shown;
    };
    windows->openUntitled();
    EXPECT_EQ(all(), (QStringList{file.problem(), file.problem()}));
    EXPECT_TRUE(file.problem().contains(path));
    ASSERT_TRUE(QFile::remove(folder.filePath("zorvel.ini.d")));
    storeSetting("size", 20);
    EXPECT_TRUE(waitUntil([&] { return all().isEmpty(); }));
    endProgram();
}

}  // namespace
}  // namespace zorvel
