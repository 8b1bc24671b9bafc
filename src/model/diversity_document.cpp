#include "model/diversity_document.h"

#include <utility>

namespace zorvel {

DiversityDocument::DiversityDocument(AtTurnEnd atTurnEnd) {
    if (!atTurnEnd) return;
    context_->setFirstChangeHandler(
        [atTurnEnd = std::move(atTurnEnd), weak = std::weak_ptr<ObjectContext>(context_)] {
            atTurnEnd([weak] {
                if (const auto context = weak.lock()) context->announceChanges();
            });
        });
}

DiversityDocument::~DiversityDocument() {
    forgetMainView();
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
    mainView_->taxonFormatter().setTaxonNames(taxonNameSet(*context_));
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
