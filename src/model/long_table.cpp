#include "model/long_table.h"

#include <optional>
#include <string_view>

#include "interchange/writers.h"

namespace zorvel {
namespace {

std::string_view textOf(const std::optional<SharedText>& text) {
    return text ? text->view() : std::string_view();
}

}  // namespace

void writeLongTable(const std::vector<Census>& censuses, const ByteSink& sink) {
    LongTableWriter writer(sink);
    for (const Census& census : censuses) {
        const BlockPointer block = census.block();
        const CensusAttributes& its = block->attributes;
        const LongTableCensus shown{textOf(its.name), its.timeStamp, its.latitude, its.longitude,
                                    textOf(its.notes)};
        if (!writer.begin(shown, block->taxonCount())) return;
        block->forEachTaxon([&writer](const TaxonRecord& taxon) {
            const TaxonValues& values = taxon.values;
            writer.add(textOf(values.name), values.abundance, values.include);
        });
    }
    writer.finish();
}

}  // namespace zorvel
