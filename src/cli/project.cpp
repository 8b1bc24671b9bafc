#include "cli/project.h"

#include <utility>

#include "cli/messages.h"
#include "interchange/file_kind.h"
#include "interchange/text_file.h"
#include "model/import.h"

namespace zorvel::cli {
namespace {

std::optional<std::string> loadText(const Call& call, const std::string& shown) {
    Result<std::string> bytes = readFileBytes(call.file);
    if (!bytes) {
        tellAt(shown, {}, bytes.problem().message);
        return std::nullopt;
    }
    if (looksLikeProjectFile(bytes.value())) {
        tellAt(shown, {}, "is a project file, which this version cannot read yet");
        return std::nullopt;
    }
    Result<std::string> text = decodeText(std::move(bytes).value());
    if (!text) {
        tellAt(shown, {}, text.problem().message);
        return std::nullopt;
    }
    return std::move(text).value();
}

std::optional<std::vector<MockCensus>> loadRecords(const Call& call, const std::string& shown) {
    const std::optional<std::string> text = loadText(call, shown);
    if (!text) return std::nullopt;
    Parsed<std::vector<MockCensus>> parsed = parseFile(call.kind.value_or(FileKind::matrix), *text);
    for (const std::string& line : parsed.consoleLines) tellAt(shown, parsed.place, line);
    if (!parsed.value && parsed.consoleLines.empty()) {
        tellAt(shown, parsed.place, "cannot be read as this kind of file");
    }
    return std::move(parsed.value);
}

}  // namespace

std::optional<Project> loadProject(const Call& call) {
    Project project;
    project.file = shownFile(call.file);
    std::optional<std::vector<MockCensus>> records = loadRecords(call, project.file);
    if (!records) return std::nullopt;
    project.document = std::make_unique<DiversityDocument>();
    storeCensuses(*project.document, *records);
    records.reset();
    project.censuses = project.document->fetchCensuses().value_or(std::vector<Census>());
    project.names = censusNameList(project.censuses);
    return project;
}

}  // namespace zorvel::cli
