// zorvel-cli matrix: the censuses of any file as one census matrix.
#include "cli/command.h"
#include "interchange/writers.h"

namespace zorvel::cli {
namespace {

// The matrix of a large file takes more room than its records: they go before the text comes.
CountsMatrixResult takeMatrix(Project& project) {
    CountsMatrixResult result =
        buildCountsMatrix(project.document->objectContext().taxa(), project.censuses);
    project.censuses.clear();
    project.document.reset();
    return result;
}

std::optional<Problem> runMatrix(const Call& /*call*/, Project& project, Output& output) {
    const CountsMatrixResult result = takeMatrix(project);
    output.write(writeCensusMatrix(result.matrix, result.taxonNames, result.censusNames));
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
