// The lists of a project in the plainest way: names are compared one by one, and the first match
// counts. What buildSparseCounts() is compared with and measured against.
#pragma once

#include <algorithm>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/text.h"
#include "model/diversity_document.h"

namespace zorvel::plain {

// Row i belongs to censusNames[i], column j to taxonNames[j].
struct CountsMatrixResult {
    CountsMatrix matrix;
    NameList taxonNames;
    NameList censusNames;
};

inline std::string nameOf(const std::optional<SharedText>& name) {
    return name ? name->str() : unnamedName;
}

inline std::size_t firstIndex(const NameList& names, std::string_view name) {
    const auto same = [&](const std::string& other) { return canonicallyEqual(other, name); };
    return static_cast<std::size_t>(std::find_if(names.begin(), names.end(), same) - names.begin());
}

inline NameList projectTaxonNames(const std::vector<Zorvel>& taxa) {
    NameList names;
    for (const Zorvel& taxon : taxa) {
        const std::string name = nameOf(taxon.name());
        if (firstIndex(names, name) == names.size()) names.push_back(name);
    }
    std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
        return canonicalForm(a) < canonicalForm(b);
    });
    return names;
}

// Sums beyond 64 bits are not for this form.
inline CountsVector pooledCountsVector(const std::vector<Zorvel>& taxa) {
    const NameList names = projectTaxonNames(taxa);
    CountsVector pooled(names.size(), 0);
    for (const Zorvel& taxon : taxa) {
        if (taxon.name()) pooled[firstIndex(names, *taxon.name())] += taxon.abundance();
    }
    return pooled;
}

inline CountsMatrixResult buildCountsMatrix(const std::vector<Zorvel>& taxa,
                                            const std::vector<Census>& censuses) {
    CountsMatrixResult result;
    for (const Census& census : censuses) result.censusNames.push_back(nameOf(census.name()));
    result.taxonNames = projectTaxonNames(taxa);
    result.matrix.assign(censuses.size(), CountsVector(result.taxonNames.size(), 0));
    for (const Zorvel& taxon : taxa) {
        if (!taxon.name() || !taxon.census() || !taxon.census()->name()) continue;
        const std::size_t row = firstIndex(result.censusNames, *taxon.census()->name());
        result.matrix[row][firstIndex(result.taxonNames, *taxon.name())] = taxon.abundance();
    }
    return result;
}

}  // namespace zorvel::plain
