// A project: its object context, and the numeric inputs of every analysis made from its records.
// The analyses never see records. Every operation reads afresh; nothing is cached. The operations
// on lists of records run alike on a live context and on a frozen copy.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "interchange/import_records.h"
#include "metrics/counts.h"
#include "store/object_context.h"

namespace zorvel {

using NameList = std::vector<std::string>;

// Row i belongs to censusNames[i], column j to taxonNames[j].
struct CountsMatrixResult {
    CountsMatrix matrix;
    NameList taxonNames;
    NameList censusNames;
};

// Stands for a missing name in both name lists.
inline constexpr const char* unnamedName = "unnamed";

// All records, in order of insertion. Absent without a context.
std::optional<std::vector<Census>> fetchCensuses(const ObjectContext* context);
std::optional<std::vector<Zorvel>> fetchTaxa(const ObjectContext* context);

CountsVector includedCountsVector(const Census& census);
CountsVector fullCountsVector(const Census& census);
NameList projectTaxonNames(const std::vector<Zorvel>& taxa);
NameList censusNameList(const std::vector<Census>& censuses);
CountsVector pooledCountsVector(const std::vector<Zorvel>& taxa);
CountsMatrixResult buildCountsMatrix(const std::vector<Zorvel>& taxa,
                                     const std::vector<Census>& censuses);

class DiversityDocument {
  public:
    // Names of the entities and attributes of the data model.
    const std::string kTaxonEntity = "Zorvel";
    const std::string kTaxonAbundanceKey = "abundance";
    const std::string kTaxonIncludeKey = "include";
    const std::string kTaxonNameKey = "name";
    const std::string kTaxonCensusKey = "census";
    const std::string kCensusEntity = "Census";
    const std::string kCensusNameKey = "name";
    const std::string kCensusLatitudeKey = "latitude";
    const std::string kCensusLongitudeKey = "longitude";
    const std::string kCensusNotesKey = "notes";
    const std::string kCensusTaxaKey = "taxa";
    const std::string kCensusTimeStampKey = "timeStamp";

    static constexpr bool autosavesInPlace = true;

    [[nodiscard]] ObjectContext& objectContext() { return context_; }
    [[nodiscard]] const ObjectContext& objectContext() const { return context_; }

    [[nodiscard]] std::optional<std::vector<Census>> fetchCensuses() const;
    [[nodiscard]] std::optional<std::vector<Zorvel>> fetchTaxa() const;

    // One census record with all its taxa, at the end of the project.
    Census storeCensus(const MockCensus& census);

  private:
    ObjectContext context_;
};

}  // namespace zorvel
