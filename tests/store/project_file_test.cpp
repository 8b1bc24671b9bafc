// What is written comes back, exactly and in order.
#include "store/project_file.h"

#include <limits>
#include <string>
#include <vector>

#include "tests/store/project_file_support.h"

namespace zorvel {
namespace {

using std::chrono::microseconds;
using Limits = std::numeric_limits<std::int64_t>;
using Real = std::numeric_limits<double>;

// Values that a careless store would bend.
void fillWithExtremes(ObjectContext& context) {
    const std::vector<double> numbers = {0.0,
                                         -0.0,
                                         Real::quiet_NaN(),
                                         Real::infinity(),
                                         -Real::infinity(),
                                         Real::min(),
                                         -Real::max(),
                                         Real::denorm_min(),
                                         52.0,
                                         -0.1};
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

}  // namespace
}  // namespace zorvel
