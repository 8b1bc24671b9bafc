// The fast reader against the plain one, whatever the text.
#include "bench/plain_matrix.h"
#include "fuzz/fuzz_input.h"
#include "interchange/parsers.h"

using namespace zorvel;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzzText(data, size);
    const auto parsed = parseCensusMatrix(text);
    promiseRecordsOrReason(parsed);
    promise(parsed == plain::parseCensusMatrix(text));
    return 0;
}
