// The words by which the headers of tables are known: English, German, French, Spanish, Italian,
// Portuguese, Dutch, Swedish and Polish, and the terms of Darwin Core.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "tables/reading.h"

namespace zorvel {

// What a header says of its column. rank: of several columns that claim one role, the lowest wins.
// Of what is ignored, ranks above 2 are of headers of which a part is known.
struct HeaderMeaning {
    ColumnRole role = ColumnRole::ignored;
    int rank = 0;
};

// Absent where the header is none of the known words. Case, accents, "_" and what follows in
// brackets do not matter.
std::optional<HeaderMeaning> headerMeaning(std::string_view header);

// Of the label of a row: 0 where it is one of sums ("Total", "Individuals"), another rank of
// another value computed of the rows above ("Number of species"); absent otherwise.
std::optional<int> summaryRank(std::string_view label);

// Whether a header says how much there was of a species in other terms than individuals: "Cover".
bool isAmountHeader(std::string_view header);
// Whether a text below a header says that individuals are counted: "ind.".
bool isCountUnit(std::string_view text);
// Whether a text is a sex or a stage: "♂", "juv.".
bool isStage(std::string_view text);
// A name without the sexes or stages at its end: "Poa" of "Poa juv. (m)". Empty where it is nothing
// else, absent where it has none.
std::optional<std::string_view> withoutStage(std::string_view name);
// Whether a text looks like a numbered place: "Plot 3", "Q12".
bool looksLikeCensusName(std::string_view text);
// Whether a text looks like a binomial: "Abies alba".
bool looksLikeSpeciesName(std::string_view text);

}  // namespace zorvel
