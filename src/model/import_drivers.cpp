#include "model/import_drivers.h"

#include <memory>
#include <optional>
#include <utility>

#include "base/console.h"
#include "model/edits.h"
#include "model/import.h"

namespace zorvel {

namespace {

constexpr ImportDriver drivers[] = {
    {FileKind::list, "importAbundanceList", "importing abundance list...",
     "WARNING: Abundance list could not be obtained", "Import Abundance List"},
    {FileKind::census, "importOneCensus", "importing census...",
     "WARNING: Census could not be obtained", "Import Census"},
    {FileKind::matrix, "importCensusMatrix", "importing census matrix...",
     "WARNING: Censuses could not be obtained from census matrix", "Import Census Matrix"},
    {FileKind::ios, "importIOSFile", "importing Zorvel for iOS file...",
     "WARNING: Censuses could not be obtained from iOS file", "Import Phone-App File"},
};

// One import under way. The closures of its jobs share it; the main thread and the job of the
// moment look at it in turn, but for the stop.
class Import : public std::enable_shared_from_this<Import> {
  public:
    Import(const ImportDriver& driver, std::string text, DiversityDocument& document,
           MainView& view, ImportServices services)
        : driver_(driver),
          text_(std::move(text)),
          document_(document),
          view_(view),
          services_(std::move(services)) {}

    void start() {
        progress_ = view_.startProgress(driver_.progressText,
                                        [stop = services_.stop]() mutable { stop.request_stop(); });
        services_.jobs.start([self = shared_from_this()] { self->parse(); },
                             [self = shared_from_this()] { self->parsed(); });
    }

  private:
    // In the background.
    void parse() {
        auto result = parseFile(driver_.kind, std::exchange(text_, {}), services_.stop.get_token(),
                                names_.get());
        if (services_.stop.stop_requested()) return;
        report_.consoleLines = result.consoleLines;
        report_.place = result.place;
        report_.advice = result.advice;
        report_.leftOut = result.leftOut;
        if (!result.value) result.consoleLines.emplace_back(driver_.failureLine);
        writeConsoleLines(result.consoleLines);
        censuses_ = std::move(result.value);
    }

    void parsed() {
        if (services_.stop.stop_requested()) return finish(ImportReport::Outcome::cancelled);
        if (!censuses_) return finish(ImportReport::Outcome::refused);
        batch_ = newBatch(document_.objectContext(), *censuses_);
        services_.jobs.start([self = shared_from_this()] { self->makeRecords(); },
                             [self = shared_from_this()] { self->store(); });
    }

    // In the background. Each census is let go of as its record is made, and all records where they
    // are not wanted: taking many millions of them down would keep the main thread.
    void makeRecords() {
        for (MockCensus& census : *censuses_) {
            if (services_.stop.stop_requested()) break;
            report_.taxa += census.taxa.size();
            storeCensus(*batch_, std::exchange(census, {}));
        }
        censuses_.reset();
        if (services_.stop.stop_requested()) batch_.reset();
    }

    void store() {
        if (services_.stop.stop_requested()) return finish(ImportReport::Outcome::cancelled);
        report_.censuses = batch_->censusCount();
        importBatch(document_.objectContext(), *batch_, driver_.stepName);
        finish(ImportReport::Outcome::stored);
    }

    void finish(ImportReport::Outcome outcome) {
        report_.outcome = outcome;
        view_.stopProgress(progress_);
        if (services_.done) services_.done(report_);
    }

    const ImportDriver& driver_;
    std::string text_;
    DiversityDocument& document_;
    std::shared_ptr<NamePool> names_ = document_.objectContext().names();
    MainView& view_;
    ImportServices services_;
    MainView::ProgressId progress_ = 0;
    std::optional<std::vector<MockCensus>> censuses_;
    std::shared_ptr<CensusBatch> batch_;
    ImportReport report_;
};

}  // namespace

const ImportDriver& importDriver(FileKind kind) {
    for (const ImportDriver& driver : drivers) {
        if (driver.kind == kind) return driver;
    }
    return drivers[0];
}

void importText(const ImportDriver& driver, std::string text, DiversityDocument& document,
                ImportServices services) {
    MainView* view = document.documentMainViewController();
    if (view == nullptr) {
        writeConsoleLine(std::string("WARNING: could not obtain window/view for ") + driver.name);
        ImportReport report;
        report.outcome = ImportReport::Outcome::noWindow;
        if (services.done) services.done(report);
        return;
    }
    std::make_shared<Import>(driver, std::move(text), document, *view, std::move(services))
        ->start();
}

void importAbundanceList(std::string text, DiversityDocument& document, ImportServices services) {
    importText(importDriver(FileKind::list), std::move(text), document, std::move(services));
}

void importOneCensus(std::string text, DiversityDocument& document, ImportServices services) {
    importText(importDriver(FileKind::census), std::move(text), document, std::move(services));
}

void importCensusMatrix(std::string text, DiversityDocument& document, ImportServices services) {
    importText(importDriver(FileKind::matrix), std::move(text), document, std::move(services));
}

void importIOSFile(std::string text, DiversityDocument& document, ImportServices services) {
    importText(importDriver(FileKind::ios), std::move(text), document, std::move(services));
}

}  // namespace zorvel
