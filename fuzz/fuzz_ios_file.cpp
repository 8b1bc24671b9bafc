#include "fuzz/fuzz_input.h"
#include "interchange/parsers.h"

using namespace zorvel;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto parsed = parseIOSFile(fuzzText(data, size));
    promiseRecordsOrReason(parsed);
    if (!parsed.value) return 0;
    for (const MockCensus& census : *parsed.value) {
        promise(census.timeStamp.has_value());
        promise(census.name.find('"') == std::string::npos);
        for (const MockTaxon& taxon : census.taxa) promise(taxon.abundance >= 1);
    }
    return 0;
}
