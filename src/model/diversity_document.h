// A project: its object context and its window, and the numeric inputs that the analyses get from
// its records. Nothing is cached. Functions of a context or census also take a frozen copy, on any
// thread.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "interchange/parsers.h"
#include "metrics/counts.h"
#include "metrics/rarefaction.h"
#include "model/taxon_formatter.h"
#include "store/object_context.h"

namespace zorvel {

using NameList = std::vector<std::string>;

// The counts of a project, row i for censusNames[i], column j for taxonNames[j]: one row per census
// and one column per distinct taxon name, ascending (see base/text.h for equality and order); of
// equal spellings the first. One "unnamed" stands for all taxa without a name. Include flags do not
// matter. Of two taxa of one name in one row the later one counts. Censuses of equal name share the
// row of the first of them, and the others' rows have no counts. Taxa without a name, or of a
// census without one, are in no row.
struct SparseCountsResult {
    SparseCounts counts;
    // The sum of the abundances of each taxon name; a sum beyond 64 bits saturates. Taxa without a
    // name are not counted: "unnamed" stays 0 unless a taxon bears that very name.
    CountsVector pooled;
    NameList taxonNames;
    NameList censusNames;
    std::size_t mergedCensuses = 0;  // whose taxa are in the row of an earlier one of their name
    std::size_t replacedTaxa = 0;    // whose cell a later taxon of their name and row took
    std::size_t taxaInNoRow = 0;
};

// Replaces a missing name in both name lists.
inline constexpr const char* unnamedName = "unnamed";

// The abundances of the census's taxa: of those whose include flag is set, or of all.
CountsVector includedCountsVector(const Census& census);
CountsVector fullCountsVector(const Census& census);

// One name per census, in the order given.
NameList censusNameList(const std::vector<Census>& censuses);

// Of all censuses and taxa of the context.
SparseCountsResult buildSparseCounts(const ObjectContext& context);

// The window of a project, as the project sees it; the desktop's main view implements it. Main
// thread.
class MainView {
  public:
    MainView() = default;
    MainView(const MainView&) = delete;
    MainView& operator=(const MainView&) = delete;
    virtual ~MainView() = default;

    // Of the cells with species names.
    virtual TaxonFormatter& taxonFormatter() = 0;

    virtual void addCensusRow() = 0;
    virtual void deleteCensusRows() = 0;
    virtual void addSpeciesRow() = 0;
    virtual void deleteSpeciesRows() = 0;

    // Shows the text while an import runs in the background; cancel() may be null. stopProgress()
    // takes the number that the start returned.
    using ProgressId = int;
    virtual ProgressId startImportProgress(const std::string& text,
                                           std::function<void()> cancel) = 0;
    virtual void stopProgress(ProgressId progress) = 0;
};

class DiversityDocument {
  public:
    // Calls action once, on the same thread, when what runs now has returned: the end of a turn.
    using AtTurnEnd = std::function<void(std::function<void()> action)>;

    // Changes are announced at the end of each turn; without turns the caller calls
    // announceChanges().
    explicit DiversityDocument(AtTurnEnd atTurnEnd = {});
    ~DiversityDocument();
    DiversityDocument(const DiversityDocument&) = delete;
    DiversityDocument& operator=(const DiversityDocument&) = delete;

    // The names of records and attributes in text, such as JSON.
    static constexpr const char* kTaxonEntity = "Zorvel";
    static constexpr const char* kTaxonAbundanceKey = "abundance";
    static constexpr const char* kTaxonIncludeKey = "include";
    static constexpr const char* kTaxonNameKey = "name";
    static constexpr const char* kTaxonCensusKey = "census";
    static constexpr const char* kCensusEntity = "Census";
    static constexpr const char* kCensusNameKey = "name";
    static constexpr const char* kCensusLatitudeKey = "latitude";
    static constexpr const char* kCensusLongitudeKey = "longitude";
    static constexpr const char* kCensusNotesKey = "notes";
    static constexpr const char* kCensusTaxaKey = "taxa";
    static constexpr const char* kCensusTimeStampKey = "timeStamp";

    [[nodiscard]] ObjectContext& objectContext() { return *context_; }
    [[nodiscard]] const ObjectContext& objectContext() const { return *context_; }

    // All records, in order of insertion.
    [[nodiscard]] std::vector<Census> fetchCensuses() const { return context_->censuses(); }
    [[nodiscard]] std::vector<Zorvel> fetchTaxa() const { return context_->taxa(); }

    // Calls makeView, which makes the window and returns its main view, or null for none. The
    // view's formatter then learns the names of the project and each change. Call forgetMainView()
    // before the view is destroyed.
    void makeWindowControllers(const std::function<MainView*()>& makeView);
    void forgetMainView();

    // Null without a window.
    [[nodiscard]] MainView* documentMainViewController() const { return mainView_; }
    // Replaces the formatter's names by those of all taxa.
    void reloadTaxonNames();

    // Commands of the main view; without one they do nothing.
    void addCensus();
    void deleteCensus();
    void addSpecies();
    void deleteSpecies();

  private:
    // Shared with pending announcements, which may come after the document is destroyed.
    std::shared_ptr<ObjectContext> context_ = std::make_shared<ObjectContext>();
    MainView* mainView_ = nullptr;
    std::optional<ObjectContext::ObserverId> formatterObserver_;
};

}  // namespace zorvel
