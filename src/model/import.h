// From the text of a file of any kind to the records of a project: the same way for opening, for
// zorvel-cli, and for the imports of the desktop.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "interchange/file_kind.h"
#include "interchange/parsers.h"
#include "model/diversity_document.h"
#include "store/object_context.h"

namespace zorvel {

// The parser of the kind; a list and a single census give one record. A text whose cells are
// separated by semicolons or tabs, so that the parser finds no abundance in it, is refused: the
// advice says so, and the console lines are the parser's alone, if any. Any thread.
ParsedCensuses parseFile(FileKind kind, std::string_view text, const std::stop_token& stop = {},
                         NamePool* names = nullptr);

// Why nothing could be read, as a part of a sentence for the user: the console lines without their
// marks, and "(empty)" for a cell that has nothing in it; and the parser's advice.
std::string reasonOf(const ParsedCensuses& parsed);

// Why no census of a text that was read has a taxon, in words that follow a colon.
const char* whyNoTaxa(const LeftOut& leftOut);

// Adds the records of one census with all its taxa. An empty name stays an empty text; the names of
// the taxa should be those of the context's pool. excluded: the places of the taxa that the metrics
// do not include, ascending. False if the batch has no room for them. Any thread.
bool storeCensus(CensusBatch& batch, MockCensus census,
                 const std::vector<std::size_t>& excluded = {});

// The records of a new project, ready to be adopted. names: the pool that the censuses were parsed
// with. Each census is released as its record is made. Any thread.
ProjectRecords recordsOf(std::vector<MockCensus> censuses, std::shared_ptr<NamePool> names);

struct ImportReport {
    enum class Outcome {
        stored,
        refused,  // by the parser
        cancelled,
        noWindow,  // nothing was parsed
    };
    Outcome outcome = Outcome::stored;
    std::size_t censuses = 0;
    std::size_t taxa = 0;  // of all of them together
    LeftOut leftOut;       // of what was stored
    std::string reason;    // why it was refused
    TextPlace place;       // of the problem
};

struct ImportServices {
    // Calls work() on another thread and then done() on this one, unless the document or its window
    // has gone by then; whoever closes them also requests the stop. Both closures are destroyed on
    // this thread.
    std::function<void(std::function<void()> work, std::function<void()> done)> startJob;
    std::stop_source stop;
    // Once, at the end of the import; at once if there is no window. May be null.
    std::function<void(const ImportReport& report)> done;
};

// The imports. The text, which is not empty, is parsed and the records are made in the background,
// while the project's window shows progress and offers to cancel; then all of them are inserted at
// once, as one step of undo, or none. Several may run at once. The console gets what the parser
// says, and the driver's own line if it has refused the text. Main thread.
void importAbundanceList(std::string text, DiversityDocument& document, ImportServices services);
void importOneCensus(std::string text, DiversityDocument& document, ImportServices services);
void importCensusMatrix(std::string text, DiversityDocument& document, ImportServices services);
void importIOSFile(std::string text, DiversityDocument& document, ImportServices services);

// What a table gave: its censuses, or none with the reason, and of each census the places of the
// taxa that the metrics do not include.
struct ReadCensuses {
    ParsedCensuses parsed;
    std::vector<std::vector<std::size_t>> excluded;
};

// Any thread. names: the pool of the project.
using CensusReader = std::function<ReadCensuses(const std::stop_token& stop, NamePool* names)>;

// The import of a table, which is read by the function, in the background, instead of a parser of
// text.
void importTable(CensusReader read, DiversityDocument& document, ImportServices services);

struct ImportDriver {
    FileKind kind;
    void (*import)(std::string text, DiversityDocument& document, ImportServices services);
    const char* name;
    const char* progressText;
    const char* failureLine;  // on the console, after what the parser says
    const char* stepName;
};
const ImportDriver& importDriver(FileKind kind);

// parseFile(), with the lines that an import of that kind writes to the console.
ParsedCensuses parseAndTell(FileKind kind, std::string_view text, const std::stop_token& stop,
                            NamePool* names);

}  // namespace zorvel
