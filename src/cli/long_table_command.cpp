// zorvel-cli long-table: the censuses of any file as a table of records.
#include "cli/call.h"
#include "model/long_table.h"

namespace zorvel::cli {
namespace {

std::optional<Problem> runLongTable(const Call& /*call*/, Project& project, Output& output) {
    output.write([&project](const ByteSink& sink) { writeLongTable(project.censuses, sink); });
    return std::nullopt;
}

}  // namespace

const Command longTableCommand = {
    .name = "long-table",
    .description = "A row per species of each census, with all data",
    .example = "long-table survey.zorvel --output survey.csv",
    .refusesJson = true,
    .run = runLongTable,
};

}  // namespace zorvel::cli
