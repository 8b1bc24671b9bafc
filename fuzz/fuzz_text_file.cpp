// From the bytes of a file to a text of a guessed kind.
#include "base/text.h"
#include "fuzz/fuzz_input.h"
#include "interchange/file_kind.h"
#include "interchange/text_file.h"

using namespace zorvel;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes = fuzzText(data, size);
    const auto text = decodeText(std::string(bytes));
    if (!text) {
        promise(!text.problem().message.empty());
        return 0;
    }
    // The text is the bytes, less a byte-order mark.
    const std::size_t mark = bytes.starts_with("\xEF\xBB\xBF") ? 3 : 0;
    promise(!firstInvalidUtf8(text.value()) && bytes.substr(mark) == text.value());
    guessFileKind(text.value());
    foreignSeparator(text.value());
    promise(!firstInvalidUtf8(terminalLine(bytes)));
    return 0;
}
