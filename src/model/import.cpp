#include "model/import.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "base/console.h"

namespace zorvel {
namespace {

ParsedCensuses asList(Parsed<MockCensus> parsed) {
    ParsedCensuses list;
    list.consoleLines = std::move(parsed.consoleLines);
    list.place = parsed.place;
    list.advice = std::move(parsed.advice);
    list.leftOut = parsed.leftOut;
    if (parsed.value) list.value.emplace().push_back(std::move(*parsed.value));
    return list;
}

// A console line without the word or the letter that marks it.
std::string_view withoutMark(std::string_view line) {
    for (const std::string_view mark : {"WARNING: ", "ERROR: "}) {
        if (line.substr(0, mark.size()) == mark) return line.substr(mark.size());
    }
    const bool lettered =
        line.size() > 3 && line[0] >= 'A' && line[0] <= 'Z' && line[1] == ':' && line[2] == ' ';
    return lettered ? line.substr(3) : line;
}

ParsedCensuses parseAs(FileKind kind, std::string_view text, const std::stop_token& stop,
                       NamePool* names) {
    switch (kind) {
        case FileKind::list:
            return asList(parseAbundanceList(text, stop, names));
        case FileKind::census:
            return asList(parseCensus(text, stop, names));
        case FileKind::matrix:
            return parseCensusMatrix(text, stop, names);
        case FileKind::ios:
            return parseIOSFile(text, stop, names);
    }
    return {};
}

// True if any abundance was found, even 0.
bool holdsAbundance(const ParsedCensuses& parsed) {
    return parsed.value && (parsed.leftOut.zeroCells + parsed.leftOut.negativeCells > 0 ||
                            std::any_of(parsed.value->begin(), parsed.value->end(),
                                        [](const auto& census) { return !census.taxa.empty(); }));
}

struct ImportTexts {
    const char* name;
    const char* progressText;
    const char* stepName;
    BlankTexts blanks = BlankTexts::kept;
};

// Censuses and taxa together.
std::size_t recordCount(const std::vector<MockCensus>& censuses) {
    std::size_t records = censuses.size();
    for (const MockCensus& census : censuses) records += census.taxa.size();
    return records;
}

// A running import, shared by the closures of its jobs. The main thread and the current job use it
// in turn, except for the stop.
class Import : public std::enable_shared_from_this<Import> {
  public:
    Import(const ImportTexts& texts, CensusReader read, DiversityDocument& document, MainView& view,
           ImportServices services)
        : texts_(texts),
          read_(std::move(read)),
          context_(document.objectContext()),
          names_(context_.names()),
          view_(view),
          services_(std::move(services)) {}

    void start() {
        progress_ = view_.startImportProgress(
            texts_.progressText, [stop = services_.stop]() mutable { stop.request_stop(); });
        services_.startJob([self = shared_from_this()] { self->parse(); },
                           [self = shared_from_this()] { self->parsed(); });
    }

  private:
    using Outcome = ImportReport::Outcome;

    // In the background.
    void parse() {
        const CensusReader read = std::exchange(read_, nullptr);
        auto [parsed, excluded] = read(services_.stop.get_token(), names_.get());
        report_.leftOut = parsed.leftOut;
        report_.place = parsed.place;
        if (!parsed.value) report_.reason = reasonOf(parsed);
        censuses_ = std::move(parsed.value);
        excluded_ = std::move(excluded);
    }

    void parsed() {
        if (services_.stop.stop_requested()) return finish(Outcome::cancelled);
        if (!censuses_) return finish(Outcome::refused);
        batch_ = context_.newBatch(recordCount(*censuses_));
        services_.startJob([self = shared_from_this()] { self->makeRecords(); },
                           [self = shared_from_this()] { self->store(); });
    }

    // In the background. Each census is released as its record is made, and all records if
    // cancelled: to destroy many millions of them would block the main thread.
    void makeRecords() {
        excluded_.resize(censuses_->size());
        for (std::size_t i = 0; i < censuses_->size(); ++i) {
            if (services_.stop.stop_requested()) break;
            report_.taxa += (*censuses_)[i].taxa.size();
            storeCensus(*batch_, std::exchange((*censuses_)[i], {}), excluded_[i], texts_.blanks);
        }
        censuses_.reset();
        if (services_.stop.stop_requested()) batch_.reset();
    }

    void store() {
        if (services_.stop.stop_requested()) return finish(Outcome::cancelled);
        report_.censuses = batch_->censusCount();
        {
            const UndoStep step(context_, texts_.stepName);
            context_.insertCensuses(*batch_);
        }
        finish(Outcome::stored);
    }

    void finish(Outcome outcome) {
        report_.outcome = outcome;
        view_.stopProgress(progress_);
        if (services_.done) services_.done(report_);
    }

    ImportTexts texts_;
    CensusReader read_;
    ObjectContext& context_;
    std::shared_ptr<NamePool> names_;
    MainView& view_;
    ImportServices services_;
    MainView::ProgressId progress_ = 0;
    std::optional<std::vector<MockCensus>> censuses_;
    std::vector<std::vector<std::size_t>> excluded_;
    std::shared_ptr<CensusBatch> batch_;
    ImportReport report_;
};

void startImport(const ImportTexts& texts, CensusReader read, DiversityDocument& document,
                 ImportServices services) {
    if (MainView* view = document.documentMainViewController()) {
        std::make_shared<Import>(texts, std::move(read), document, *view, std::move(services))
            ->start();
        return;
    }
    writeConsoleLine(std::string("WARNING: could not obtain window/view for ") + texts.name);
    ImportReport report;
    report.outcome = ImportReport::Outcome::noWindow;
    if (services.done) services.done(report);
}

void startImport(FileKind kind, std::string text, DiversityDocument& document,
                 ImportServices services) {
    const ImportDriver& driver = importDriver(kind);
    auto read = [kind, text = std::move(text)](const std::stop_token& stop,
                                               NamePool* names) -> ReadCensuses {
        return {parseAndTell(kind, text, stop, names), {}};
    };
    startImport({driver.name, driver.progressText, driver.stepName}, std::move(read), document,
                std::move(services));
}

}  // namespace

ParsedCensuses parseFile(FileKind kind, std::string_view text, const std::stop_token& stop,
                         NamePool* names) {
    auto parsed = parseAs(kind, text, stop, names);
    if (holdsAbundance(parsed) || stop.stop_requested()) return parsed;
    const std::string_view separator = foreignSeparator(text);
    const bool isListed = kind == FileKind::list && separator == "tabs";  // which a list may have
    if (separator.empty() || isListed) return parsed;
    parsed.value.reset();
    parsed.advice = "the cells seem to be separated by " + std::string(separator) +
                    ", but Zorvel reads commas; save the file with commas as separator and try "
                    "again";
    return parsed;
}

std::string reasonOf(const ParsedCensuses& parsed) {
    std::string reasons;
    for (const std::string& line : parsed.consoleLines) {
        if (!reasons.empty()) reasons += "; ";
        reasons += withoutMark(line);
        if (line.ends_with(": ")) reasons += "(empty)";
    }
    if (reasons.empty() && parsed.advice.empty()) {
        return "its contents are in none of the known formats";
    }
    return reasons + (reasons.empty() || parsed.advice.empty() ? "" : ": ") + parsed.advice;
}

const char* whyNoTaxa(const LeftOut& leftOut) {
    return leftOut.zeroCells + leftOut.negativeCells > 0
               ? "every abundance is 0"
               : "there are no abundances, or no commas in front of them";
}

bool storeCensus(CensusBatch& batch, MockCensus census, const std::vector<std::size_t>& excluded,
                 BlankTexts blanks) {
    const auto stored = [blanks](auto text) -> std::optional<SharedText> {
        SharedText shared(std::move(text));
        if (blanks == BlankTexts::absent && shared.view().empty()) return std::nullopt;
        return shared;
    };
    CensusAttributes attributes;
    attributes.name = stored(std::move(census.name));
    attributes.notes = stored(std::move(census.notes));
    attributes.latitude = census.latitude;
    attributes.longitude = census.longitude;
    attributes.timeStamp = census.timeStamp;
    return batch.add(attributes, census.taxa.size(), [&](std::size_t i) {
        MockTaxon& taxon = census.taxa[i];
        const bool include = !std::binary_search(excluded.begin(), excluded.end(), i);
        return TaxonValues{stored(std::move(taxon.name)), taxon.abundance, include};
    });
}

ProjectRecords recordsOf(std::vector<MockCensus> censuses, std::shared_ptr<NamePool> names) {
    CensusBatch batch(1, 1 + recordCount(censuses));
    for (MockCensus& census : censuses) storeCensus(batch, std::exchange(census, {}));
    return {batch.take(), std::move(names)};
}

ProjectRecords recordsOfTable(std::vector<MockCensus> censuses,
                              std::vector<std::vector<std::size_t>> excluded,
                              std::shared_ptr<NamePool> names) {
    CensusBatch batch(1, 1 + recordCount(censuses));
    excluded.resize(censuses.size());
    for (std::size_t i = 0; i < censuses.size(); ++i) {
        storeCensus(batch, std::exchange(censuses[i], {}), excluded[i], BlankTexts::absent);
    }
    return {batch.take(), std::move(names)};
}

ParsedCensuses parseAndTell(FileKind kind, std::string_view text, const std::stop_token& stop,
                            NamePool* names) {
    ParsedCensuses parsed = parseFile(kind, text, stop, names);
    if (stop.stop_requested()) return {};
    std::vector<std::string> lines = parsed.consoleLines;
    if (!parsed.value) lines.emplace_back(importDriver(kind).failureLine);
    writeConsoleLines(lines);
    return parsed;
}

const ImportDriver& importDriver(FileKind kind) {
    static constexpr ImportDriver drivers[] = {
        {FileKind::list, importAbundanceList, "importAbundanceList", "importing abundance list...",
         "WARNING: Abundance list could not be obtained", "Import Abundance List"},
        {FileKind::census, importOneCensus, "importOneCensus", "importing census...",
         "WARNING: Census could not be obtained", "Import Census"},
        {FileKind::matrix, importCensusMatrix, "importCensusMatrix", "importing census matrix...",
         "WARNING: Censuses could not be obtained from census matrix", "Import Census Matrix"},
        {FileKind::ios, importIOSFile, "importIOSFile", "importing Zorvel for iOS file...",
         "WARNING: Censuses could not be obtained from iOS file", "Import Phone-App File"},
    };
    return *std::find_if(std::begin(drivers), std::end(drivers),
                         [kind](const ImportDriver& driver) { return driver.kind == kind; });
}

void importAbundanceList(std::string text, DiversityDocument& document, ImportServices services) {
    startImport(FileKind::list, std::move(text), document, std::move(services));
}

void importOneCensus(std::string text, DiversityDocument& document, ImportServices services) {
    startImport(FileKind::census, std::move(text), document, std::move(services));
}

void importCensusMatrix(std::string text, DiversityDocument& document, ImportServices services) {
    startImport(FileKind::matrix, std::move(text), document, std::move(services));
}

void importIOSFile(std::string text, DiversityDocument& document, ImportServices services) {
    startImport(FileKind::ios, std::move(text), document, std::move(services));
}

void importTable(CensusReader read, DiversityDocument& document, ImportServices services) {
    startImport({"importTable", "importing table...", "Import Table", BlankTexts::absent},
                std::move(read), document, std::move(services));
}

}  // namespace zorvel
