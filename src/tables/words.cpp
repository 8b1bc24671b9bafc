#include "tables/words.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>
#include <utility>

namespace zorvel {
namespace {

// For each meaning its words, parted by bars, in lower case, without "_", "." and "-". Rank 1 of a
// place is less exact than a plot, of notes it tells of a record rather than a census, of a total
// it is computed but no sum.
struct WordsOfMeaning {
    HeaderMeaning meaning;
    std::string_view words;
};

constexpr auto wordTable = std::to_array<WordsOfMeaning>({
    {{ColumnRole::census, 0},
     "census|plot|plots|plot id|plotid|quadrat|quadrat id|sample|samples|sample id|"
     "sampleid|sample name|core|trap|trap id|transect|relevé|releve|site|sites|"
     "site id|siteid|site name|site code|plot code|plot name|station|station id|"
     "probe|proben|probestelle|probefläche|probenfläche|fläche|aufnahme|falle|"
     "parzelle|transekt|parcelle|placette|échantillon|echantillon|piège|muestra|"
     "parcela|cuadrante|cuadrat|trampa|transecto|estación|estacion|sitio|schicht|"
     "bed|horizon|garden"},
    {{ColumnRole::census, 1},
     "standort|ort|fundort|lieu|localidad|localité|lugar|location|locality|"
     "locationid|location id|collection|place guess"},
    {{ColumnRole::census, 2}, "eventid|event id|fieldnumber|group"},
    {{ColumnRole::species, 0},
     "species|species name|speciesname|art|arten|artname|espèce|espèces|espece|"
     "especie|especies|accepted name|epithet|specificepithet|specific epithet"},
    {{ColumnRole::species, 1},
     "taxon|taxa|taxon name|taxonname|taxón|otu|otu id|#otu id|#otuid|asv|"
     "morphospecies|bird|birds|plant|plants|insect|butterfly|moth|fish|tree|animal|"
     "vogel|pflanze|plante|oiseau|ave|planta"},
    {{ColumnRole::species, 2},
     "scientific name|scientificname|nom scientifique|nombre científico|"
     "nombre cientifico|wissenschaftlicher name"},
    {{ColumnRole::count, 0},
     "count|counts|abundance|individuals|individualcount|individual count|"
     "no individuals|number of individuals|anzahl|abundanz|individuen|"
     "individuenzahl|stückzahl|effectif|abondance|individus|abundancia|individuos|"
     "conteo|número|numero|abund value|specimens|exemplare|ejemplares|spécimens|"
     "nº de individuos|n° de individuos|número de individuos|numero de individuos|"
     "nombre d'individus|nb individus|how many|reads"},
    {{ColumnRole::count, 1},
     "number|n|no|quantity|organismquantity|menge|zahl|cantidad|freq|frequency|"
     "nombre"},
    {{ColumnRole::latitude, 0},
     "lat|latitude|decimallatitude|decimal latitude|breite|breitengrad|latitud"},
    {{ColumnRole::longitude, 0},
     "lon|long|lng|longitude|decimallongitude|decimal longitude|länge|längengrad|"
     "longitud"},
    {{ColumnRole::date, 0},
     "date|datum|eventdate|event date|fecha|sampling date|date of sampling|"
     "survey date|observed on"},
    {{ColumnRole::notes, 0}, "notes|eventremarks"},
    {{ColumnRole::notes, 1},
     "note|remarks|comments|comment|bemerkung|bemerkungen|notizen|remarque|"
     "remarques|notas|observaciones|occurrenceremarks|any comments|description"},
    {{ColumnRole::status, 0}, "occurrencestatus|status"},
    {{ColumnRole::included, 0}, "included"},
    {{ColumnRole::total, 0},
     "total|totals|sum|sums|summe|gesamt|gesamtsumme|insgesamt|somme|suma|row total|"
     "column total|grand total"},
    {{ColumnRole::ignored, 0},
     "timestamp|ph|temperature|temperatur|höhe|altitud|numotus|label|"
     "taxonomic order|number of observers|common name|taxonomy|family|order|"
     "id|gbifid|observer|treatment|elevation|altitude|depth"},
    {{ColumnRole::year, 0}, "year|jahr|année|año"},
    {{ColumnRole::month, 0}, "month|monat|mois|mes"},
    {{ColumnRole::day, 0}, "day|tag|jour|día"},
    {{ColumnRole::genus, 0}, "genus|gattung|genre|género"},
    {{ColumnRole::date, 1}, "today"},
    {{ColumnRole::total, 1},
     "species richness|richness|number of species|no of species|species number|"
     "artenzahl|anzahl arten|richesse|nombre d'espèces|riqueza|número de especies|"
     "shannon|shannon h|shannon h'|shannon's h|simpson|simpson d|evenness|mean|"
     "average|mittelwert"},
});

std::string plainHeader(std::string_view header) {
    constexpr std::string_view closers = ")]";
    if (!header.empty() && closers.find(header.back()) != std::string_view::npos) {
        const std::size_t open = header.find_last_of("([");
        if (open != std::string_view::npos && open > 0) header = header.substr(0, open);
    }
    // Forms of the field name their groups before a slash.
    header.remove_prefix(header.rfind('/') + 1);
    std::string plain;
    for (const char c : header) {
        if (c == '_' || c == '.' || c == '-' || c == ' ') {
            if (!plain.empty() && plain.back() != ' ') plain += ' ';
        } else {
            plain += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        }
    }
    while (!plain.empty() && (plain.back() == ' ' || plain.back() == ':' || plain.back() == '?'))
        plain.pop_back();
    return plain;
}

// What is measured, not counted: "depth (cm)".
bool hasUnit(std::string_view header) {
    constexpr auto units = std::to_array<std::string_view>(
        {"mm", "cm", "m",   "km",   "m2",   "m²", "ha", "min", "minutes", "h", "hours", "days",
         "%",  "°c", "psu", "mg/l", "µg/l", "mg", "g",  "kg",  "ml",      "l", "µs/cm", "ph"});
    const std::size_t open = header.find_last_of("([");
    if (open == std::string_view::npos || header.size() < open + 3) return false;
    std::string unit(header.substr(open + 1, header.size() - open - 2));
    for (char& c : unit) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return std::find(units.begin(), units.end(), unit) != units.end();
}

std::optional<HeaderMeaning> meaningOf(std::string_view plain) {
    static const auto meanings = [] {
        std::unordered_map<std::string_view, HeaderMeaning> all;
        for (const auto& [meaning, text] : wordTable) {
            for (std::size_t at = 0; at <= text.size();) {
                const std::size_t end = std::min(text.find('|', at), text.size());
                all.emplace(text.substr(at, end - at), meaning);
                at = end + 1;
            }
        }
        return all;
    }();
    const auto found = meanings.find(plain);
    if (found == meanings.end()) return std::nullopt;
    return found->second;
}

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
           static_cast<unsigned char>(c) >= 0x80;
}

}  // namespace

std::optional<HeaderMeaning> headerMeaning(std::string_view header) {
    std::string plain = plainHeader(header);
    if (const auto meaning = meaningOf(plain)) return meaning;
    // "plot no", "relevé number", "ASV ID": the word itself, less surely.
    for (const std::string_view ending : {" id", " number", " no", " nr", " code", " name"}) {
        if (!plain.ends_with(ending)) continue;
        auto meaning = meaningOf(plain.substr(0, plain.size() - ending.size()));
        const bool names = meaning && (meaning->role == ColumnRole::census ||
                                       meaning->role == ColumnRole::species);
        if (names) return HeaderMeaning{meaning->role, meaning->rank + 5};
    }
    for (const auto& [ending, role] :
         {std::pair(" latitude", ColumnRole::latitude), {" longitude", ColumnRole::longitude}}) {
        if (plain.ends_with(ending)) return HeaderMeaning{role, 0};
    }
    if (plain.starts_with("name of ")) return meaningOf(plain.substr(8));
    if (plain.starts_with("date ")) return HeaderMeaning{ColumnRole::date, 1};
    if (hasUnit(header)) return HeaderMeaning{ColumnRole::ignored, 0};
    if (plain.starts_with("total ") || plain.starts_with("sum of "))
        return HeaderMeaning{ColumnRole::total, 0};
    const bool identifier = plain == "id" || plain.ends_with(" id") || header.ends_with("ID");
    if (identifier) return HeaderMeaning{ColumnRole::ignored, 0};
    return std::nullopt;
}

bool looksLikeCensusName(std::string_view text) {
    const auto digit = [](char c) { return c >= '0' && c <= '9'; };
    if (text.empty() || text.size() > 24 || !isLetter(text.front()) || !digit(text.back())) {
        return false;
    }
    return std::all_of(text.begin(), text.end(), [&](char c) {
        return isLetter(c) || digit(c) || c == ' ' || c == '_' || c == '-' || c == '.';
    });
}

bool looksLikeSpeciesName(std::string_view text) {
    const bool sequence =
        text.size() >= 20 && text.find_first_not_of("ACGTN") == std::string_view::npos;
    if (sequence) return true;
    const std::size_t gap = text.find_first_of(" _.");
    if (gap == std::string_view::npos || gap < 2 || gap + 3 > text.size()) return false;
    const std::string_view genus = text.substr(0, gap);
    const std::string_view epithet = text.substr(gap + 1);
    return genus.front() >= 'A' && genus.front() <= 'Z' &&
           std::all_of(genus.begin(), genus.end(), isLetter) &&
           (epithet.front() >= 'a' && epithet.front() <= 'z') && isLetter(epithet[1]);
}

}  // namespace zorvel
