#include "model/edits.h"

#include <string>
#include <utility>

#include "model/typed_values.h"
#include "store/object_context.h"

namespace zorvel {
namespace {

std::optional<SharedText> storedName(std::string_view typed) {
    const std::optional<std::string> name = typedName(typed);
    if (!name) return std::nullopt;
    return SharedText(*name);
}

}  // namespace

void editName(ObjectContext& context, const Census& census, std::string_view typed) {
    const UndoStep step(context, "Rename Census");
    context.setName(census, storedName(typed));
}

void editName(ObjectContext& context, const Zorvel& taxon, std::string_view typed) {
    const UndoStep step(context, "Rename Species");
    context.setName(taxon, storedName(typed));
}

void editAbundance(ObjectContext& context, const Zorvel& taxon, std::int64_t abundance) {
    const UndoStep step(context, "Change Abundance");
    context.setAbundance(taxon, abundance);
}

void editInclude(ObjectContext& context, const std::vector<Zorvel>& taxa, bool include) {
    const UndoStep step(context, include ? "Include Species" : "Leave Out Species");
    context.setInclude(taxa, include);
}

void editLatitude(ObjectContext& context, const Census& census, double degrees) {
    const UndoStep step(context, "Change Latitude");
    context.setLatitude(census, degrees);
}

void editLongitude(ObjectContext& context, const Census& census, double degrees) {
    const UndoStep step(context, "Change Longitude");
    context.setLongitude(census, degrees);
}

void editNotes(ObjectContext& context, const Census& census, std::string_view typed) {
    const UndoStep step(context, "Change Notes");
    context.setNotes(census, typed.empty() ? std::nullopt : std::optional<SharedText>(typed));
}

void editTimeStamp(ObjectContext& context, const Census& census, std::optional<TimeStamp> time) {
    const UndoStep step(context, "Change Date");
    context.setTimeStamp(census, time);
}

Census addCensus(ObjectContext& context) {
    const UndoStep step(context, "Add Census");
    return context.insertCensus();
}

Zorvel addTaxon(ObjectContext& context, const Census& census) {
    const UndoStep step(context, "Add Species");
    return context.insertTaxon(census);
}

std::vector<Zorvel> pasteTaxa(ObjectContext& context, const Census& census,
                              std::vector<TaxonValues> taxa) {
    const UndoStep step(context, "Paste");
    return context.insertTaxa(census, std::move(taxa));
}

std::vector<Census> pasteCensuses(ObjectContext& context, std::vector<CopiedCensus> copied) {
    const UndoStep step(context, "Paste");
    std::vector<Census> censuses;
    censuses.reserve(copied.size());
    for (CopiedCensus& census : copied) {
        censuses.push_back(context.insertCensus(census.attributes, std::move(census.taxa)));
    }
    return censuses;
}

void deleteCensuses(ObjectContext& context, const std::vector<Census>& censuses) {
    const UndoStep step(context, censuses.size() == 1 ? "Delete Census" : "Delete Censuses");
    context.deleteCensuses(censuses);
}

void deleteTaxa(ObjectContext& context, const std::vector<Zorvel>& taxa) {
    const UndoStep step(context, "Delete Species");
    context.deleteTaxa(taxa);
}

}  // namespace zorvel
