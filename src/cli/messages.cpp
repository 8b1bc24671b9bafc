#include "cli/messages.h"

#include <utility>

#include "base/console.h"
#include "base/files.h"
#include "base/numbers.h"
#include "base/text.h"

namespace zorvel::cli {

void tell(std::string_view message) {
    // There is nowhere left to report a failure.
    static_cast<void>(writeFileWhole("/dev/stderr", terminalLine(message) + "\n"));
}

void tellAt(std::string_view file, TextPlace place, std::string_view message) {
    std::string line(file);
    for (const std::size_t number : {place.line, place.cell}) {
        if (number == 0) break;
        line += ':' + integerText(static_cast<std::int64_t>(number));
    }
    line += ": ";
    line += message;
    tell(line);
}

std::string shownFile(const std::string& file) {
    return file == "-" ? "<stdin>" : file;
}

void tellConsoleLines(std::string prefix) {
    setConsoleSink(
        [prefix = std::move(prefix)](std::string_view line) { tell(prefix + std::string(line)); });
}

}  // namespace zorvel::cli
