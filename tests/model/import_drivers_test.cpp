#include "model/import_drivers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "base/console.h"
#include "model/edits.h"
#include "model/import.h"
#include "tests/model/fake_view.h"

namespace zorvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string phoneFile =
    "\"Name\",\"Date\",\"Notes\",\"Latitude\",\"Longitude\",\"Abies\",\"Larix\"\n"
    "\"North\",\"Mar 5, 2016 3:42 PM\",\"wet\",1.5,-2,4,0\n";

// Work waits until the test lets it go on: what runs elsewhere first, then what comes back.
class HeldJobs : public Jobs {
  public:
    void start(std::function<void()> work, std::function<void()> done) override {
        waiting.push_back({std::move(work), std::move(done)});
    }
    void finishNext() {
        const auto [work, done] = std::move(waiting.front());
        waiting.pop_front();
        work();
        done();
    }
    void finishAll() {
        while (!waiting.empty()) finishNext();
    }
    std::deque<std::pair<std::function<void()>, std::function<void()>>> waiting;
};

class ImportDriversTest : public testing::Test {
  protected:
    void SetUp() override {
        setConsoleSink([this](std::string_view line) { console.emplace_back(line); });
        document.makeWindowControllers([this] { return &view; });
    }
    void TearDown() override {
        document.forgetMainView();
        setConsoleSink({});
    }

    ImportServices services() {
        return {jobs, {}, [this](const ImportReport& report) { reports.push_back(report); }};
    }
    ObjectContext& context() { return document.objectContext(); }
    NameList censusNames() { return censusNameList(document.fetchCensuses()); }

    DiversityDocument document;
    FakeView view;
    HeldJobs jobs;
    std::vector<std::string> console;
    std::vector<ImportReport> reports;
};

using Driver = void (*)(std::string, DiversityDocument&, ImportServices);

TEST_F(ImportDriversTest, StoreTheWholeFileAsOneStep) {
    const struct {
        Driver run;
        std::string text;
        const char* progress;
        NameList censuses;
        CountsVector firstCounts;
        const char* step;
    } cases[] = {
        {importAbundanceList,
         "3, 5\n7",
         "importing abundance list...",
         {"imported census"},
         {3, 5, 7},
         "Import Abundance List"},
        {importOneCensus,
         "Abies,3\nLarix,2\n",
         "importing census...",
         {"imported census"},
         {3, 2},
         "Import Census"},
        {importCensusMatrix,
         ",Abies,Larix\nNorth,3,0\nSouth,1,2\n",
         "importing census matrix...",
         {"North", "South"},
         {3},
         "Import Census Matrix"},
        {importIOSFile,
         phoneFile,
         "importing Zorvel for iOS file...",
         {"North"},
         {4},
         "Import Phone-App File"},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.step);
        test.run(test.text, document, services());
        ASSERT_EQ(view.running.size(), 1U);
        EXPECT_EQ(view.running.begin()->second.first, test.progress);
        EXPECT_EQ(context().censusCount(), 0U);
        jobs.finishAll();
        EXPECT_THAT(view.running, IsEmpty());
        ASSERT_EQ(censusNames(), test.censuses);
        const std::vector<Census> censuses = context().censuses();
        EXPECT_EQ(fullCountsVector(censuses.front()), test.firstCounts);
        EXPECT_TRUE(censuses.front().taxa().front().include());
        EXPECT_EQ(reports.back().outcome, ImportReport::Outcome::stored);
        EXPECT_EQ(reports.back().censuses, test.censuses.size());
        EXPECT_EQ(reports.back().taxa, context().taxa().size());
        EXPECT_EQ(context().undoName(), test.step);
        context().undo();
        EXPECT_EQ(context().censusCount(), 0U);
        context().redo();
        EXPECT_EQ(censusNames(), test.censuses);
        context().undo();
    }
    EXPECT_THAT(console, IsEmpty());
    EXPECT_EQ(view.commands, "");
}

TEST_F(ImportDriversTest, RefuseAFileAsAWhole) {
    const struct {
        Driver run;
        std::string text;
        std::vector<std::string> lines;
        TextPlace place;
    } cases[] = {
        {importAbundanceList,
         "3 5\n2.5",
         {"File contains non-numeric characters (possibly a decimal point), but should contain "
          "only a list of integers. See help for formatting an input file.",
          "WARNING: Abundance list could not be obtained"},
         {2, 1}},
        {importOneCensus,
         "Abies,3\nLarix,0\n",
         {"File contains zero or negative abundance value, but all abundances must be positive "
          "integers.  See help for formatting an input file.",
          "WARNING: Census could not be obtained"},
         {2, 2}},
        {importCensusMatrix,
         ",Abies,Larix\nNorth,3,4\nSouth,1,two\n",
         {"B: Not an abundance value, or not an integer: two",
          "WARNING: Censuses could not be obtained from census matrix"},
         {3, 3}},
        {importIOSFile,
         "\"Name\"\n",
         {"WARNING: fewer than six components on first line",
          "WARNING: Censuses could not be obtained from iOS file"},
         {1, 0}},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.lines.back());
        console.clear();
        test.run(test.text, document, services());
        jobs.finishAll();
        EXPECT_EQ(console, test.lines);
        EXPECT_THAT(view.running, IsEmpty());
        EXPECT_EQ(reports.back().outcome, ImportReport::Outcome::refused);
        EXPECT_EQ(reports.back().place, test.place);
        EXPECT_THAT(reports.back().consoleLines, ElementsAre(test.lines.front()));
    }
    EXPECT_EQ(context().censusCount(), 0U);
    EXPECT_FALSE(context().canUndo());
}

TEST_F(ImportDriversTest, WithoutAWindowNothingIsParsed) {
    document.forgetMainView();
    importAbundanceList("4", document, services());
    importOneCensus("Abies,4", document, services());
    importCensusMatrix(",Abies\nNorth,4\n", document, services());
    importIOSFile(phoneFile, document, services());
    EXPECT_THAT(jobs.waiting, IsEmpty());
    EXPECT_THAT(console,
                ElementsAre("WARNING: could not obtain window/view for importAbundanceList",
                            "WARNING: could not obtain window/view for importOneCensus",
                            "WARNING: could not obtain window/view for importCensusMatrix",
                            "WARNING: could not obtain window/view for importIOSFile"));
    ASSERT_EQ(reports.size(), 4U);
    EXPECT_EQ(reports.front().outcome, ImportReport::Outcome::noWindow);
}

TEST_F(ImportDriversTest, SeveralAtOnceAndEditsBetweenKeepEveryRecord) {
    importCensusMatrix(",Abies,Larix\nNorth,3,4\n", document, services());
    importCensusMatrix(",Abies,Picea\nSouth,1,2\n", document, services());
    EXPECT_EQ(view.running.size(), 2U);
    jobs.finishNext();  // both are parsed: North has its place
    jobs.finishNext();
    const Census typed = addCensus(context());
    editName(context(), addTaxon(context(), typed), "Picea");
    std::swap(jobs.waiting[0], jobs.waiting[1]);
    jobs.finishAll();
    EXPECT_THAT(view.running, IsEmpty());
    EXPECT_THAT(censusNames(), ElementsAre("North", "South", unnamedName));
    EXPECT_THAT(buildSparseCounts(context()).taxonNames, ElementsAre("Abies", "Larix", "Picea"));
    const auto lastName = [](const Census& census) { return &census.taxa().back().name()->str(); };
    EXPECT_EQ(lastName(context().censuses()[1]), lastName(typed)) << "Picea is kept once";
    context().undo();
    EXPECT_THAT(censusNames(), ElementsAre("South", unnamedName));
}

TEST_F(ImportDriversTest, CancellingStoresNothingAndSaysNothing) {
    for (const int finished : {0, 1}) {
        importCensusMatrix(",Abies\nNorth,3\n", document, services());
        for (int i = 0; i < finished; ++i) jobs.finishNext();
        view.running.begin()->second.second();
        jobs.finishAll();
        EXPECT_EQ(reports.back().outcome, ImportReport::Outcome::cancelled);
        EXPECT_THAT(view.running, IsEmpty());
    }
    EXPECT_EQ(context().censusCount(), 0U);
    EXPECT_FALSE(context().canUndo());
    EXPECT_THAT(console, IsEmpty());
}

TEST(ImportStop, EveryParserStops) {
    std::stop_source stop;
    stop.request_stop();
    for (const auto& [kind, text] :
         std::vector<std::pair<FileKind, std::string>>{{FileKind::list, "4"},
                                                       {FileKind::census, "Abies,4"},
                                                       {FileKind::matrix, ",Abies\nNorth,4\n"},
                                                       {FileKind::ios, phoneFile}}) {
        EXPECT_TRUE(parseFile(kind, text).value);
        const auto parsed = parseFile(kind, text, stop.get_token());
        EXPECT_FALSE(parsed.value);
        EXPECT_THAT(parsed.consoleLines, IsEmpty());
    }
}

}  // namespace
}  // namespace zorvel
