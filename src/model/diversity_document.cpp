#include "model/diversity_document.h"

#include "model/edits.h"

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

std::optional<std::vector<Census>> DiversityDocument::fetchCensuses() const {
    return zorvel::fetchCensuses(context_.get());
}

std::optional<std::vector<Zorvel>> DiversityDocument::fetchTaxa() const {
    return zorvel::fetchTaxa(context_.get());
}

Census DiversityDocument::storeCensus(const MockCensus& census) {
    return zorvel::storeCensus(*context_, census);
}

}  // namespace zorvel
