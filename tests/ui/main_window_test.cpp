#include <QAccessible>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QSplitter>
#include <QTest>
#include <QToolButton>
#include <functional>
#include <future>

#include "metrics/census_metrics.h"
#include "metrics/metric_table.h"
#include "metrics/rarefaction.h"
#include "metrics/sqs.h"
#include "ui/kit/message_strip.h"
#include "ui/window_fixture.h"

namespace zorvel {
namespace {

using MainWindowTest = WindowTest;

// The panel's texts, top to bottom, as the engine gives them.
std::vector<std::string> panelOf(const CountsVector& counts, std::int64_t size, double quota,
                                 std::uint64_t seed) {
    SeededRandom random(seed);
    const SqsResult sqs = shareholderQuorum(counts, 100, quota, random);
    const Rarefaction point = RarefactionCalculator().individualBasedPoint(counts, size);
    return {std::to_string(individuals(counts)),
            std::to_string(richness(counts)),
            formatMetric(point.estimate, 1),
            formatMetric(chaoOne(counts), 1),
            sqs.estimate ? formatMetric(*sqs.estimate, 1) : "absent",
            formatMetric(shannonH(counts), 3),
            formatMetric(fisherAlpha(counts), 3),
            formatMetric(pielouJ(counts), 3),
            formatMetric(simpsonD(counts), 3),
            formatMetric(buzasE(counts), 3)};
}

TEST_F(MainWindowTest, TroubleWithTheSettingsStandsInEveryWindowUntilItIsOver) {
    const QString path = write("zorvel.ini.d", {}) + "/zorvel.ini";  // below a file
    SettingsFile file(path);
    windows->follow(file);
    const auto messages = [this] {
        QStringList told;
        for (MainWindowController* each : windows->windows()) {
            told += each->mainView().messageStrip().messages();
        }
        return told;
    };
    windows->openUntitled();
    EXPECT_EQ(messages(), (QStringList{file.problem(), file.problem()}));
    EXPECT_TRUE(file.problem().contains(path));
    ASSERT_TRUE(QFile::remove(folder.filePath("zorvel.ini.d")));
    storeSetting("size", 20);
    EXPECT_TRUE(waitUntil([&] { return messages().isEmpty(); }));
    endProgram();
}

TEST_F(MainWindowTest, ShowsEachCensusReachedByKeyboard) {
    open(exampleFile);
    EXPECT_EQ(window->windowTitle(), "oribatid-mites (untitled)[*]");
    ASSERT_EQ(censusTable().model()->rowCount(), 70);
    ASSERT_TRUE(censusTable().hasFocus());
    const std::vector<Census> censuses = context().censuses();
    for (int row = 0; row < 6; ++row) {
        if (row > 0) QTest::keyClick(&censusTable(), Qt::Key_Down);
        ASSERT_TRUE(waitForJobs());
        const Census& census = censuses[static_cast<std::size_t>(row)];
        const CountsVector counts = includedCountsVector(census);
        std::vector<std::string> shown;
        for (const ShownMetric& metric : metricsOf(MetricGroup::census))
            shown.push_back(text(metricKey(metric)));
        EXPECT_EQ(shown, panelOf(counts, 50, 0.8, seed)) << row;
        EXPECT_EQ(label("metricsHeading"), census.name()->str());
        EXPECT_EQ(label("speciesHeading"), "Species of " + census.name()->str());
        EXPECT_EQ(speciesTable().model()->rowCount(), static_cast<int>(census.taxonCount()));
    }
}

TEST_F(MainWindowTest, CaptionsAreTheAccessibleNamesOfTheirValues) {
    open(exampleFile);
    ASSERT_TRUE(waitForJobs());
    for (const ShownMetric& shown : metricsOf(MetricGroup::census)) {
        const std::string key = metricKey(shown);
        const std::string caption = label((key + "LabelTextField").c_str());
        EXPECT_EQ(caption, metricCaption(shown, {50, 0.8}));
        QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(&value(key));
        EXPECT_EQ(interface->text(QAccessible::Name).toStdString(), caption);
        EXPECT_EQ(interface->text(QAccessible::Value).toStdString(), text(key));
        EXPECT_FALSE(interface->text(QAccessible::Description).isEmpty()) << key;
    }
}

// However the splitters are dragged.
TEST_F(MainWindowTest, ASmallWindowKeepsItsToolsAndGivesNamesTheMostRoom) {
    const QByteArray name(200, 'N');
    QByteArray text = "," + QByteArray(200, 'T');
    for (int i = 0; i < 40; ++i) text += ",t" + QByteArray::number(i);
    open(write("long.csv", text + '\n' + name + QByteArray(",7").repeated(41) + '\n'));
    auto& splitter = child<QSplitter>("splitter");
    auto& search = child<QLineEdit>("searchBar");
    search.setText("t");
    EXPECT_LE(window->minimumSizeHint().width(), window->minimumWidth());
    for (const QSize& size : {QSize(780, 420), QSize(1012, 656), QSize(1600, 900)}) {
        window->resize(size);
        for (const QList<int>& sizes :
             {QList{250, 470, 304}, {2000, 1, 1}, {1, 2000, 1}, {1, 1, 2000}}) {
            splitter.setSizes(sizes);
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

TEST_F(MainWindowTest, EveryControlHasAnAccessibleName) {
    open(exampleFile);
    for (QWidget* widget : window->findChildren<QWidget*>()) {
        if (!widget->isVisible() || (widget->focusPolicy() & Qt::TabFocus) == 0) continue;
        QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(widget);
        EXPECT_FALSE(interface->text(QAccessible::Name).isEmpty())
            << widget->metaObject()->className() << ' ' << widget->objectName().toStdString();
    }
}

TEST_F(MainWindowTest, ReadsThePreferencesAtEachRefresh) {
    open(exampleFile);
    ASSERT_TRUE(waitForJobs());
    Preferences().setRarefactionSize(20);
    Preferences().setSqsQuota(0.5);
    window->mainView().updateMetrics();
    ASSERT_TRUE(waitForJobs());
    EXPECT_EQ(label("rarefiedRichnessLabelTextField"), "Rarefied richness (20)");
    EXPECT_EQ(label("alroySQSLabelTextField"), "Alroy SQS (quota: 0.50)");
    const Census first = context().censuses().front();
    const auto expected = panelOf(includedCountsVector(first), 20, 0.5, seed);
    EXPECT_EQ(text("rarefiedRichness"), expected[2]);
    EXPECT_EQ(text("alroySQS"), expected[4]);
}

// Holds the first number back until it is opened, and tells when it was asked for.
class Gate {
  public:
    void open() { opened_.set_value(); }
    void waitUntilReached() { reached_.get_future().wait(); }
    void pass() {
        reached_.set_value();
        opened_.get_future().wait();
    }

  private:
    std::promise<void> opened_;
    std::promise<void> reached_;
};

class GatedRandom final : public RandomSource {
  public:
    GatedRandom(Gate& gate, std::uint64_t seed) : gate_(gate), numbers_(seed) {}

  protected:
    void fill(Buffer& buffer) override {
        if (!passed_) gate_.pass();
        passed_ = true;
        for (std::uint32_t& bits : buffer) bits = numbers_.bits32();
    }

  private:
    Gate& gate_;
    bool passed_ = false;
    SeededRandom numbers_;
};

// The n-th SQS job (from 0) stops at the gate.
std::function<std::unique_ptr<RandomSource>()> gated(Gate& gate, int n, std::uint64_t seed) {
    return [&gate, n, seed, made = 0]() mutable -> std::unique_ptr<RandomSource> {
        if (made++ == n) return std::make_unique<GatedRandom>(gate, seed);
        return std::make_unique<SeededRandom>(seed);
    };
}

const char twoCensuses[] = ",a,b,c\nNorth,30,20,9\nSouth,40,1,0\n";

TEST_F(MainWindowTest, ALateResultNeverReplacesANewerOne) {
    Gate gate;
    makeRandom = gated(gate, 0, seed);
    open(write("two.csv", twoCensuses));
    gate.waitUntilReached();
    QTest::keyClick(&censusTable(), Qt::Key_Down);
    ASSERT_TRUE(waitForJobs());
    const std::string ofSouth = panelOf({40, 1}, 50, 0.8, seed)[4];
    ASSERT_NE(panelOf({30, 20, 9}, 50, 0.8, seed)[4], ofSouth);
    EXPECT_EQ(text("alroySQS"), ofSouth);
    gate.open();
    drainJobs();
    EXPECT_EQ(text("alroySQS"), ofSouth);
    EXPECT_FALSE(value("alroySQS").isStale());
}

TEST_F(MainWindowTest, AValueOfTheEarlierCensusIsMarkedUntilTheNewOneComes) {
    Gate gate;
    makeRandom = gated(gate, 1, seed);
    open(write("two.csv", twoCensuses));
    ASSERT_TRUE(waitForJobs());
    const std::string ofNorth = text("alroySQS");
    QTest::keyClick(&censusTable(), Qt::Key_Down);
    EXPECT_EQ(label("metricsHeading"), "South");
    EXPECT_EQ(text("alroySQS"), ofNorth);
    EXPECT_TRUE(value("alroySQS").isStale());
    EXPECT_TRUE(value("alroySQS").toolTip().contains("North"));
    gate.open();
    ASSERT_TRUE(waitForJobs());
    EXPECT_EQ(text("alroySQS"), panelOf({40, 1}, 50, 0.8, seed)[4]);
}

TEST_F(MainWindowTest, AnAbsentEstimateKeepsTheTextAndSaysWhy) {
    const struct {
        const char* row;
        const char* reason;
        const char* console;
    } cases[] = {
        {"4,3,3", "it needs at least 11 specimens", ""},
        {"1,1,1,1,1,1,1,1,1,1,1", "every specimen belongs to a species of its own",
         "WARNING: Good's U is 0: everything but the dominant is a singleton, and it may be too"},
    };
    for (const auto& test : cases) {
        const QByteArray zeros = QByteArray(",0").repeated(8);
        QByteArray second = QByteArray("South,") + test.row;
        while (second.count(',') < 11) second += ",0";
        open(write("absent.csv",
                   ",a,b,c,d,e,f,g,h,i,j,k\nNorth,30,20,9" + zeros + '\n' + second + '\n'));
        ASSERT_TRUE(waitForJobs());
        console.clear();
        const std::string before = text("alroySQS");
        QTest::keyClick(&censusTable(), Qt::Key_Down);
        ASSERT_TRUE(waitUntil([this] { return !label("metricsNote").empty(); }));
        EXPECT_EQ(text("alroySQS"), before);
        EXPECT_TRUE(value("alroySQS").isStale());
        EXPECT_EQ(label("metricsNote"), std::string("SQS has no estimate: ") + test.reason +
                                            ". The grey value is that of North.");
        EXPECT_EQ(console.empty() ? "" : console.front(), test.console);
        QTest::keyClick(&censusTable(), Qt::Key_Up);
        ASSERT_TRUE(waitForJobs());
        EXPECT_EQ(label("metricsNote"), "");
        window->close();
        window = &windows->openUntitled();
    }
}

TEST_F(MainWindowTest, WithoutAnEarlierValueTheFieldStaysEmpty) {
    open(write("few.csv", ",a,b\nNorth,3,4\n"));
    ASSERT_TRUE(waitUntil([this] { return !label("metricsNote").empty(); }));
    EXPECT_EQ(text("alroySQS"), "");
    EXPECT_EQ(label("metricsNote").find("grey"), std::string::npos);
}

TEST_F(MainWindowTest, ACensusWithoutIncludedSpecimens) {
    context().insertCensus({"Bog", 46.0123, 0, "wet", std::nullopt}, {{"Sphagnum", 9, false}});
    context().announceChanges();
    censusTable().selectRow(0);
    EXPECT_EQ(text("richness"), "0");
    EXPECT_EQ(text("individuals"), "0");
    EXPECT_EQ(text("shannonH"), "0.0");
    EXPECT_EQ(text("buzasE"), "-");
    EXPECT_EQ(child<QLineEdit>("latitudeTextField").text(), "46.0123");
    EXPECT_EQ(child<QPlainTextEdit>("notesTextView").toPlainText(), "wet");
    EXPECT_EQ(speciesTable().model()->rowCount(), 1);
}

TEST_F(MainWindowTest, DeselectingKeepsThePanelAndEmptiesTheSpecies) {
    open(exampleFile);
    ASSERT_TRUE(waitForJobs());
    const std::string before = text("shannonH");
    censusTable().clearSelection();
    EXPECT_EQ(text("shannonH"), before);
    EXPECT_EQ(label("metricsHeading"), "Core 1");
    EXPECT_EQ(speciesTable().model()->rowCount(), 0);
    EXPECT_EQ(label("speciesHeading"), "Species");
}

TEST_F(MainWindowTest, TheTopmostOfSeveralSelectedCensusesIsShown) {
    open(exampleFile);
    censusTable().selectRow(4);
    EXPECT_EQ(label("metricsHeading"), "Core 5");
    const auto addRow = [this](int row) {
        censusTable().selectionModel()->select(
            censusTable().model()->index(row, 0),
            QItemSelectionModel::Select | QItemSelectionModel::Rows);
    };
    addRow(7);
    EXPECT_EQ(label("metricsHeading"), "Core 5");
    addRow(2);
    EXPECT_EQ(label("metricsHeading"), "Core 3");
    // Another order puts another of them on top: names from the last to the first.
    censusTable().sortByColumn(0, Qt::DescendingOrder);
    EXPECT_TRUE(waitUntil([this] { return label("metricsHeading") == "Core 8"; }));
}

TEST_F(MainWindowTest, SearchNarrowsTheSpeciesAndKeepsTheSelection) {
    open(write("trees.csv", ",Abies alba,Betula pendula,Larix decidua\nNorth,3,4,5\n"));
    speciesTable().selectRow(2);
    QLineEdit& search = child<QLineEdit>("searchBar");
    QTest::keyClicks(&search, "LA");
    ASSERT_EQ(speciesTable().model()->rowCount(), 2);
    EXPECT_EQ(label("speciesCountLabel"), "2 of 3 species shown");
    const QModelIndexList rows = speciesTable().selectionModel()->selectedRows(1);
    ASSERT_EQ(rows.size(), 1);
    EXPECT_EQ(rows.front().data().toString(), "Larix decidua");
    search.clear();
    EXPECT_EQ(speciesTable().model()->rowCount(), 3);
    EXPECT_EQ(speciesTable().selectionModel()->selectedRows(1).value(0).data().toString(),
              "Larix decidua");
}

}  // namespace
}  // namespace zorvel
