#include "cli/project.h"

#include <algorithm>
#include <utility>

#include "cli/messages.h"
#include "interchange/text_file.h"
#include "model/file_messages.h"
#include "model/import.h"
#include "model/text_project.h"
#include "store/project_file.h"

namespace zorvel::cli {
namespace {

FileResult<ProjectRecords> readRecords(const std::string& file) {
    ProjectFileOptions options;
    options.readOnly = true;
    auto opened = ProjectFile::open(file, options);
    if (!opened) return opened.problem();
    return opened.value()->load();
}

bool readProject(const std::string& file, Project& project) {
    if (project.kind) {
        tellAt(project.file, {}, "is a project, while --kind is for text: leave it out");
        return false;
    }
    FileResult<ProjectRecords> records = readRecords(file);
    if (!records) {
        tellAt(project.file, {}, fileMessage(records.problem()));
        return false;
    }
    project.document->objectContext().adopt(std::move(records).value());
    return true;
}

Result<std::string> readText(const std::string& file) {
    Result<std::string> bytes = readFileBytes(file);
    if (!bytes) return bytes;
    if (startsLikeProject(bytes.value())) {
        return Problem{
            "holds a project, which cannot be read from standard input or a pipe: name its file "
            "instead"};
    }
    return decodeText(std::move(bytes).value());
}

// Such censuses are more often a misreading than what the file is meant to say.
void warnWithoutTaxa(const std::string& file, const std::vector<BlockPointer>& censuses,
                     const LeftOut& leftOut) {
    const bool anyTaxon = std::any_of(censuses.begin(), censuses.end(),
                                      [](const auto& census) { return !census->chunks.empty(); });
    if (anyTaxon || censuses.empty()) return;
    tellAt(file, {},
           std::string("WARNING: none of its censuses has a taxon: ") + whyNoTaxa(leftOut));
}

bool readText(const std::string& file, FileKind (*otherwise)(std::string_view), Project& project) {
    Result<std::string> text = readText(file);
    if (!text) {
        tellAt(project.file, {}, text.problem().message);
        return false;
    }
    if (!project.kind) project.kind = otherwise(text.value());
    const auto names = std::make_shared<NamePool>();
    auto parsed = parseFile(*project.kind, std::string(std::move(text).value()), {}, names.get());
    for (const std::string& line : parsed.consoleLines) tellAt(project.file, parsed.place, line);
    if (!parsed.advice.empty()) tellAt(project.file, parsed.place, parsed.advice);
    if (!parsed.value && parsed.consoleLines.empty() && parsed.advice.empty()) {
        tellAt(project.file, parsed.place, "cannot be read as this kind of file");
    }
    if (!parsed.value) return false;
    project.leftOut = parsed.leftOut;
    ProjectRecords records = recordsOf(std::move(*parsed.value), names);
    warnWithoutTaxa(project.file, records.censuses, parsed.leftOut);
    project.document->objectContext().adopt(std::move(records));
    return true;
}

}  // namespace

std::optional<Project> loadProject(const std::string& file, std::optional<FileKind> kind,
                                   FileKind (*otherwise)(std::string_view text)) {
    Project project;
    project.file = shownFile(file);
    project.kind = kind;
    project.document = std::make_unique<DiversityDocument>();
    const bool read = file != "-" && holdsProject(file) ? readProject(file, project)
                                                        : readText(file, otherwise, project);
    if (!read) return std::nullopt;
    project.censuses = project.document->objectContext().censuses();
    project.names = censusNameList(project.censuses);
    return project;
}

}  // namespace zorvel::cli
