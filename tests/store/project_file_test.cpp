// What is written comes back, exactly and in order.
#include "store/project_file.h"

#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "store/chunk_list.h"
#include "tests/store/project_file_support.h"
#include "tests/support/plain_sqlite.h"

namespace zorvel {
namespace {

using std::chrono::microseconds;
using Limits = std::numeric_limits<std::int64_t>;
using Real = std::numeric_limits<double>;

// Values that are easily changed on their way to a file and back.
void fillWithExtremes(ObjectContext& context) {
    const double infinity = Real::infinity();
    const std::vector<double> numbers = {0.0,
                                         -0.0,
                                         52.0,
                                         -0.1,
                                         infinity,
                                         -infinity,
                                         Real::quiet_NaN(),
                                         Real::min(),
                                         -Real::max(),
                                         Real::denorm_min()};
    const std::vector<std::optional<SharedText>> texts = {
        std::nullopt,
        "",
        "Abies alba",
        std::string("a\0b", 3),
        "\xEF\xBB\xBF"
        "byte-order mark",
        "\xF0\x9F\xA6\x96 e\xCC\x81 \xC3\xA9",
        "'); DROP TABLE taxon; --\r\n\t",
        std::string(100'000, 'x'),
        "12",
        "NULL",
    };
    const std::vector<std::optional<TimeStamp>> times = {
        std::nullopt, TimeStamp(), TimeStamp::min(), TimeStamp::max(), TimeStamp(microseconds(-1))};
    const std::vector<std::int64_t> counts = {0, 1, -1, Limits::max(), Limits::min(), 1LL << 53};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        CensusAttributes attributes;
        attributes.name = texts[i];
        attributes.latitude = numbers[i];
        attributes.longitude = numbers[numbers.size() - 1 - i];
        attributes.notes = texts[texts.size() - 1 - i];
        attributes.timeStamp = times[i % times.size()];
        std::vector<TaxonValues> taxa;
        for (std::size_t j = 0; j < i * 30; ++j) {
            taxa.push_back({texts[j % texts.size()], counts[j % counts.size()], j % 3 != 0});
        }
        context.insertCensus(attributes, taxa);
    }
}

TEST_F(ProjectFileTest, ExtremesComeBackWhicheverWayTheyWereWritten) {
    ObjectContext context;
    fillWithExtremes(context);
    created(path("created.zorvel"), context);
    expectHolds(path("created.zorvel"), context);

    const auto file = created(path("written.zorvel"), ObjectContext());
    ASSERT_FALSE(file->write(context.frozenCopy()));
    expectHolds(path("written.zorvel"), context);
    ASSERT_FALSE(file->copyTo(path("copied.zorvel")));
    expectHolds(path("copied.zorvel"), context);
    EXPECT_EQ(entries(), 3U);
}

TEST_F(ProjectFileTest, EachValueOfACensusIsWrittenAlone) {
    ObjectContext context;
    const Census census = context.insertCensus({}, {{"Abies alba", 1, true}});
    const auto file = created(path("p.zorvel"), context);
    const std::function<void()> changes[] = {
        [&] { context.setName(census, "North"); },
        [&] { context.setLatitude(census, 47.5); },
        [&] { context.setLongitude(census, -122.25); },
        [&] { context.setNotes(census, "below the path"); },
        [&] { context.setTimeStamp(census, TimeStamp(microseconds(7))); },
    };
    for (const auto& change : changes) {
        change();
        ASSERT_FALSE(file->write(context.frozenCopy()));
        expectHolds(path("p.zorvel"), context);
    }
}

// What is written can be read again, or nothing is written.
TEST_F(ProjectFileTest, NumbersNearTheirLimits) {
    const int fine = -1;
    const int noRoom = numberOf(FileTrouble::noRoom);
    const struct {
        const char* sql;
        int trouble;
    } rows[] = {
        {"UPDATE project SET generation = 4611686018427387903", fine},
        {"INSERT INTO census(id) VALUES(2305843009213693951)", fine},
        {"INSERT INTO census(id) VALUES(2305843009213693952)", noRoom},
        {"UPDATE taxon SET id = 4611686018427387903", noRoom},
        {"UPDATE name SET id = 4611686018427387903; UPDATE taxon SET name = 4611686018427387903",
         noRoom},
    };
    ObjectContext start;
    start.insertCensus({}, {{"Abies alba", 1, true}});
    for (const auto& row : rows) {
        SCOPED_TRACE(row.sql);
        created(path("p.zorvel"), start);
        PlainDatabase(path("p.zorvel")).run(row.sql);
        const std::string before = bytesOf("p.zorvel");
        Opened found = opened(path("p.zorvel"));
        EXPECT_EQ(numberOf(found.file->whyNotWritable()), row.trouble);
        ObjectContext context;
        context.adopt(found.records);
        context.insertCensus({}, {{"Zea mays", 1, true}});
        EXPECT_EQ(numberOf(found.file->write(context.frozenCopy())), row.trouble);
        EXPECT_EQ(bytesOf("p.zorvel") == before, row.trouble != fine);
        if (row.trouble == fine) expectHolds(path("p.zorvel"), context);
    }
}

// Taxa that were added to an early census after a later one was made stand in its order, whatever
// the chunks that they are read in.
TEST_F(ProjectFileTest, TaxaAddedByTurnsKeepTheOrderOfTheirCensus) {
    ObjectContext context;
    std::vector<Census> censuses;
    for (int i = 0; i < 3; ++i) {
        censuses.push_back(
            context.insertCensus({}, std::vector<TaxonValues>(static_cast<std::size_t>(i) * 256)));
    }
    for (std::size_t i = 0; i < 900; ++i) {
        const Zorvel taxon = context.insertTaxon(censuses[i / 5 % 3]);
        context.setAbundance(taxon, static_cast<std::int64_t>(i));
    }
    created(path("p.zorvel"), context);
    const Opened found = opened(path("p.zorvel"));
    EXPECT_TRUE(sameRecords(found.records.censuses, context.blocks()));
    for (const BlockPointer& block : found.records.censuses) {
        for (const auto& chunk : block->chunks) {
            EXPECT_EQ(chunk->capacity(), chunk->size());
            EXPECT_LE(chunk->size(), taxaPerChunk);
        }
    }
}

// However large the project, one edit touches the page of its row, and those of the project's row
// and the header.
TEST_F(ProjectFileTest, OneEditChangesFewPages) {
    ObjectContext context;
    for (int i = 0; i < 100; ++i) context.insertCensus({}, std::vector<TaxonValues>(200));
    const auto file = created(path("p.zorvel"), context);
    const std::string before = bytesOf("p.zorvel");
    context.setAbundance(context.taxa()[12'345], 7);
    ASSERT_FALSE(file->write(context.frozenCopy()));
    const std::string after = bytesOf("p.zorvel");
    ASSERT_EQ(before.size(), after.size());
    std::size_t changed = 0;
    for (std::size_t page = 0; page < before.size(); page += 4096) {
        if (before.compare(page, 4096, after, page, 4096) != 0) ++changed;
    }
    EXPECT_GE(before.size() / 4096, 50U);
    EXPECT_LE(changed, 3U);
}

// A state that is in the file already costs no write.
TEST_F(ProjectFileTest, NoChangeIsNotWritten) {
    ObjectContext context;
    context.insertCensus();
    const auto file = created(path("p.zorvel"), context);
    const std::string before = bytesOf("p.zorvel");
    EXPECT_FALSE(file->write(context.frozenCopy()));
    EXPECT_TRUE(bytesOf("p.zorvel") == before);
}

// What could not be read again does not get into the file, and stops no later write.
TEST_F(ProjectFileTest, TextsThatAreNotUtf8AreNotWritten) {
    ObjectContext context;
    const Census census = context.insertCensus();
    const Zorvel taxon = context.insertTaxon(census);
    const auto file = created(path("p.zorvel"), context);
    const auto before = context.frozenCopy();
    const std::vector<std::function<void(const SharedText&)>> setters = {
        [&](const SharedText& text) { context.setName(census, text); },
        [&](const SharedText& text) { context.setNotes(census, text); },
        [&](const SharedText& text) { context.setName(taxon, text); }};
    for (const auto& set : setters) {
        set("a\xFF");
        EXPECT_EQ(numberOf(file->write(context.frozenCopy())), numberOf(FileTrouble::other));
        expectHolds(path("p.zorvel"), *before);
        EXPECT_FALSE(ProjectFile::create(path("new.zorvel"), context).ok());
        EXPECT_EQ(entries(), 1U);
        context.undo();
    }
    context.setName(taxon, "a");
    EXPECT_FALSE(file->write(context.frozenCopy()));
    expectHolds(path("p.zorvel"), context);
}

// Rows that waited when a write failed are not written by the next one.
TEST_F(ProjectFileTest, FailedWriteLeavesNothingForTheNext) {
    ObjectContext context;
    const Zorvel taxon = context.insertTaxon(context.insertCensus());
    const Census later = context.insertCensus();
    const auto file = created(path("p.zorvel"), context);
    context.setAbundance(taxon, 99);
    context.setNotes(later, "\xFF");
    ASSERT_TRUE(file->write(context.frozenCopy()));
    context.undo();
    context.undo();
    context.setNotes(later, "fine");
    ASSERT_FALSE(file->write(context.frozenCopy()));
    expectHolds(path("p.zorvel"), context);
}

TEST_F(ProjectFileTest, IdentityStaysWithTheProject) {
    const auto one = created(path("one.zorvel"), ObjectContext());
    const auto two = created(path("two.zorvel"), ObjectContext());
    EXPECT_NE(one->projectId(), two->projectId());
    ASSERT_FALSE(one->copyTo(path("copy.zorvel")));
    EXPECT_EQ(opened(path("copy.zorvel")).file->projectId(), one->projectId());
}

}  // namespace
}  // namespace zorvel
