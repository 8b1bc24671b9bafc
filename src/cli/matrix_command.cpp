// zorvel-cli matrix: the censuses of any file as one census matrix.
#include "cli/call.h"
#include "interchange/writers.h"

namespace zorvel::cli {
namespace {

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

}  // namespace

const Command matrixCommand = {
    .name = "matrix",
    .description = "The censuses by taxa as a census matrix",
    .example = "matrix phone-export.txt --kind ios --output counts.csv",
    .refusesJson = true,
    .run = runMatrix,
};

}  // namespace zorvel::cli
