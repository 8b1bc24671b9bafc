#include "cli/project.h"

#include <algorithm>
#include <utility>

#include "base/numbers.h"
#include "base/text.h"
#include "cli/call.h"
#include "cli/output.h"
#include "interchange/text_file.h"
#include "model/file_messages.h"
#include "model/import.h"
#include "store/project_file.h"
#include "tables/texts.h"

namespace zorvel::cli {
namespace {

bool readProject(const std::string& file, const Call& call, Project& project) {
    if (project.kind || call.isTable) {
        tellAt(project.file, {},
               call.isTable && call.command->import
                   ? "is a project, while --table is for text: leave it out"
                   : "is a project, while --kind is for text: leave it out");
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

// Usually the file was read as the wrong kind.
bool warnsWithoutTaxa(const std::string& file, const std::vector<BlockPointer>& censuses,
                      const LeftOut& leftOut) {
    const bool anyTaxon = std::any_of(censuses.begin(), censuses.end(),
                                      [](const auto& census) { return !census->chunks.empty(); });
    if (anyTaxon || censuses.empty()) return false;
    tellAt(file, {},
           std::string("WARNING: none of its censuses has a taxon: ") + whyNoTaxa(leftOut));
    return true;
}

// That it may be a table: text, and the option that reads it as one.
void tellOfTables(const char* text, const Call& call, const Project& project) {
    tellAt(project.file, {},
           std::string(text) + (call.command->import ? "--table" : "--kind table"));
}

constexpr const char* tryTables = "if it is a table of another layout, try ";

bool readText(InputFile input, const Call& call, Project& project) {
    if (looksLikeWorkbook(input.start())) {
        tellOfTables("seems to be a workbook of a spreadsheet program: give ", call, project);
        return false;
    }
    Result<std::string> text = std::move(input).text();
    if (!text) {
        tellAt(project.file, {}, text.problem().message);
        return false;
    }
    if (!project.kind) {
        project.kind = call.command->import ? guessFileKind(text.value()) : FileKind::matrix;
    }
    const auto names = std::make_shared<NamePool>();
    ParsedCensuses parsed =
        parseFile(*project.kind, std::string(std::move(text).value()), {}, names.get());
    for (const std::string& line : parsed.consoleLines) tellAt(project.file, parsed.place, line);
    if (!parsed.advice.empty()) {
        tellAt(project.file, parsed.place, parsed.advice);
        tellOfTables(tryTables, call, project);
    }
    if (!parsed.value && parsed.consoleLines.empty() && parsed.advice.empty()) {
        tellAt(project.file, parsed.place, "cannot be read as this kind of file");
    }
    if (!parsed.value) return false;
    project.leftOut = parsed.leftOut;
    ProjectRecords records = recordsOf(std::move(*parsed.value), names);
    if (warnsWithoutTaxa(project.file, records.censuses, parsed.leftOut)) {
        tellOfTables(tryTables, call, project);
    }
    project.document->objectContext().adopt(std::move(records));
    return true;
}

bool readTable(InputFile input, const TableOptions& options, Project& project) {
    const auto names = std::make_shared<NamePool>();
    std::optional<ReadTable> table = readTableFile(project.file, std::move(input), options, *names);
    if (!table || !isUsable(*table, options)) return false;
    const TableReading& reading = table->guess.reading;
    project.tableNotices = noticeTexts(table->records.notices, reading);
    project.tableNotices.insert(project.tableNotices.begin(), understoodText(reading));
    if (!table->sheetNotice.empty()) project.tableNotices.push_back(table->sheetNotice);
    project.document->objectContext().adopt(
        recordsOf(std::move(table->records.censuses), names, BlankTexts::absent));
    return true;
}

// Opens the file once, except a project, which the store opens again by its path.
bool read(const std::string& file, const Call& call, Project& project) {
    std::optional<Result<InputFile>> input = InputFile::openAny(file);
    if (!*input) {
        tellAt(project.file, {}, input->problem().message);
        return false;
    }
    constexpr std::size_t startSize = 16;
    input->value().readStart(startSize);
    if (!startsLikeProject(input->value().start())) {
        if (call.isTable) return readTable(std::move(*input).value(), call.table, project);
        return readText(std::move(*input).value(), call, project);
    }
    if (file == "-" || !S_ISREG(input->value().status().st_mode)) {
        tellAt(project.file, {},
               "holds a project, which cannot be read from standard input or a pipe: name its file "
               "instead");
        return false;
    }
    input.reset();
    return readProject(file, call, project);
}

}  // namespace

FileResult<ProjectRecords> readRecords(const std::string& file) {
    ProjectFileOptions options;
    options.readOnly = true;
    auto opened = ProjectFile::open(file, options);
    if (!opened) return opened.problem();
    return opened.value()->load();
}

std::optional<Project> loadProject(const std::string& file, const Call& call) {
    Project project;
    project.file = shownFile(file);
    project.kind = call.kind;
    project.document = std::make_unique<DiversityDocument>();
    if (!read(file, call, project)) return std::nullopt;
    project.censuses = project.document->fetchCensuses();
    project.names = censusNameList(project.censuses);
    return project;
}

namespace {

constexpr std::size_t mostShown = 5;
constexpr std::size_t longestCompared = 100;  // bytes; edit distance takes quadratic time

std::string lowered(std::string_view name) {
    std::string text = canonicalForm(name);
    for (char& byte : text) {
        if (byte >= 'A' && byte <= 'Z') byte = static_cast<char>(byte - 'A' + 'a');
    }
    return text;
}

// Insertions, deletions and replacements of bytes that lead from one to the other (Levenshtein
// 1966).
std::size_t editDistance(const std::string& from, const std::string& to) {
    std::vector<std::size_t> row(to.size() + 1);
    for (std::size_t j = 0; j <= to.size(); ++j) row[j] = j;
    for (std::size_t i = 1; i <= from.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i);
        for (std::size_t j = 1; j <= to.size(); ++j) {
            const std::size_t replaced = diagonal + (from[i - 1] == to[j - 1] ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row[to.size()];
}

// A name that contains the other one is as close as one with a letter changed. The empty name,
// which every name contains, does not count.
std::size_t distanceBetween(const std::string& name, const std::string& target) {
    const bool holds =
        !name.empty() && !target.empty() &&
        (name.find(target) != std::string::npos || target.find(name) != std::string::npos);
    return holds ? 1 : editDistance(name, target);
}

// The closest first; among equals in the file's order.
NameList closeNames(const NameList& names, const std::string& wanted) {
    const std::string target = lowered(wanted);
    const std::size_t farthest = std::max<std::size_t>(1, target.size() / 3);
    std::vector<std::pair<std::size_t, std::size_t>> found;
    for (std::size_t i = 0; i < names.size() && target.size() <= longestCompared; ++i) {
        if (names[i].size() > longestCompared) continue;
        const std::size_t distance = distanceBetween(lowered(names[i]), target);
        if (distance <= farthest) found.emplace_back(distance, i);
    }
    std::sort(found.begin(), found.end());
    NameList close;
    for (std::size_t i = 0; i < std::min(found.size(), mostShown); ++i) {
        close.push_back(names[found[i].second]);
    }
    return close;
}

std::string quotedList(const NameList& names, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += (i == 0 ? "'" : ", '") + names[i] + "'";
    }
    return text;
}

}  // namespace

Result<std::size_t> chooseCensus(const NameList& names, const std::optional<std::string>& wanted) {
    if (!wanted) return std::size_t{0};
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (canonicallyEqual(names[i], *wanted)) return i;
    }
    std::string message = "no census is called '" + *wanted + "'; ";
    const NameList close = closeNames(names, *wanted);
    if (!close.empty()) {
        return Problem{message + "close to it: " + quotedList(close, close.size())};
    }
    const std::size_t shown = std::min(names.size(), mostShown);
    message += "the censuses are " + quotedList(names, shown);
    if (shown < names.size()) {
        message += " and " + integerText(static_cast<std::int64_t>(names.size() - shown)) + " more";
    }
    return Problem{message};
}

}  // namespace zorvel::cli
