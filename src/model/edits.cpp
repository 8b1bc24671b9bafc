#include "model/edits.h"

#include "store/undo_step.h"

namespace zorvel {

void editAbundance(ObjectContext& context, const Zorvel& taxon, std::int64_t abundance) {
    const UndoStep step(context, "Change Abundance");
    context.setAbundance(taxon, abundance);
}

}  // namespace zorvel
