#include "model/import.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <deque>
#include <string>
#include <utility>
#include <vector>

#include "base/console.h"
#include "model/edits.h"
#include "tests/model/fake_view.h"
#include "tests/support/extreme_values.h"
#include "tests/support/same_records.h"

namespace zorvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::string phoneFile =
    "\"Name\",\"Date\",\"Notes\",\"Latitude\",\"Longitude\",\"Abies\",\"Larix\"\n"
    "\"North\",\"Mar 5, 2016 3:42 PM\",\"wet\",1.5,-2,4,0\n";

class ImportTest : public testing::Test {
  protected:
    void SetUp() override {
        setConsoleSink([this](std::string_view line) { console.emplace_back(line); });
        document.makeWindowControllers([this] { return &view; });
    }
    void TearDown() override {
        document.forgetMainView();
        setConsoleSink({});
    }

    // Jobs wait until the test finishes them.
    ImportServices services() {
        return {[this](auto work, auto done) { jobs.emplace_back(work, done); },
                {},
                [this](const ImportReport& report) { reports.push_back(report); }};
    }
    void finishNext() {
        const auto [work, done] = std::move(jobs.front());
        jobs.pop_front();
        work();
        done();
    }
    void finishAll() {
        while (!jobs.empty()) finishNext();
    }
    ObjectContext& context() { return document.objectContext(); }
    NameList censusNames() { return censusNameList(document.fetchCensuses()); }

    DiversityDocument document;
    FakeView view;
    std::deque<std::pair<std::function<void()>, std::function<void()>>> jobs;
    std::vector<std::string> console;
    std::vector<ImportReport> reports;
};

TEST_F(ImportTest, DriversStoreTheWholeFileAsOneStep) {
    const struct {
        FileKind kind;
        std::string text;
        const char* outcome;  // progress, censuses, counts of the first, step of undo
    } cases[] = {
        {FileKind::list, "3, 5\n7",
         "importing abundance list... imported census; 3 5 7 Import Abundance List"},
        {FileKind::census, "Abies,3\nLarix,2\n",
         "importing census... imported census; 3 2 Import Census"},
        {FileKind::matrix, ",Abies,Larix\nNorth,3,0\nSouth,1,2\n",
         "importing census matrix... North; South; 3 Import Census Matrix"},
        {FileKind::ios, phoneFile,
         "importing Zorvel for iOS file... North; 4 Import Phone-App File"},
    };
    for (const auto& test : cases) {
        importDriver(test.kind)(test.text, document, services());
        ASSERT_EQ(view.running.size(), 1U);
        std::string outcome = view.running.begin()->second.first + ' ';
        EXPECT_EQ(context().censusCount(), 0U);
        finishAll();
        EXPECT_THAT(view.running, IsEmpty());
        for (const std::string& name : censusNames()) outcome += name + "; ";
        for (const std::int64_t count : fullCountsVector(context().censuses().front())) {
            outcome += std::to_string(count) + ' ';
        }
        EXPECT_EQ(outcome + context().undoName(), test.outcome);
        EXPECT_EQ(reports.back().outcome, ImportReport::Outcome::stored);
        EXPECT_EQ(reports.back().censuses, context().censusCount());
        EXPECT_EQ(reports.back().taxa, context().taxa().size());
        context().undo();
        EXPECT_EQ(context().censusCount(), 0U);
        context().redo();
        EXPECT_EQ(context().censusCount(), reports.back().censuses);
        context().undo();
    }
    EXPECT_THAT(console, IsEmpty());
}

TEST_F(ImportTest, DriversRefuseAFileAsAWhole) {
    const struct {
        FileKind kind;
        std::string text;
        const char* reason;  // the first console line ends with it
        const char* lastLine;
        TextPlace place;
    } cases[] = {
        {FileKind::list, "3 5\n0",
         "File contains zero or negative abundance value, but all abundances must be positive "
         "integers. See help for formatting an input file.",
         "WARNING: Abundance list could not be obtained", TextPlace{2, 1}},
        {FileKind::census, "Abies,3\nLarix,2,\n",
         "An abundance value is missing.  See help for formatting an input file.",
         "WARNING: Census could not be obtained", TextPlace{2, 2}},
        {FileKind::matrix, ",Abies,Larix\nNorth,3,4\nSouth,1,two\n",
         "Not an abundance value, or not an integer: two",
         "WARNING: Censuses could not be obtained from census matrix", TextPlace{3, 3}},
        {FileKind::ios, "\"Name\"\n", "fewer than six components on first line",
         "WARNING: Censuses could not be obtained from iOS file", TextPlace{1, 0}},
    };
    for (const auto& test : cases) {
        console.clear();
        importDriver(test.kind)(test.text, document, services());
        finishAll();
        EXPECT_THAT(console, ElementsAre(testing::EndsWith(test.reason), test.lastLine));
        EXPECT_THAT(view.running, IsEmpty());
        EXPECT_EQ(reports.back().outcome, ImportReport::Outcome::refused);
        EXPECT_EQ(reports.back().place, test.place);
        EXPECT_EQ(reports.back().reason, test.reason);
    }
    EXPECT_FALSE(context().canUndo());
}

TEST_F(ImportTest, WithoutAWindowNothingIsParsed) {
    document.forgetMainView();
    for (const ImportDriver& driver :
         {importAbundanceList, importOneCensus, importCensusMatrix, importIOSFile}) {
        driver("4", document, services());
    }
    EXPECT_THAT(jobs, IsEmpty());
    EXPECT_THAT(console,
                ElementsAre("WARNING: could not obtain window/view for importAbundanceList",
                            "WARNING: could not obtain window/view for importOneCensus",
                            "WARNING: could not obtain window/view for importCensusMatrix",
                            "WARNING: could not obtain window/view for importIOSFile"));
    ASSERT_EQ(reports.size(), 4U);
    EXPECT_EQ(reports.front().outcome, ImportReport::Outcome::noWindow);
}

TEST_F(ImportTest, SeveralAtOnceAndEditsBetweenKeepEveryRecord) {
    importCensusMatrix(",Abies,Larix\nNorth,3,4\n", document, services());
    importCensusMatrix(",Abies,Picea\nSouth,1,2\n", document, services());
    EXPECT_EQ(view.running.size(), 2U);
    finishNext();  // both are parsed: North has its place
    finishNext();
    const Census typed = addCensus(context());
    editName(context(), addTaxon(context(), typed), "Picea");
    std::swap(jobs[0], jobs[1]);
    finishAll();
    EXPECT_THAT(censusNames(), ElementsAre("North", "South", unnamedName));
    const auto lastName = [](const Census& census) { return &census.taxa().back().name()->str(); };
    EXPECT_EQ(lastName(context().censuses()[1]), lastName(typed)) << "Picea is kept once";
    context().undo();
    EXPECT_THAT(censusNames(), ElementsAre("South", unnamedName));
}

TEST_F(ImportTest, CancellingStoresNothingAndSaysNothing) {
    for (const int finished : {0, 1}) {
        importCensusMatrix(",Abies\nNorth,3\n", document, services());
        for (int i = 0; i < finished; ++i) finishNext();
        view.running.begin()->second.second();
        finishAll();
        EXPECT_EQ(reports.back().outcome, ImportReport::Outcome::cancelled);
        EXPECT_THAT(view.running, IsEmpty());
    }
    EXPECT_FALSE(context().canUndo());
    EXPECT_THAT(console, IsEmpty());
    std::stop_source stop;
    stop.request_stop();
    for (const auto& [kind, text] : {std::pair(FileKind::list, "4"),
                                     {FileKind::census, "Abies,4"},
                                     {FileKind::matrix, ",Abies\nNorth,4\n"},
                                     {FileKind::ios, phoneFile.c_str()}}) {
        EXPECT_TRUE(parseFile(kind, text).value);
        EXPECT_EQ(parseFile(kind, text, stop.get_token()), ParsedCensuses());
    }
}

TEST_F(ImportTest, EveryFieldIsStored) {
    MockCensus mock;
    mock.name = "North";
    mock.notes = "wet, cold";
    mock.latitude = 47.61;
    mock.longitude = -122.33;
    mock.timeStamp = TimeStamp(std::chrono::seconds(1457221320));
    mock.taxa = {{5, "Abies"}, {most, "Abies"}, {1, ""}};
    ObjectContext opened;
    opened.adopt(recordsOf({mock, MockCensus{}}, nullptr));
    const Census census = opened.censuses()[0];
    EXPECT_TRUE(
        sameAttributes(census.block()->attributes,
                       {mock.name, mock.latitude, mock.longitude, mock.notes, mock.timeStamp}));
    std::vector<TaxonValues> taxa;
    census.block()->forEachTaxon([&](const TaxonRecord& taxon) { taxa.push_back(taxon.values); });
    EXPECT_EQ(taxa,
              (std::vector<TaxonValues>{{"Abies", 5, true}, {"Abies", most, true}, {"", 1, true}}));
    const Census empty = opened.censuses()[1];
    EXPECT_EQ(empty.name(), SharedText("")) << "an empty text stays one";
    EXPECT_FALSE(empty.timeStamp());
    ObjectContext ofTable;
    mock.excluded = {1};
    ofTable.adopt(recordsOf({mock, MockCensus{}}, nullptr, BlankTexts::absent));
    const Census tableCensus = ofTable.censuses()[0];
    EXPECT_EQ(tableCensus.name(), SharedText("North"));
    EXPECT_FALSE(tableCensus.taxa()[1].include());
    EXPECT_EQ(tableCensus.taxa()[2].name(), std::nullopt) << "a blank cell is no name";
    EXPECT_EQ(ofTable.censuses()[1].name(), std::nullopt);
    EXPECT_EQ(ofTable.censuses()[1].notes(), std::nullopt);
    EXPECT_FALSE(opened.canUndo());
    EXPECT_GT(opened.insertCensus().id(), opened.taxa().back().id());
}

TEST(ParseFile, CellsThatNoCommaSeparatesAreRefused) {
    const std::string rest =
        "\";\"D\";\"O\";\"La\";\"Lo\";\"Abies\"\n\"North\";\"Mar\";\"\";1;2;4\n";
    const struct {
        FileKind kind;
        std::string text;
        std::string separator;  // empty: read, or refused for another reason
    } rows[] = {
        {FileKind::matrix, "site;A;B\nNorth;3;4\nSouth;0;1\n", "semicolons"},
        {FileKind::matrix, "\r\nsite\tA\tB\r\n\r\nNorth\t3\t", "tabs"},
        {FileKind::matrix, "\"site\";\"A, b\"\n\"North\nEast\";\"3\"\n", "semicolons"},
        {FileKind::matrix, "site;Abies, alba\nNorth, East;3\n", "semicolons"},
        {FileKind::census, "Abies\t12\nPicea\t3\n", "tabs"},
        {FileKind::list, "3;5;7", "semicolons"},
        {FileKind::ios, "\"N" + rest, "semicolons"},
        {FileKind::matrix, " ,A;a,B;b\nN;n,1,2\nS;s,0,0\n", ""},
        {FileKind::matrix, " ,A;1,B;2\nN;n,1,x\n", ""},
        {FileKind::matrix, " ,A\nNorth;3\n", ""},
        {FileKind::list, "Abies\t5\nPicea\t1\n", ""},
        {FileKind::census, "Abies;1,12\n", ""},
    };
    for (const auto& row : rows) {
        const auto parsed = parseFile(row.kind, row.text);
        EXPECT_EQ(parsed.advice.find("separated by " + row.separator + ",") != std::string::npos,
                  !row.separator.empty())
            << row.text;
        EXPECT_FALSE(parsed.value && !row.separator.empty()) << row.text;
    }
    const auto silent = parseFile(FileKind::matrix, rows[0].text);
    EXPECT_THAT(silent.consoleLines, IsEmpty());
    EXPECT_EQ(reasonOf(silent), silent.advice);
    EXPECT_EQ(reasonOf(parseFile(FileKind::matrix, ",Abies,Picea\nNorth,,3\n")),
              "Not an abundance value, or not an integer: (empty)");
    EXPECT_EQ(reasonOf({}), "its contents are in none of the known formats");
}

}  // namespace
}  // namespace zorvel
