#include "cli/messages.h"

#include <unistd.h>

#include <utility>

#include "base/console.h"
#include "base/numbers.h"
#include "cli/output.h"

namespace zorvel::cli {

void tell(std::string_view message) {
    std::string line(message);
    line += '\n';
    // There is nowhere left to report that this failed.
    static_cast<void>(writeAll(STDERR_FILENO, line));
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
