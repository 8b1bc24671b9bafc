// zorvel-cli records, matrix and long-table: the censuses of any file with all their data as JSON,
// as one census matrix, and as a table with a row per species.
#include "base/time_stamp.h"
#include "cli/call.h"
#include "interchange/writers.h"
#include "model/long_table.h"

namespace zorvel::cli {
namespace {

using Keys = DiversityDocument;

void writeTaxon(JsonWriter& json, const TaxonValues& taxon) {
    json.begin('{');
    json.field(Keys::kTaxonNameKey, taxon.name);
    json.field(Keys::kTaxonAbundanceKey, taxon.abundance);
    json.field(Keys::kTaxonIncludeKey, taxon.include);
    json.end('}');
}

void writeCensus(JsonWriter& json, const CensusBlock& census) {
    const CensusAttributes& attributes = census.attributes;
    std::optional<std::string> time;
    if (attributes.timeStamp) time = isoLocalText(*attributes.timeStamp);
    json.begin('{');
    json.field(Keys::kCensusNameKey, attributes.name);
    json.field(Keys::kCensusLatitudeKey, attributes.latitude);
    json.field(Keys::kCensusLongitudeKey, attributes.longitude);
    json.field(Keys::kCensusNotesKey, attributes.notes);
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

std::optional<Problem> runMatrix(const Call& /*call*/, Project& project, Output& output) {
    const SparseCountsResult result = buildSparseCounts(project.document->objectContext());
    // The records are released before the text of the matrix takes memory.
    project.censuses.clear();
    project.document.reset();
    output.write([&result](const ByteSink& sink) {
        writeCensusMatrix(result.counts, result.taxonNames, result.censusNames, sink);
    });
    return std::nullopt;
}

std::optional<Problem> runLongTable(const Call& /*call*/, Project& project, Output& output) {
    output.write([&project](const ByteSink& sink) { writeLongTable(project.censuses, sink); });
    return std::nullopt;
}

}  // namespace

const Command recordsCommand = {
    .name = "records",
    .description = "Every census with its taxa, as JSON (with or without --json)",
    .example = "records phone-export.txt --kind ios",
    .run = runRecords,
};

const Command matrixCommand = {
    .name = "matrix",
    .description = "The censuses by taxa as a census matrix",
    .example = "matrix phone-export.txt --kind ios --output counts.csv",
    .refusesJson = true,
    .run = runMatrix,
};

const Command longTableCommand = {
    .name = "long-table",
    .description = "A row per species of each census, with all data",
    .example = "long-table survey.zorvel --output survey.csv",
    .refusesJson = true,
    .run = runLongTable,
};

}  // namespace zorvel::cli
