#include "model/diversity_document.h"

#include "model/edits.h"
#include "model/taxon_names.h"

namespace zorvel {

std::optional<std::vector<Census>> fetchCensuses(const ObjectContext* context) {
    if (!context) return std::nullopt;
    return context->censuses();
}

std::optional<std::vector<Zorvel>> fetchTaxa(const ObjectContext* context) {
    if (!context) return std::nullopt;
    return context->taxa();
}

DiversityDocument::DiversityDocument(TurnEnd* turns) {
    if (!turns) return;
    context_->setFirstChangeHandler([turns, weak = std::weak_ptr<ObjectContext>(context_)] {
        turns->atTurnEnd([weak] {
            if (const auto context = weak.lock()) context->announceChanges();
        });
    });
}

DiversityDocument::~DiversityDocument() {
    forgetMainView();
}

std::optional<std::vector<Census>> DiversityDocument::fetchCensuses() const {
    return zorvel::fetchCensuses(context_.get());
}

std::optional<std::vector<Zorvel>> DiversityDocument::fetchTaxa() const {
    return zorvel::fetchTaxa(context_.get());
}

Census DiversityDocument::storeCensus(const MockCensus& census) {
    return zorvel::storeCensus(*context_, census);
}

void DiversityDocument::makeWindowControllers(const std::function<MainView*()>& makeView) {
    forgetMainView();
    mainView_ = makeView();
    if (!mainView_) return;
    formatterObserver_ = context_->addObserver([view = mainView_](const ChangeSet& changes) {
        view->taxonFormatter().updatedTaxonNotification(changes);
    });
    reloadTaxonNames();
}

void DiversityDocument::forgetMainView() {
    if (formatterObserver_) context_->removeObserver(*formatterObserver_);
    formatterObserver_.reset();
    mainView_ = nullptr;
}

void DiversityDocument::reloadTaxonNames() {
    if (!mainView_) return;
    mainView_->taxonFormatter().setTaxonNames(taxonNameSet(fetchTaxa()));
}

std::optional<CountsVector> DiversityDocument::selectedCensusCounts() const {
    if (!mainView_) return std::nullopt;
    const std::vector<Census> selected = mainView_->selectedCensuses();
    if (selected.empty()) return std::nullopt;
    return includedCountsVector(selected.front());
}

std::optional<std::vector<Rarefaction>> DiversityDocument::selectedCensusRarefaction() const {
    const std::optional<CountsVector> counts = selectedCensusCounts();
    if (!counts) return std::nullopt;
    return sharedCalculator().individualBasedCurve(*counts);
}

void DiversityDocument::addCensus() {
    if (mainView_) mainView_->addCensusRow();
}

void DiversityDocument::deleteCensus() {
    if (mainView_) mainView_->deleteCensusRows();
}

void DiversityDocument::addSpecies() {
    if (mainView_) mainView_->addSpeciesRow();
}

void DiversityDocument::deleteSpecies() {
    if (mainView_) mainView_->deleteSpeciesRows();
}

}  // namespace zorvel
