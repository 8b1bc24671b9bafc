// The imports: each takes the text of a file to the records of a project. The text is parsed and
// the records are made in the background, while the project's window says so and can give it up;
// then all of them are inserted at once, as one step of undo, or none. Several may run at once. No
// selection changes, and nothing is said to the person beside the progress: whoever starts an
// import hears what came of it. Main thread.
#pragma once

#include <cstddef>
#include <functional>
#include <stop_token>
#include <string>
#include <vector>

#include "interchange/file_kind.h"
#include "interchange/import_records.h"
#include "model/diversity_document.h"
#include "model/jobs.h"

namespace zorvel {

// What tells the imports apart beside the parser.
struct ImportDriver {
    FileKind kind;
    const char* name;
    const char* progressText;
    const char* failureLine;  // on the console, after what the parser says
    const char* stepName;     // in English, to be translated where it is shown
};
const ImportDriver& importDriver(FileKind kind);

struct ImportReport {
    enum class Outcome {
        stored,
        refused,    // by the parser
        cancelled,  // by the person
        noWindow,   // nothing was parsed
    };
    Outcome outcome = Outcome::stored;
    std::size_t censuses = 0;
    std::size_t taxa = 0;                   // of all of them together
    LeftOut leftOut;                        // of what was stored
    std::vector<std::string> consoleLines;  // of the parser
    TextPlace place;                        // of the problem
    std::string advice;                     // about it
};

struct ImportServices {
    // Must outlive the import, and forget it when the document or its window goes: whoever makes
    // that happen also tells the import to stop.
    Jobs& jobs;
    std::stop_source stop;
    // Once, where the import comes to an end; at once where there is no window. May be null.
    std::function<void(const ImportReport& report)> done;
};

// text: not empty. The console gets what the parser says, and the driver's own line where nothing
// could be imported.
void importText(const ImportDriver& driver, std::string text, DiversityDocument& document,
                ImportServices services);

void importAbundanceList(std::string text, DiversityDocument& document, ImportServices services);
void importOneCensus(std::string text, DiversityDocument& document, ImportServices services);
void importCensusMatrix(std::string text, DiversityDocument& document, ImportServices services);
void importIOSFile(std::string text, DiversityDocument& document, ImportServices services);

}  // namespace zorvel
