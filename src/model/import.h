// Converts the text of a file to the records of a project, for opening, for zorvel-cli and for the
// imports of the desktop.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "interchange/file_kind.h"
#include "interchange/parsers.h"
#include "model/diversity_document.h"
#include "store/object_context.h"

namespace zorvel {

// Calls the parser of the kind; a list and a single census give one record. If the parser finds no
// abundance because semicolons or tabs separate the cells, the text is refused and the advice says
// so. Any thread.
ParsedCensuses parseFile(FileKind kind, std::string_view text, const std::stop_token& stop = {},
                         NamePool* names = nullptr);

// Why a text was refused, as a part of a sentence: the console lines without their marks, with
// "(empty)" for an empty cell, and the parser's advice.
std::string reasonOf(const ParsedCensuses& parsed);

// Why no census of a text has a taxon, as a part of a sentence.
const char* whyNoTaxa(const LeftOut& leftOut);

// What becomes of empty names and notes.
enum class BlankTexts {
    kept,
    absent,  // as for tables: what has no name is exported with a blank cell, and comes back
};

// Adds the records of one census with all its taxa; the names of the taxa should be those of the
// context's pool. False if the batch has no room for them. Any thread.
bool storeCensus(CensusBatch& batch, MockCensus census, BlankTexts blanks = BlankTexts::kept);

// The records of a new project, ready to be adopted. names: the pool that the censuses were parsed
// with. Each census is released as its record is made. Any thread.
ProjectRecords recordsOf(std::vector<MockCensus> censuses, std::shared_ptr<NamePool> names,
                         BlankTexts blanks = BlankTexts::kept);

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
    LeftOut leftOut;
    std::string reason;  // why it was refused
    TextPlace place;     // of the problem
};

struct ImportServices {
    // Calls work() on another thread and then done() on this one, unless the document or its window
    // is closed by then, which also requests the stop. Both closures are destroyed on this thread.
    std::function<void(std::function<void()> work, std::function<void()> done)> startJob;
    std::stop_source stop;
    // Called at the end of the import, or at once if there is no window. May be null.
    std::function<void(const ImportReport& report)> done;
};

// An import of one kind of file, and its texts. The text of the file, which is not empty, is parsed
// in the background, while the project's window shows progress and offers to cancel. All records
// are then inserted as one step of undo, or none. Several imports may run at once. The console gets
// the lines of the parser and, if the text was refused, the failureLine. Main thread.
struct ImportDriver {
    std::optional<FileKind> kind;  // absent: a table
    const char* name;
    const char* progressText;
    const char* stepName;
    const char* failureLine = nullptr;  // null for tables, which write nothing to the console

    void operator()(std::string text, DiversityDocument& document, ImportServices services) const;
};
extern const ImportDriver importAbundanceList;
extern const ImportDriver importOneCensus;
extern const ImportDriver importCensusMatrix;
extern const ImportDriver importIOSFile;
const ImportDriver& importDriver(FileKind kind);

// Any thread. names: the pool of the project.
using CensusReader = std::function<ParsedCensuses(const std::stop_token& stop, NamePool* names)>;

// The import of a table, which is read by the function, in the background, instead of a parser of
// text.
void importTable(CensusReader read, DiversityDocument& document, ImportServices services);

// parseFile(), which also writes the console lines of an import of that kind.
ParsedCensuses parseAndTell(FileKind kind, std::string_view text, const std::stop_token& stop,
                            NamePool* names);

}  // namespace zorvel
