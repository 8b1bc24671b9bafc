// The words of words.h, by what they mean.
#pragma once

#include <array>
#include <string_view>

#include "tables/words.h"

namespace zorvel {

// For each meaning its words, parted by bars, as plainHeader() gives them. Ranks of a census: 0 a
// plot, 1 a less exact place, 2 an identifier, 3 what tells censuses of one place apart. Rank 1 of
// notes tells of a record rather than a census; of species -1 is finer than the epithet beside it;
// of a total 1 is computed but no sum; of what is ignored it is a depth, which may tell censuses
// apart, and 2 tells of a census alone.
struct WordsOfMeaning {
    HeaderMeaning meaning;
    std::string_view words;
};

constexpr auto wordTable = std::to_array<WordsOfMeaning>({
    {{ColumnRole::census, 0},
     "census|plot|plots|plot id|plotid|quadrat|quadrat id|sample|samples|sample id|sampleid|"
     "sample name|core|trap|trap id|transect|releve|site|sites|site id|siteid|site name|site code|"
     "plot code|plot name|station|station id|point|point id|subplot|block|haul|pond|lake|garden|"
     "bed|horizon|probe|proben|probestelle|probeflache|probennummer|fallennummer|plotnummer|"
     "flachennummer|aufnahmenummer|standortnummer|probenflache|flache|aufnahme|falle|"
     "parzelle|transekt|schicht|untersuchungsflache|probepunkt|messpunkt|zahlpunkt|quadrant|"
     "parcelle|placette|placeau|echantillon|piege|quadrate|maille|point d'ecoute|"
     "muestra|parcela|cuadrante|cuadrat|trampa|transecto|estacion|sitio|punto|"
     "amostra|armadilha|estacao|ponto|quadrado|campione|stazione|sito|quadrato|rilievo|"
     "trappola|transetto|parcella|plek|proefvlak|monster|opname|vangpot|kwadrant|"
     "meetpunt|telpunt|monsterpunt|prov|provyta|provpunkt|provplats|prove|proveflate|"
     "stanowisko|stanowiska|proby|proba|probka|powierzchnia|pulapka|poletko|kwadrat|punkt|transek"},
    {{ColumnRole::census, 1},
     "standort|ort|fundort|lokalnamn|ortsname|lieu|localidad|localite|lugar|location|locality|"
     "locationid|location id|"
     "collection|place guess|local|localidade|localita|luogo|locatie|gebied|vindplaats|lokal|plats|"
     "lokalitet|lokalizacja|miejsce|lokalita|gebiet"},
    {{ColumnRole::census, 2}, "eventid|event id|fieldnumber|group"},
    {{ColumnRole::census, 3},
     "section|sector|segment|secteur|sektor|abschnitt|tratto|sezione|tramo|sectie|habitat|"
     "microhabitat|biotope|biotop|lebensraum|zone|replicate|rep|replica|replicat|"
     "repetition|repeticion|repeticao|wiederholung|teilprobe|"
     "subsample|sub sample|replicato|replicaat|replikat|powtorzenie|treatment|behandlung|"
     "traitement|tratamiento|tratamento|trattamento|behandeling|visit|round|survey|session|season|"
     "week|begehung|durchgang|saison|jahreszeit|woche|kw|visite|passage|semaine|visita|estacion "
     "del ano|temporada|semana|campana|estacao do ano|stagione|settimana|bezoek|ronde|seizoen|"
     "besok|sasong|vecka|sezon|tydzien"},
    {{ColumnRole::species, 0},
     "species|species name|speciesname|art|arten|artname|espece|especes|especie|especies|specie|"
     "accepted name|epithet|specificepithet|specific epithet|soort|soorten|soortnaam|artnamn|"
     "artsnavn|gatunek|gatunki|nazwa gatunku|druh|laji"},
    {{ColumnRole::species, -1}, "otu|otu id|#otu id|#otuid|asv|asv id|zotu"},
    {{ColumnRole::species, 1},
     "taxon|taxa|taxon name|taxonname|taxones|taxons|taxone|takson|"
     "morphospecies|bird|birds|plant|plants|insect|butterfly|moth|fish|tree|animal|organism|"
     "essence|vogel|pflanze|plante|oiseau|ave|planta|vogelart|pflanzenart|vogelsoort|pianta|"
     "uccello|"
     "roslina|ptak"},
    {{ColumnRole::species, 2},
     "scientific name|scientificname|nom scientifique|nombre cientifico|latin name|latinname|"
     "wissenschaftlicher name|nome cientifico|nome scientifico|wetenschappelijke naam|"
     "vetenskapligt namn|latinskt namn|nazwa lacinska|nazwa naukowa"},
    {{ColumnRole::species, 6},
     "common name|vernacular name|vernacularname|nombre comun|nom commun|deutscher name|"
     "nederlandse naam|nome comune|nome comum|svenskt namn|nazwa polska"},
    {{ColumnRole::species, 8}, "family|familie|famille|familia|famiglia|familj|rodzina"},
    {{ColumnRole::species, 9}, "order|ordnung|ordre|orden|ordine|orde|ordem|ordning|rzad"},
    {{ColumnRole::count, 0},
     "count|counts|abundance|individuals|individualcount|individual count|no individuals|"
     "number of individuals|n individuals|inds|abund|tally|abund value|specimens|how many|reads|"
     "anzahl|abundanz|individuen|individuenzahl|stuckzahl|exemplare|"
     "effectif|effectifs|abondance|individus|nombre d'individus|nombre de tiges|nb individus|n "
     "individus|nb ind|"
     "abundancia|individuos|conteo|numero|ejemplares|n de individuos|numero de individuos|"
     "contagem|n individuos|abbondanza|individui|esemplari|conteggio|n individui|"
     "numero individui|numero di individui|aantal|aantallen|abundantie|aantal individuen|antal|"
     "individer|antal individer|abundans|antall|liczba|liczebnosc|osobniki|liczba osobnikow|"
     "ilosc|pocet|lukumaara|yksilomaara"},
    {{ColumnRole::count, 1},
     "number|n|no|n ind|no ind|num|num ind|nb d'individus|nr|nb|quantity|organismquantity|organism "
     "quantity|menge|zahl|cantidad|quantidade|quantita|freq|"
     "frequency|nombre"},
    {{ColumnRole::latitude, 0},
     "lat|latitude|decimallatitude|decimal latitude|breite|breitengrad|latitud|latitudine|"
     "breedtegraad|breddgrad|szerokosc|szerokosc geograficzna|szerokosc geogr|szer geogr"},
    {{ColumnRole::longitude, 0},
     "lon|long|lng|longitude|decimallongitude|decimal longitude|lange|langengrad|longitud|"
     "longitudine|lengtegraad|langdgrad|dlugosc geograficzna|dlugosc geogr|dl geogr"},
    {{ColumnRole::date, 0},
     "date|datum|startdatum|start date|funddatum|beobachtungsdatum|eventdate|event "
     "date|fecha|data|dato|sampling date|date of sampling|survey date|"
     "observed on|sample date|collection date"},
    {{ColumnRole::notes, 0}, "notes|eventremarks"},
    {{ColumnRole::notes, 1},
     "note|remarks|comments|comment|bemerkung|bemerkungen|notizen|remarque|remarques|notas|"
     "observaciones|occurrenceremarks|any comments|description|osservazioni|observacoes|"
     "opmerking|opmerkingen|anmarkning|anmarkningar|kommentar|uwagi|anmerkung|anmerkungen"},
    {{ColumnRole::status, 0},
     "occurrencestatus|occurrence "
     "status|status|presence|present|detected|prasenz|vorkommen|presencia|presenza|"
     "presenca|aanwezig|forekomst|obecnosc"},
    {{ColumnRole::included, 0}, "included"},
    {{ColumnRole::total, 0},
     "total|totals|gesamtergebnis|gesamtzahl|eindtotaal|totalsumma|suma "
     "koncowa|osszesen|Всего|всего|Итого|итого|toplam|ukupno|spolu|skupaj|sum|sums|summe|gesamt|"
     "gesamtsumme|insgesamt|somme|suma|row total|column total|"
     "grand total|totale|totali|totaal|totalen|som|soma|totais|summa|totalt|sammanlagt|razem|"
     "ogolem|celkem|yhteensa|totaux|totales|subtotal|sub total|zwischensumme|sous total|"
     "subtotale|subtotaal"},
    {{ColumnRole::ignored, 0},
     "timestamp|time|uhrzeit|heure|hora|tijd|tid|ora|starttid|starttime|start time|end "
     "time|unit|units|einheit|enhet|unite|unidad|eenheid|jednostka|recorded by|identified "
     "by|recorder|institution code|collection code|dataset name|basis of "
     "record|behaviour|behavior|verhalten|activity|aktivitet|beobachter|observateur|waarnemer|"
     "license|numotus|label|taxonomic order|number of observers|taxonomy|id|gbifid|observer|"
     "breeding code|trophic level|trophic group|tolerance|tolerance value|score|rank|red list|"
     "organismquantitytype|organism quantity type|size|code|ph|unnamed: 0"},
    {{ColumnRole::stage, 0},
     "alter|altersklasse|age class|edad|eta|leeftijd|wiek|alder|plumage|instar|stage|life "
     "stage|lifestage|sex|sexe|sexo|sesso|stadium|stade|geschlecht|kon|plec"},
    {{ColumnRole::ignored, 1},
     "depth|depth range|depth interval|interval|slice|layer "
     "cm|tiefe|profondeur|profundidad|profundidade|profondita|diepte|djup|glebokosc|dybde"},
    {{ColumnRole::ignored, 2},
     "sweeps|number of sweeps|sampling days|replicates|x|y|easting|northing|utm x|utm y|utm e|utm "
     "n|utme|utmn|x utm|y "
     "utm|xcoord|ycoord|coordx|coordy|x coord|y coord|coord x|coord y|x coordinate|y "
     "coordinate|coordinate x|coordinate "
     "y|rechtswert|hochwert|ostwert|nordwert|ostkoordinat|nordkoordinat|slope|aspect|exposure|sand|"
     "silt|clay|gravel|rock|mud|humus|litter|canopy|bare soil|"
     "bare ground|baresoil|wind|wind speed|rain|light|noise|cloud|visibility|secchi|age|stand age|"
     "traps|number of traps|no of traps|days|hours|minutes|nights|party size|grazing|management|"
     "land use|organic matter|neigung|hangneigung|exposition|pente|pendiente|pendenza|"
     "anzahl fallen|fangtage|ca|mg|al|fe|mn|zn|no3|nh4|po4|so4|tp|tn|toc|doc|bod|cod|tds|ec|"
     "chl a|chla|lycopodium added|lycopodium counted|lycopodium spike|exotics added|"
     "exotics counted|markers added|markers counted|marker|markers|spike"},
    {{ColumnRole::year, 0}, "year|jahr|annee|ano|anno|jaar|ar|rok"},
    {{ColumnRole::month, 0}, "month|monat|mois|mes|mese|maand|manad|miesiac"},
    {{ColumnRole::day, 0}, "day|tag|jour|dia|giorno|dag|dzien"},
    {{ColumnRole::genus, 0}, "genus|gattung|genre|genero|genere|geslacht|slakte|slekt|rodzaj"},
    {{ColumnRole::date, 1}, "today"},
    {{ColumnRole::total, 1},
     "species count|taxa count|number of taxa|no of taxa|taxa richness|sobs|species "
     "richness|richness|number of species|no of species|species number|artenzahl|"
     "anzahl arten|richesse|nombre d'especes|riqueza|numero de especies|shannon|shannon h|"
     "shannon h'|shannon's h|simpson|simpson d|evenness|mean|average|mittelwert|ricchezza|"
     "numero di specie|aantal soorten|soortenrijkdom|antal arter|liczba gatunkow|media|"
     "moyenne|promedio|gemiddelde|medelvarde|srednia|durchschnitt|anteil|percent"},
});

// Words of what is measured, anywhere in a header ("Water temp."): of a species or a census, and
// only of a census.
constexpr auto sizes =
    std::to_array<std::string_view>({"height", "width", "length", "diameter", "dbh", "weight",
                                     "biomass", "biomasse", "biomasa", "biomassa"});
constexpr auto measures = std::to_array<std::string_view>({
    "area",
    "superficie",
    "oppervlakte",
    "volume",
    "volumen",
    "volum",
    "effort",
    "aufwand",
    "esfuerzo",
    "esforco",
    "inspanning",
    "temperature",
    "temp",
    "temperatur",
    "temperatura",
    "temperatuur",
    "ph",
    "salinity",
    "salinitat",
    "salinite",
    "salinidad",
    "salinidade",
    "salinita",
    "zoutgehalte",
    "salthalt",
    "zasolenie",
    "conductivity",
    "leitfahigkeit",
    "conductivite",
    "conductividad",
    "condutividade",
    "conducibilita",
    "geleidbaarheid",
    "konduktivitet",
    "przewodnosc",
    "turbidity",
    "turbidite",
    "turbidez",
    "trubung",
    "oxygen",
    "sauerstoff",
    "oxygene",
    "oxigeno",
    "oxigenio",
    "ossigeno",
    "zuurstof",
    "humidity",
    "moisture",
    "feuchte",
    "feuchtigkeit",
    "humidite",
    "humedad",
    "umidade",
    "umidita",
    "precipitation",
    "rainfall",
    "niederschlag",
    "precipitacion",
    "elevation",
    "altitude",
    "altitud",
    "altitudine",
    "hohe",
    "meereshohe",
    "hoogte",
    "hojd",
    "wysokosc",
    "cover",
    "coverage",
    "deckung",
    "deckungsgrad",
    "recouvrement",
    "cobertura",
    "copertura",
    "bedekking",
    "tackning",
    "pokrycie",
    "duration",
    "dauer",
    "duree",
    "duracion",
    "duur",
    "czas",
    "uncertainty",
    "accuracy",
    "precision",
    "density",
    "dichte",
    "nitrate",
    "phosphate",
    "chlorophyll",
    "discharge",
    "velocity",
    "trapnights",
    "nights",
    "hours",
    "minutes",
    "days",
    "observers",
    "agreements",
    "disagreements",
});

// Sexes and stages.
constexpr auto stageWords = std::to_array<std::string_view>(
    {"m",        "f",        "♂",       "♀",         "♂♂",      "♀♀",        "male",     "males",
     "female",   "females",  "juv",     "juvenile",  "ad",      "juveniles", "adult",    "adults",
     "imm",      "immature", "subad",   "subadult",  "imago",   "imagines",  "larva",    "larvae",
     "pupa",     "pupae",    "nymph",   "nymphs",    "egg",     "eggs",      "worker",   "workers",
     "queen",    "queens",   "drone",   "drones",    "w",       "mannchen",  "mannlich", "weibchen",
     "weiblich", "larve",    "larven",  "puppe",     "puppen",  "nymphe",    "nymphes",  "nymphen",
     "adulte",   "adultes",  "femelle", "femelles",  "macho",   "machos",    "hembra",   "hembras",
     "adulto",   "adultos",  "juvenil", "juveniles", "larvas",  "ninfa",     "ninfas",   "maschio",
     "maschi",   "femmina",  "femmine", "samiec",    "samce",   "samica",    "samice",   "hane",
     "hanar",    "hona",     "honor",   "mannetje",  "vrouwtje"});

// Words that say what stands among others: "Plant species", but not "Number of species".
constexpr auto speciesWords = std::to_array<std::string_view>(
    {"species", "espece", "especes", "especie", "especies", "specie", "soort", "artnamn", "taxon"});
constexpr auto countWords = std::to_array<std::string_view>(
    {"count", "individuals", "specimens", "abundance", "individuen", "exemplare", "individus",
     "individuos", "individui", "esemplari", "individer", "ind", "exemplaren", "okazow",
     "osobnikow", "abundancia", "abondance"});
constexpr auto countingWords = std::to_array<std::string_view>(
    {"no", "number", "nr", "n", "nb", "num", "total", "anzahl", "aantal", "antal", "nombre",
     "numero", "richness", "per", "liczba"});

// The plain letters of U+00C0 to U+017F.
constexpr std::string_view latinLetters =
    "aaaaaaaceeeeiiiidnooooo ouuuuypsaaaaaaaceeeeiiiidnooooo ouuuuypy"
    "aaaaaaccccccccddddeeeeeeeeeegggggggghhhhiiiiiiiiiiiijjkkklllllll"
    "lllnnnnnnnnnoooooooorrrrrrssssssssttttttuuuuuuuuuuuuwwyyyzzzzzzs";

// With which words for measures end: "Wassertemperatur".
constexpr auto measureEnds = std::to_array<std::string_view>(
    {"temp", "temperatur", "temperatuur", "tiefe", "djup", "diepte", "hohe", "hojd", "hoogte",
     "gehalt", "gehalte", "feuchte", "dauer"});
// What stands before the word for a place: "Nr stanowiska".
constexpr auto numberWords =
    std::to_array<std::string_view>({"nr", "no", "n", "numer", "numero", "code", "codice", "codigo",
                                     "kod", "id", "nom", "nome", "nombre", "nazwa", "name"});

// Units that may be words, and others.
constexpr auto unitWords =
    std::to_array<std::string_view>({"mm", "cm", "m", "km", "ha", "min", "minutes", "h", "hours",
                                     "days", "psu", "mg", "g", "kg", "ml", "l", "ph", "c"});
constexpr auto unitSigns = std::to_array<std::string_view>(
    {"m2",  "m²",  "m3", "m³", "cm2",  "cm²",  "cm3",  "cm³", "km2",   "km²",   "dm2",   "dm²",
     "dm3", "dm³", "%",  "°c", "mg/l", "µg/l", "ug/l", "g/l", "µs/cm", "us/cm", "ind/m2"});

}  // namespace zorvel
