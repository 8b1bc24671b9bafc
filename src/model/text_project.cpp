#include "model/text_project.h"

#include <utility>
#include <vector>

#include "base/console.h"
#include "base/files.h"
#include "interchange/file_kind.h"
#include "interchange/text_file.h"
#include "model/edits.h"
#include "model/import.h"
#include "model/import_drivers.h"
#include "store/project_file.h"

namespace zorvel {

namespace {

TextProject unreadable(const std::string& reason) {
    writeConsoleLines({"WARNING: " + reason, "WARNING: no string obtained from file"});
    TextProject project;
    project.failure = reason;
    return project;
}

}  // namespace

bool holdsProject(const std::string& path) {
    const Result<OpenFile> file = openRegularFile(path);
    if (!file) return false;
    const Result<std::string> start = readBytes(file.value().descriptor(), 16);
    return start && startsLikeProject(start.value());
}

TextProject readTextProject(const std::string& path, std::optional<FileKind> kind) {
    const Result<std::string> text = readTextFile(path);
    if (!text.ok()) return unreadable(text.problem().message);
    if (text.value().empty()) return unreadable("the file is empty");

    if (!kind) kind = guessFileKind(text.value());
    const auto names = std::make_shared<NamePool>();
    Parsed<std::vector<MockCensus>> parsed = parseFile(*kind, text.value(), {}, names.get());
    TextProject project;
    project.place = parsed.place;
    project.leftOut = parsed.leftOut;
    std::vector<std::string> lines = std::move(parsed.consoleLines);
    if (parsed.value) {
        project.records = recordsOf(std::move(*parsed.value), names);
        if (project.records.censuses.empty()) project.failure = "there is no census in the file";
    } else {
        project.failure = reasonOf(lines, parsed.advice);
        lines.emplace_back(importDriver(*kind).failureLine);
    }
    writeConsoleLines(lines);
    return project;
}

}  // namespace zorvel
