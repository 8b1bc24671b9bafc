#include "model/import.h"

#include <algorithm>
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
    Import(const ImportDriver& driver, CensusReader read, DiversityDocument& document,
           MainView& view, ImportServices services)
        : driver_(driver),
          read_(std::move(read)),
          context_(document.objectContext()),
          names_(context_.names()),
          view_(view),
          services_(std::move(services)) {}

    void start() {
        progress_ = view_.startImportProgress(
            driver_.progressText, [stop = services_.stop]() mutable { stop.request_stop(); });
        services_.startJob([self = shared_from_this()] { self->parse(); },
                           [self = shared_from_this()] { self->parsed(); });
    }

  private:
    using Outcome = ImportReport::Outcome;

    // In the background.
    void parse() {
        const CensusReader read = std::exchange(read_, nullptr);
        ParsedCensuses parsed = read(services_.stop.get_token(), names_.get());
        report_.leftOut = parsed.leftOut;
        report_.place = parsed.place;
        if (!parsed.value) report_.reason = reasonOf(parsed);
        censuses_ = std::move(parsed.value);
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
        for (MockCensus& census : *censuses_) {
            if (services_.stop.stop_requested()) break;
            report_.taxa += census.taxa.size();
            storeCensus(*batch_, std::exchange(census, {}),
                        driver_.kind ? BlankTexts::kept : BlankTexts::absent);
        }
        censuses_.reset();
        if (services_.stop.stop_requested()) batch_.reset();
    }

    void store() {
        if (services_.stop.stop_requested()) return finish(Outcome::cancelled);
        report_.censuses = batch_->censusCount();
        {
            const UndoStep step(context_, driver_.stepName);
            context_.insertCensuses(*batch_);
        }
        finish(Outcome::stored);
    }

    void finish(Outcome outcome) {
        report_.outcome = outcome;
        view_.stopProgress(progress_);
        if (services_.done) services_.done(report_);
    }

    ImportDriver driver_;
    CensusReader read_;
    ObjectContext& context_;
    std::shared_ptr<NamePool> names_;
    MainView& view_;
    ImportServices services_;
    MainView::ProgressId progress_ = 0;
    std::optional<std::vector<MockCensus>> censuses_;
    std::shared_ptr<CensusBatch> batch_;
    ImportReport report_;
};

void startImport(const ImportDriver& driver, CensusReader read, DiversityDocument& document,
                 ImportServices services) {
    if (MainView* view = document.documentMainViewController()) {
        std::make_shared<Import>(driver, std::move(read), document, *view, std::move(services))
            ->start();
        return;
    }
    writeConsoleLine(std::string("WARNING: could not obtain window/view for ") + driver.name);
    ImportReport report;
    report.outcome = ImportReport::Outcome::noWindow;
    if (services.done) services.done(report);
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

bool storeCensus(CensusBatch& batch, MockCensus census, BlankTexts blanks) {
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
        const auto& excluded = census.excluded;
        const bool include = !std::binary_search(excluded.begin(), excluded.end(), i);
        return TaxonValues{stored(std::move(taxon.name)), taxon.abundance, include};
    });
}

ProjectRecords recordsOf(std::vector<MockCensus> censuses, std::shared_ptr<NamePool> names,
                         BlankTexts blanks) {
    CensusBatch batch(1, 1 + recordCount(censuses));
    for (MockCensus& census : censuses) storeCensus(batch, std::exchange(census, {}), blanks);
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

const ImportDriver importAbundanceList = {FileKind::list, "importAbundanceList",
                                          "importing abundance list...", "Import Abundance List",
                                          "WARNING: Abundance list could not be obtained"};
const ImportDriver importOneCensus = {FileKind::census, "importOneCensus", "importing census...",
                                      "Import Census", "WARNING: Census could not be obtained"};
const ImportDriver importCensusMatrix = {
    FileKind::matrix, "importCensusMatrix", "importing census matrix...", "Import Census Matrix",
    "WARNING: Censuses could not be obtained from census matrix"};
const ImportDriver importIOSFile = {FileKind::ios, "importIOSFile",
                                    "importing Zorvel for iOS file...", "Import Phone-App File",
                                    "WARNING: Censuses could not be obtained from iOS file"};

const ImportDriver& importDriver(FileKind kind) {
    // In the order of the enumeration.
    static constexpr const ImportDriver* drivers[] = {&importAbundanceList, &importOneCensus,
                                                      &importCensusMatrix, &importIOSFile};
    return *drivers[static_cast<std::size_t>(kind)];
}

void ImportDriver::operator()(std::string text, DiversityDocument& document,
                              ImportServices services) const {
    auto read = [kind = *kind, text = std::move(text)](const std::stop_token& stop,
                                                       NamePool* names) {
        return parseAndTell(kind, text, stop, names);
    };
    startImport(*this, std::move(read), document, std::move(services));
}

void importTable(CensusReader read, DiversityDocument& document, ImportServices services) {
    static const ImportDriver driver = {{}, "importTable", "importing table...", "Import Table"};
    startImport(driver, std::move(read), document, std::move(services));
}

}  // namespace zorvel
