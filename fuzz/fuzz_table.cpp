// A table of any layout: guessed and read without a fault, the same from pieces of any size.
#include <algorithm>

#include "fuzz/fuzz_input.h"
#include "tables/guess.h"
#include "tables/reader.h"

using namespace zorvel;

namespace {

TableRecords readInPieces(std::string_view text, const TableReading& reading, std::size_t piece) {
    ByteSource bytes = bytesOf(text);
    TextRows rows(
        [&](char* place, std::size_t size) { return bytes(place, std::min(size, piece)); },
        reading.form);
    return readTable(rows, reading);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzzText(data, size);
    const TableGuess guess = guessTable(text, true);
    const TableRecords records = readInPieces(text, guess.reading, text.size() + 1);
    const TableRecords pieces = readInPieces(text, guess.reading, 3);
    promise(records.censuses == pieces.censuses);
    promise(records.problems.kept == pieces.problems.kept);
    promise(records.problems.kept.size() ==
            std::min(records.problems.count, TableRemarks::mostKept));
    for (const MockCensus& census : records.censuses) {
        for (const MockTaxon& taxon : census.taxa) promise(taxon.abundance > 0);
    }
    return 0;
}
