// The user's edits of the records: each call is one step of undo with an English name for the Edit
// menu. A call that changes nothing is no step. The window calls these and never sets a field
// itself. Main thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "model/copied_records.h"
#include "store/object_context.h"

namespace zorvel {

// The name as typed; see typedName() for what is stored.
void editName(ObjectContext& context, const Census& census, std::string_view typed);
void editName(ObjectContext& context, const Zorvel& taxon, std::string_view typed);

void editAbundance(ObjectContext& context, const Zorvel& taxon, std::int64_t abundance);
void editInclude(ObjectContext& context, const std::vector<Zorvel>& taxa, bool include);
void editLatitude(ObjectContext& context, const Census& census, double degrees);
void editLongitude(ObjectContext& context, const Census& census, double degrees);
// Text of any length and lines; empty is stored as no notes.
void editNotes(ObjectContext& context, const Census& census, std::string_view typed);
void editTimeStamp(ObjectContext& context, const Census& census, std::optional<TimeStamp> time);

Census addCensus(ObjectContext& context);
Zorvel addTaxon(ObjectContext& context, const Census& census);
// All of them, in order, at the end of the census. Names are stored as they are.
std::vector<Zorvel> pasteTaxa(ObjectContext& context, const Census& census,
                              std::vector<TaxonValues> taxa);
// All of them, at the end of the project.
std::vector<Census> pasteCensuses(ObjectContext& context, std::vector<CopiedCensus> copied);
void deleteCensuses(ObjectContext& context, const std::vector<Census>& censuses);
void deleteTaxa(ObjectContext& context, const std::vector<Zorvel>& taxa);

}  // namespace zorvel
