#include "fuzz/fuzz_input.h"
#include "interchange/parsers.h"

using namespace zorvel;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto parsed = parseAbundanceList(fuzzText(data, size));
    promiseRecordsOrReason(parsed);
    if (!parsed.value) return 0;
    promise(!parsed.value->taxa.empty());
    for (const MockTaxon& taxon : parsed.value->taxa) promise(taxon.abundance >= 1);
    return 0;
}
