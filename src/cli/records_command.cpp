// zorvel-cli records: every census with its taxa, as JSON.
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>

#include "cli/call.h"

namespace zorvel::cli {
namespace {

// Of the computer's time zone at that instant, cut to whole minutes.
std::time_t minutesEastAt(std::time_t seconds) {
    std::tm local{};
    return localtime_r(&seconds, &local) == nullptr ? 0 : local.tm_gmtoff / 60;
}

// ISO 8601 in the computer's time zone with its offset then, as "2016-03-05T15:42:00+01:00";
// decimals of the second if there are any. An offset with seconds, as before standard time, is cut
// to whole minutes, and the clock time with it, so that the instant is right. Years past 9999 take
// a plus sign and more digits, those before 0 a minus sign.
std::string isoLocalTime(TimeStamp time) {
    // In seconds, since the first and last time stamps leave no room for an offset.
    const std::time_t seconds =
        std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count();
    const std::time_t east = minutesEastAt(seconds);
    const std::time_t shown = seconds + 60 * east;
    std::tm clock{};
    gmtime_r(&shown, &clock);
    const int year = clock.tm_year + 1900;
    constexpr std::int64_t perSecond = 1'000'000;
    const std::int64_t count = time.time_since_epoch().count();
    std::array<char, 80> text{};
    std::snprintf(text.data(), text.size(), "%s%04d-%02d-%02dT%02d:%02d:%02d.%06d",
                  year < 0 ? "-" : (year > 9999 ? "+" : ""), std::abs(year), clock.tm_mon + 1,
                  clock.tm_mday, clock.tm_hour, clock.tm_min, clock.tm_sec,
                  static_cast<int>((count % perSecond + perSecond) % perSecond));
    std::string iso = text.data();
    iso.erase(iso.find_last_not_of('0') + 1);
    if (iso.ends_with('.')) iso.pop_back();
    std::snprintf(text.data(), text.size(), "%c%02d:%02d", east < 0 ? '-' : '+',
                  static_cast<int>(std::abs(east) / 60), static_cast<int>(std::abs(east) % 60));
    return iso + text.data();
}

using Keys = DiversityDocument;

std::optional<std::string_view> view(const std::optional<SharedText>& text) {
    if (!text) return std::nullopt;
    return text->view();
}

void writeTaxon(JsonWriter& json, const TaxonValues& taxon) {
    json.begin('{');
    json.field(Keys::kTaxonNameKey, view(taxon.name));
    json.field(Keys::kTaxonAbundanceKey, taxon.abundance);
    json.field(Keys::kTaxonIncludeKey, taxon.include);
    json.end('}');
}

void writeCensus(JsonWriter& json, const CensusBlock& census) {
    const CensusAttributes& attributes = census.attributes;
    std::optional<std::string> time;
    if (attributes.timeStamp) time = isoLocalTime(*attributes.timeStamp);
    json.begin('{');
    json.field(Keys::kCensusNameKey, view(attributes.name));
    json.field(Keys::kCensusLatitudeKey, attributes.latitude);
    json.field(Keys::kCensusLongitudeKey, attributes.longitude);
    json.field(Keys::kCensusNotesKey, view(attributes.notes));
    json.field(Keys::kCensusTimeStampKey, time);
    json.key(Keys::kCensusTaxaKey);
    json.begin('[');
    census.forEachTaxon([&](const TaxonRecord& taxon) { writeTaxon(json, taxon.values); });
    json.end(']');
    json.end('}');
}

std::optional<Problem> runRecords(const Call& /*call*/, Project& project, Output& output) {
    JsonWriter json(output);
    json.begin('[');
    for (const Census& census : project.censuses) {
        if (output.failed()) break;
        writeCensus(json, *census.block());
    }
    json.end(']');
    return std::nullopt;
}

}  // namespace

const Command recordsCommand = {
    .name = "records",
    .description = "Every census with its taxa, as JSON (with or without --json)",
    .example = "records phone-export.txt --kind ios",
    .run = runRecords,
};

}  // namespace zorvel::cli
