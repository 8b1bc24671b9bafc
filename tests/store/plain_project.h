// The state of a context as plain lists, for tests to edit beside it and to compare with.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "store/object_context.h"

namespace zorvel {

struct PlainTaxon {
    RecordId id = 0;
    std::optional<std::string> name;
    std::int64_t abundance = 0;
    bool include = true;

    friend bool operator==(const PlainTaxon&, const PlainTaxon&) = default;
};

struct PlainCensus {
    RecordId id = 0;
    std::optional<std::string> name;
    double latitude = 0;
    std::vector<PlainTaxon> taxa;

    friend bool operator==(const PlainCensus&, const PlainCensus&) = default;
};

using PlainProject = std::vector<PlainCensus>;

inline std::optional<std::string> plainName(const std::optional<SharedText>& name) {
    return name ? std::optional(name->str()) : std::nullopt;
}

inline PlainCensus plainCensus(const CensusBlock& block) {
    PlainCensus plain{block.id, plainName(block.attributes.name), block.attributes.latitude, {}};
    block.forEachTaxon([&](const TaxonRecord& taxon) {
        plain.taxa.push_back(
            {taxon.id, plainName(taxon.values.name), taxon.values.abundance, taxon.values.include});
    });
    return plain;
}

inline PlainProject plainProject(const ObjectContext& context) {
    PlainProject plain;
    for (const Census& census : context.censuses()) plain.push_back(plainCensus(*census.block()));
    return plain;
}

}  // namespace zorvel
