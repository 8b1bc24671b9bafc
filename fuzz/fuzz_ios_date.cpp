#include "fuzz/fuzz_input.h"
#include "interchange/parsers.h"

using namespace zorvel;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto parsed = parseIOSDate(fuzzText(data, size));
    // Some texts give nothing without a word.
    promise(!parsed.value || parsed.consoleLines.empty());
    if (parsed.value) promise(parsed.value->time_since_epoch().count() % 1'000'000 == 0);
    return 0;
}
