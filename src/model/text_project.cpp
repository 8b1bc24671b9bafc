#include "model/text_project.h"

#include <string_view>
#include <utility>
#include <vector>

#include "base/console.h"
#include "interchange/file_kind.h"
#include "interchange/text_file.h"
#include "model/edits.h"
#include "model/import.h"

namespace zorvel {

namespace {

const char* importFailureLine(FileKind kind) {
    switch (kind) {
        case FileKind::list:
            return "WARNING: Abundance list could not be obtained";
        case FileKind::census:
            return "WARNING: Census could not be obtained";
        case FileKind::matrix:
            return "WARNING: Censuses could not be obtained from census matrix";
        case FileKind::ios:
            return "WARNING: Censuses could not be obtained from iOS file";
    }
    return "";
}

TextProject unreadable(const std::string& reason) {
    writeConsoleLines({"WARNING: " + reason, "WARNING: no string obtained from file"});
    TextProject project;
    project.failure = reason;
    return project;
}

// A console line without the word or the letter that marks it.
std::string_view reasonOf(std::string_view line) {
    for (const std::string_view mark : {"WARNING: ", "ERROR: "}) {
        if (line.substr(0, mark.size()) == mark) return line.substr(mark.size());
    }
    const bool lettered =
        line.size() > 3 && line[0] >= 'A' && line[0] <= 'Z' && line[1] == ':' && line[2] == ' ';
    return lettered ? line.substr(3) : line;
}

std::string joinedReasons(const std::vector<std::string>& lines) {
    std::string reasons;
    for (const std::string& line : lines) {
        if (!reasons.empty()) reasons += "; ";
        reasons += reasonOf(line);
    }
    return reasons.empty() ? "its contents are in none of the known formats" : reasons;
}

ProjectRecords recordsOf(const std::vector<MockCensus>& censuses) {
    ObjectContext context;
    importCensuses(context, censuses);
    return context.records();
}

}  // namespace

TextProject readTextProject(const std::string& path) {
    const Result<std::string> text = readTextFile(path);
    if (!text.ok()) return unreadable(text.problem().message);
    if (text.value().empty()) return unreadable("the file is empty");

    const FileKind kind = guessFileKind(text.value());
    Parsed<std::vector<MockCensus>> parsed = parseFile(kind, text.value());
    TextProject project;
    project.place = parsed.place;
    std::vector<std::string> lines = std::move(parsed.consoleLines);
    if (parsed.value) {
        project.records = recordsOf(*parsed.value);
        if (parsed.value->empty()) project.failure = "there is no census in the file";
    } else {
        project.failure = joinedReasons(lines);
        lines.emplace_back(importFailureLine(kind));
    }
    writeConsoleLines(lines);
    return project;
}

}  // namespace zorvel
