#include "tables/words.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace zorvel {
namespace {

struct Word {
    std::string_view text;
    HeaderMeaning meaning;
};

constexpr HeaderMeaning census{ColumnRole::census, 0};
constexpr HeaderMeaning place{ColumnRole::census, 1};  // less exact than a plot
constexpr HeaderMeaning event{ColumnRole::census, 2};
constexpr HeaderMeaning species{ColumnRole::species, 0};
constexpr HeaderMeaning taxon{ColumnRole::species, 1};
constexpr HeaderMeaning scientific{ColumnRole::species, 2};
constexpr HeaderMeaning genus{ColumnRole::genus, 0};
constexpr HeaderMeaning counts{ColumnRole::count, 0};
constexpr HeaderMeaning amount{ColumnRole::count, 1};
constexpr HeaderMeaning latitude{ColumnRole::latitude, 0};
constexpr HeaderMeaning longitude{ColumnRole::longitude, 0};
constexpr HeaderMeaning date{ColumnRole::date, 0};
constexpr HeaderMeaning year{ColumnRole::year, 0};
constexpr HeaderMeaning month{ColumnRole::month, 0};
constexpr HeaderMeaning dayOfMonth{ColumnRole::day, 0};
constexpr HeaderMeaning day{ColumnRole::date, 1};
constexpr HeaderMeaning notes{ColumnRole::notes, 0};
constexpr HeaderMeaning remarks{ColumnRole::notes, 1};  // of a record, rather than a census
constexpr HeaderMeaning status{ColumnRole::status, 0};
constexpr HeaderMeaning included{ColumnRole::included, 0};
constexpr HeaderMeaning total{ColumnRole::total, 0};
constexpr HeaderMeaning index{ColumnRole::total, 1};  // computed, but no sum
constexpr HeaderMeaning none{ColumnRole::ignored, 0};

// In lower case, without "_", "." and "-".
constexpr auto words = std::to_array<Word>({
    {"census", census},
    {"plot", census},
    {"plots", census},
    {"plot id", census},
    {"plotid", census},
    {"quadrat", census},
    {"quadrat id", census},
    {"sample", census},
    {"samples", census},
    {"sample id", census},
    {"sampleid", census},
    {"sample name", census},
    {"core", census},
    {"trap", census},
    {"trap id", census},
    {"transect", census},
    {"relevé", census},
    {"releve", census},
    {"site", census},
    {"sites", census},
    {"site id", census},
    {"siteid", census},
    {"site name", census},
    {"site code", census},
    {"plot code", census},
    {"plot name", census},
    {"station", census},
    {"station id", census},
    {"probe", census},
    {"proben", census},
    {"probestelle", census},
    {"probefläche", census},
    {"probenfläche", census},
    {"fläche", census},
    {"aufnahme", census},
    {"falle", census},
    {"parzelle", census},
    {"transekt", census},
    {"parcelle", census},
    {"placette", census},
    {"échantillon", census},
    {"echantillon", census},
    {"piège", census},
    {"muestra", census},
    {"parcela", census},
    {"cuadrante", census},
    {"cuadrat", census},
    {"trampa", census},
    {"transecto", census},
    {"estación", census},
    {"estacion", census},
    {"sitio", census},
    {"standort", place},
    {"ort", place},
    {"fundort", place},
    {"lieu", place},
    {"localidad", place},
    {"localité", place},
    {"lugar", place},
    {"location", place},
    {"locality", place},
    {"locationid", place},
    {"location id", place},
    {"eventid", event},
    {"event id", event},
    {"fieldnumber", event},
    {"species", species},
    {"species name", species},
    {"speciesname", species},
    {"art", species},
    {"arten", species},
    {"artname", species},
    {"espèce", species},
    {"espèces", species},
    {"espece", species},
    {"especie", species},
    {"especies", species},
    {"taxon", taxon},
    {"taxa", taxon},
    {"taxon name", taxon},
    {"taxonname", taxon},
    {"taxón", taxon},
    {"otu", taxon},
    {"otu id", taxon},
    {"#otu id", taxon},
    {"#otuid", taxon},
    {"asv", taxon},
    {"morphospecies", taxon},
    {"scientific name", scientific},
    {"scientificname", scientific},
    {"nom scientifique", scientific},
    {"nombre científico", scientific},
    {"nombre cientifico", scientific},
    {"wissenschaftlicher name", scientific},
    {"count", counts},
    {"counts", counts},
    {"abundance", counts},
    {"individuals", counts},
    {"individualcount", counts},
    {"individual count", counts},
    {"no individuals", counts},
    {"number of individuals", counts},
    {"anzahl", counts},
    {"abundanz", counts},
    {"individuen", counts},
    {"individuenzahl", counts},
    {"stückzahl", counts},
    {"effectif", counts},
    {"abondance", counts},
    {"individus", counts},
    {"abundancia", counts},
    {"individuos", counts},
    {"conteo", counts},
    {"número", counts},
    {"numero", counts},
    {"number", amount},
    {"n", amount},
    {"no", amount},
    {"quantity", amount},
    {"organismquantity", amount},
    {"menge", amount},
    {"zahl", amount},
    {"cantidad", amount},
    {"lat", latitude},
    {"latitude", latitude},
    {"decimallatitude", latitude},
    {"decimal latitude", latitude},
    {"breite", latitude},
    {"breitengrad", latitude},
    {"latitud", latitude},
    {"lon", longitude},
    {"long", longitude},
    {"lng", longitude},
    {"longitude", longitude},
    {"decimallongitude", longitude},
    {"decimal longitude", longitude},
    {"länge", longitude},
    {"längengrad", longitude},
    {"longitud", longitude},
    {"date", date},
    {"datum", date},
    {"eventdate", date},
    {"event date", date},
    {"fecha", date},
    {"sampling date", date},
    {"date of sampling", date},
    {"survey date", date},
    {"notes", notes},
    {"eventremarks", notes},
    {"note", remarks},
    {"remarks", remarks},
    {"comments", remarks},
    {"comment", remarks},
    {"bemerkung", remarks},
    {"bemerkungen", remarks},
    {"notizen", remarks},
    {"remarque", remarks},
    {"remarques", remarks},
    {"notas", remarks},
    {"observaciones", remarks},
    {"occurrenceremarks", remarks},
    {"occurrencestatus", status},
    {"status", status},
    {"included", included},
    {"total", total},
    {"totals", total},
    {"sum", total},
    {"sums", total},
    {"summe", total},
    {"gesamt", total},
    {"gesamtsumme", total},
    {"insgesamt", total},
    {"somme", total},
    {"suma", total},
    {"row total", total},
    {"column total", total},
    {"grand total", total},
    {"schicht", census},
    {"bed", census},
    {"horizon", census},
    {"garden", census},
    {"collection", place},
    {"accepted name", species},
    {"abund value", counts},
    {"bird", taxon},
    {"birds", taxon},
    {"plant", taxon},
    {"plants", taxon},
    {"insect", taxon},
    {"butterfly", taxon},
    {"moth", taxon},
    {"fish", taxon},
    {"tree", taxon},
    {"animal", taxon},
    {"vogel", taxon},
    {"pflanze", taxon},
    {"plante", taxon},
    {"oiseau", taxon},
    {"ave", taxon},
    {"planta", taxon},
    {"freq", amount},
    {"frequency", amount},
    {"nombre", amount},
    {"timestamp", none},
    {"year", year},
    {"month", month},
    {"day", dayOfMonth},
    {"jahr", year},
    {"monat", month},
    {"tag", dayOfMonth},
    {"année", year},
    {"mois", month},
    {"jour", dayOfMonth},
    {"año", year},
    {"mes", month},
    {"día", dayOfMonth},
    {"any comments", remarks},
    {"genus", genus},
    {"gattung", genus},
    {"genre", genus},
    {"género", genus},
    {"epithet", species},
    {"specificepithet", species},
    {"specific epithet", species},
    {"group", event},
    {"place guess", place},
    {"observed on", date},
    {"today", day},
    {"specimens", counts},
    {"exemplare", counts},
    {"ejemplares", counts},
    {"spécimens", counts},
    {"nº de individuos", counts},
    {"n° de individuos", counts},
    {"número de individuos", counts},
    {"numero de individuos", counts},
    {"nombre d'individus", counts},
    {"nb individus", counts},
    {"how many", counts},
    {"reads", counts},
    {"species richness", index},
    {"richness", index},
    {"number of species", index},
    {"no of species", index},
    {"species number", index},
    {"artenzahl", index},
    {"anzahl arten", index},
    {"richesse", index},
    {"nombre d'espèces", index},
    {"riqueza", index},
    {"número de especies", index},
    {"shannon", index},
    {"shannon h", index},
    {"shannon h'", index},
    {"shannon's h", index},
    {"simpson", index},
    {"simpson d", index},
    {"evenness", index},
    {"mean", index},
    {"average", index},
    {"mittelwert", index},
    {"ph", none},
    {"temperature", none},
    {"temperatur", none},
    {"höhe", none},
    {"altitud", none},
    {"numotus", none},
    {"label", none},
    {"taxonomic order", none},
    {"number of observers", none},
    {"common name", none},
    {"description", remarks},
    {"taxonomy", none},
    {"genus", none},
    {"family", none},
    {"order", none},
    {"id", none},
    {"gbifid", none},
    {"observer", none},
    {"treatment", none},
    {"elevation", none},
    {"altitude", none},
    {"depth", none},
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
    const auto found = std::find_if(words.begin(), words.end(),
                                    [plain](const Word& word) { return word.text == plain; });
    if (found == words.end()) return std::nullopt;
    return found->meaning;
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
    for (const auto& [ending, meaning] :
         {std::pair(" latitude", latitude), {" longitude", longitude}}) {
        if (plain.ends_with(ending)) return meaning;
    }
    if (plain.starts_with("name of ")) return meaningOf(plain.substr(8));
    if (plain.starts_with("date ")) return day;
    if (hasUnit(header)) return none;
    if (plain.starts_with("total ") || plain.starts_with("sum of ")) return total;
    const bool identifier = plain == "id" || plain.ends_with(" id") || header.ends_with("ID");
    if (identifier) return none;
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
