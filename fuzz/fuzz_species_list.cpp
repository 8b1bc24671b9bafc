#include "fuzz/fuzz_input.h"
#include "interchange/parsers.h"

using namespace zorvel;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto parsed = parseSpeciesList(fuzzText(data, size));
    promise(parsed.value && parsed.consoleLines.empty());
    std::string joined;
    for (const std::string& name : *parsed.value) {
        promise(!name.empty() && name.find_first_of(",\t\n\r") == std::string::npos);
        joined += name + "\n";
    }
    promise(parseSpeciesList(joined) == parsed);
    return 0;
}
