// zorvel-cli import: the censuses of files, all of them or none, into a project.
#include <fcntl.h>
#include <sys/file.h>

#include <cstdint>

#include "base/numbers.h"
#include "cli/command.h"
#include "cli/messages.h"
#include "interchange/file_kind.h"
#include "interchange/open_file.h"
#include "model/file_messages.h"
#include "store/file_paths.h"
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
           (source.kind ? kindName(*source.kind) : "project");
}

// What the rules of the format left out, where a person would want to know; zeros are no loss.
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
}

bool isSameFile(const std::string& file, const std::string& project) {
    const std::optional<FileIdentity> identity = fileIdentity(file);
    return file != "-" && identity && identity == fileIdentity(project);
}

std::optional<Project> loadSource(const std::string& file, const Call& call) {
    if (isSameFile(file, call.into)) {
        tellAt(file, {}, "is the very file to import into");
        return std::nullopt;
    }
    std::optional<Project> source = loadProject(file, call.kind, guessFileKind);
    if (source && source->censuses.empty()) {
        tellAt(source->file, {}, "holds no census");
        return std::nullopt;
    }
    return source;
}

// Fewer than the files where some cannot be used: each of them is told.
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

std::optional<FileProblem> makeProject(const std::string& path,
                                       const std::vector<Project>& sources) {
    ObjectContext context;
    addCensuses(context, sources);
    const auto made = ProjectFile::create(path, context);
    return made ? std::nullopt : std::optional(made.problem());
}

std::optional<FileProblem> addToProject(const std::string& path,
                                        const std::vector<Project>& sources) {
    auto opened = ProjectFile::open(path);
    if (!opened) return opened.problem();
    ProjectFile& file = *opened.value();
    if (auto reason = file.whyNotWritable()) return reason;
    FileResult<ProjectRecords> records = file.load();
    if (!records) return records.problem();
    ObjectContext context;
    context.adopt(std::move(records).value());
    addCensuses(context, sources);
    const auto state = context.frozenCopy();
    // After a fault of the disk the second attempt finds out what came of the first.
    return file.write(state) ? file.write(state) : std::nullopt;
}

// Of two calls that find no project at the same moment, the second adds to what the first makes.
class FolderLock {
  public:
    explicit FolderLock(const std::string& project)
        : folder_(
              open(folderOf(resolvedPath(project)).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
        if (folder_) flock(folder_.descriptor(), LOCK_EX);
    }

  private:
    OpenFile folder_;
};

// Whether there was no project yet.
FileResult<bool> store(const std::string& path, const std::vector<Project>& sources) {
    std::optional<FolderLock> lock;
    if (!fileIdentity(path)) lock.emplace(path);
    const bool isNew = !fileIdentity(path);
    if (const auto problem = (isNew ? makeProject : addToProject)(path, sources)) return *problem;
    return isNew;
}

// Nothing after the write may fail: a caller repeats an import that failed.
bool import(const Call& call) {
    const std::vector<Project> sources = loadSources(call);
    if (sources.size() < call.files.size()) return false;
    const FileResult<bool> isNew = store(call.into, sources);
    if (!isNew) {
        tellAt(call.into, {}, fileMessage(isNew.problem()));
        return false;
    }
    if (isNew.value()) tellAt(call.into, {}, "made as a new project");
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
