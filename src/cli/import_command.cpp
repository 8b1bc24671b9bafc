// zorvel-cli import: the censuses of files, all of them or none, into a project.
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <optional>
#include <thread>

#include "base/numbers.h"
#include "cli/call.h"
#include "model/file_messages.h"
#include "store/project_file.h"

namespace zorvel::cli {
namespace {

std::string counted(std::size_t count, const char* one, const char* several) {
    return integerText(static_cast<std::int64_t>(count)) + " " + (count == 1 ? one : several);
}

std::string summaryOf(const Project& source) {
    std::size_t taxa = 0;
    for (const Census& census : source.censuses) taxa += census.taxonCount();
    return "stored " + counted(source.censuses.size(), "census", "censuses") + " with " +
           counted(taxa, "taxon", "taxa") + ", read as " +
           (!source.tableNotices.empty() ? "table"
            : source.kind                ? kindName(*source.kind)
                                         : "project");
}

// What the rules of the format left out; zeros are no loss.
std::string leftOutText(const LeftOut& leftOut) {
    std::string text;
    const auto add = [&text](std::size_t count, const char* one, const char* several) {
        if (count != 0) text += (text.empty() ? "" : "; ") + counted(count, one, several);
    };
    add(leftOut.unfinishedLines, "unfinished last line left out", "unfinished lines left out");
    add(leftOut.markedRows, "row called imported census left out",
        "rows called imported census left out");
    add(leftOut.shortRows, "row with fewer cells than names filled up with zeros",
        "rows with fewer cells than names filled up with zeros");
    add(leftOut.negativeCells, "negative abundance taken as 0", "negative abundances taken as 0");
    return text;
}

void tellOutcome(const Project& source) {
    tellAt(source.file, {}, summaryOf(source));
    const std::string leftOut = leftOutText(source.leftOut);
    if (!leftOut.empty()) tellAt(source.file, {}, leftOut);
    for (const std::string& notice : source.tableNotices) tellAt(source.file, {}, notice);
}

bool isSameFile(const std::string& file, const std::string& project) {
    const std::optional<FileIdentity> identity = fileIdentity(file);
    return file != "-" && identity && identity == fileIdentity(project);
}

std::optional<Project> loadSource(const std::string& file, const Call& call) {
    if (isSameFile(file, call.into)) {
        tellAt(file, {}, "is the project to import into");
        return std::nullopt;
    }
    std::optional<Project> source = loadProject(file, call);
    if (source && source->censuses.empty()) {
        tellAt(source->file, {}, "holds no census");
        return std::nullopt;
    }
    return source;
}

// Reports each file that cannot be used and leaves it out.
std::vector<Project> loadSources(const Call& call) {
    std::vector<Project> sources;
    for (const std::string& file : call.files) {
        if (std::optional<Project> source = loadSource(file, call)) {
            sources.push_back(std::move(*source));
        }
    }
    return sources;
}

void addCensuses(ObjectContext& context, const std::vector<Project>& sources) {
    std::vector<TaxonValues> taxa;
    for (const Project& source : sources) {
        for (const Census& census : source.censuses) {
            const auto block = census.block();
            taxa.clear();
            block->forEachTaxon([&taxa](const TaxonRecord& each) { taxa.push_back(each.values); });
            context.insertCensus(block->attributes, taxa);
        }
    }
}

// The problem of writing, if any, and how many censuses the file then holds if everything was
// written nevertheless; 0 if no writing began.
struct Written {
    std::optional<FileProblem> problem;
    std::size_t censuses = 0;
};

// The records of a text or table alone are those of the new project, and need no copy.
bool isWholeProject(const std::vector<Project>& sources) {
    return sources.size() == 1 && (sources[0].kind || !sources[0].tableNotices.empty());
}

Written makeProject(const std::string& path, const std::vector<Project>& sources) {
    ObjectContext copy;
    const bool isWhole = isWholeProject(sources);
    if (!isWhole) addCensuses(copy, sources);
    const ObjectContext& context = isWhole ? sources[0].document->objectContext() : copy;
    ProjectFileOptions options;
    options.keepExisting = true;
    const auto made = ProjectFile::create(path, context, options);
    return {made ? std::nullopt : std::optional(made.problem()), context.censusCount()};
}

Written addToProject(const std::string& path, const std::vector<Project>& sources) {
    auto opened = ProjectFile::open(path);
    if (!opened) return {opened.problem()};
    ProjectFile& file = *opened.value();
    if (auto reason = file.whyNotWritable()) return {reason};
    FileResult<ProjectRecords> records = file.load();
    if (!records) return {records.problem()};
    ObjectContext context;
    context.adopt(std::move(records).value());
    addCensuses(context, sources);
    const auto state = context.frozenCopy();
    // After a disk error, a second write finds out whether the first succeeded.
    return {file.write(state) ? file.write(state) : std::nullopt, context.censusCount()};
}

bool isHeld(const std::optional<FileProblem>& problem) {
    return problem && problem->trouble == FileTrouble::heldElsewhere;
}

bool holdsCensuses(const std::string& path, std::size_t count) {
    const FileResult<ProjectRecords> records = readRecords(path);
    return records && records.value().censuses.size() == count;
}

// Stores the censuses and reports on the project. A disk may report an error after everything was
// written. The contents of the file then decide, since the user repeats an import that failed.
bool store(const std::string& path, const std::vector<Project>& sources) {
    bool isNew = !fileIdentity(path);
    Written written;
    if (isNew) written = makeProject(path, sources);
    // If two calls find no project at the same moment, one creates it; the other waits and adds to
    // it.
    const bool cameMeanwhile = written.problem && written.problem->systemError == EEXIST;
    if (cameMeanwhile) isNew = false;
    if (!isNew) written = addToProject(path, sources);
    for (int tries = 0; cameMeanwhile && isHeld(written.problem) && tries < 100; ++tries) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        written = addToProject(path, sources);
    }
    const auto& problem = written.problem;
    if (problem && !(written.censuses > 0 && holdsCensuses(path, written.censuses))) {
        tellAt(path, {}, fileMessage(*problem));
        return false;
    }
    if (isNew) tellAt(path, {}, "new project created");
    if (problem) {
        tellAt(path, {},
               "WARNING: all is stored, but the disk then reported an error, so that a power "
               "failure may undo it (" +
                   problem->detail + "): check the disk");
    }
    return true;
}

bool preview(const Call& call) {
    Output output({});
    const bool usable = previewTables(call, output);
    const std::optional<Problem> problem = output.finish();
    if (problem && problem->systemError != EPIPE) tell(problem->message);
    return usable && !problem;
}

// Nothing after the write may fail: a user repeats an import that failed.
bool import(const Call& call) {
    if (call.table.preview) return preview(call);
    const std::vector<Project> sources = loadSources(call);
    if (sources.size() < call.files.size()) return false;
    if (!store(call.into, sources)) return false;
    for (const Project& source : sources) tellOutcome(source);
    return true;
}

}  // namespace

const Command importCommand = {
    .name = "import",
    .description = "Store the censuses of files in a project",
    .example = "import north.csv south.csv --into survey.zorvel",
    .import = import,
};

}  // namespace zorvel::cli
