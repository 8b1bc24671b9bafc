#include "fuzz/fuzz_input.h"
#include "interchange/parsers.h"

using namespace zorvel;

namespace {

// The census as a file that must read back the same: every name in quotes.
std::string quotedFile(const MockCensus& census) {
    std::string text;
    for (const MockTaxon& taxon : census.taxa) {
        text += '"';
        for (const char c : taxon.name.view())
            text += c == '"' ? std::string("\"\"") : std::string(1, c);
        text += "\"," + std::to_string(taxon.abundance) + "\n";
    }
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto parsed = parseCensus(fuzzText(data, size));
    promiseRecordsOrReason(parsed);
    if (parsed.value) promise(parseCensus(quotedFile(*parsed.value)).value == parsed.value);
    return 0;
}
