#include "tables/words.h"

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>
#include <utility>

#include "base/text.h"
#include "tables/header_words.h"

namespace zorvel {
namespace {

// In lower case and without the accents of Latin letters. U+00B0 and U+00BA are left out: "n°".
std::string plainLetters(std::string_view text) {
    const std::string composed = canonicalForm(text);
    std::string plain;
    for (std::size_t i = 0; i < composed.size(); ++i) {
        const auto c = static_cast<unsigned char>(composed[i]);
        const unsigned next =
            i + 1 < composed.size() ? static_cast<unsigned char>(composed[i + 1]) : 0U;
        const unsigned letter = (c & 0x1FU) << 6U | (next & 0x3FU);
        if (c >= 'A' && c <= 'Z') {
            plain += static_cast<char>(c - 'A' + 'a');
        } else if (c >= 0xC3 && c <= 0xC5 && letter >= 0xC0 &&
                   letter - 0xC0 < latinLetters.size()) {
            plain += latinLetters[letter - 0xC0];
            ++i;
        } else if (c == 0xC2 && (next == 0xB0 || next == 0xBA)) {
            ++i;
        } else {
            plain += composed[i];
        }
    }
    return plain;
}

std::string plainHeader(std::string_view header) {
    constexpr std::string_view closers = ")]";
    if (!header.empty() && closers.find(header.back()) != std::string_view::npos) {
        const std::size_t open = header.find_last_of("([");
        if (open != std::string_view::npos && open > 0) header = header.substr(0, open);
    }
    // Forms of the field name their groups before a slash.
    header.remove_prefix(header.rfind('/') + 1);
    std::string plain;
    for (const char c : plainLetters(header)) {
        const bool isGap = c == '_' || c == '.' || c == '-' || c == ' ' || c == '\n';
        if (!isGap) {
            plain += c;
        } else if (!plain.empty() && plain.back() != ' ') {
            plain += ' ';
        }
    }
    while (!plain.empty() && (plain.back() == ' ' || plain.back() == ':' || plain.back() == '?'))
        plain.pop_back();
    return plain;
}

template <class Words>
bool isOneOf(const Words& words, std::string_view word) {
    return std::find(words.begin(), words.end(), word) != words.end();
}

// A unit at the end, in brackets or, where it is no word, behind a blank: "depth (cm)", "Area m2".
bool hasUnit(std::string_view header) {
    const std::size_t open = header.find_last_of("([");
    const bool inBrackets = open != std::string_view::npos && header.size() >= open + 3;
    const std::size_t gap = inBrackets ? open : header.find_last_of(" _.");
    if (header.starts_with('%')) return true;
    if (gap == std::string_view::npos || gap == 0) return false;
    std::string unit(header.substr(gap + 1, header.size() - gap - (inBrackets ? 2 : 1)));
    for (char& c : unit) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return isOneOf(unitSigns, unit) || (inBrackets && isOneOf(unitWords, unit));
}

// Calls visit with each word of a plain header until it returns true.
template <class Visit>
bool anyWord(std::string_view plain, const Visit& visit) {
    for (std::size_t at = 0; at <= plain.size();) {
        const std::size_t end = std::min(plain.find(' ', at), plain.size());
        if (end > at && visit(plain.substr(at, end - at))) return true;
        at = end + 1;
    }
    return false;
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

// What is measured, not counted. A number makes it the name of a census: "Area 1".
std::optional<HeaderMeaning> measureOf(std::string_view header, std::string_view plain) {
    const auto isDepth = [](std::string_view word) {
        const auto meaning = meaningOf(word);
        return meaning && meaning->role == ColumnRole::ignored && meaning->rank == 1;
    };
    const bool isNumbered =
        anyWord(plain, [](std::string_view word) { return word[0] >= '0' && word[0] <= '9'; });
    const bool isDeep = anyWord(plain, isDepth);
    const bool isSize = anyWord(plain, [](auto word) { return isOneOf(sizes, word); });
    const bool isMeasured = anyWord(plain, [](std::string_view word) {
        return isOneOf(measures, word) ||
               std::any_of(measureEnds.begin(), measureEnds.end(), [word](std::string_view end) {
                   return word.size() > end.size() + 2 && word.ends_with(end);
               });
    });
    const bool isMeasure = !isNumbered && (isDeep || isSize || isMeasured);
    const bool endsWithUnit = isOneOf(unitWords, plain.substr(plain.rfind(' ') + 1));
    const bool isCertain =
        hasUnit(header) || (isMeasure && endsWithUnit) || header.ends_with("InMeters");
    if (isCertain) return HeaderMeaning{ColumnRole::ignored, isDeep ? 1 : 0};
    if (!isMeasure) return std::nullopt;
    return HeaderMeaning{ColumnRole::ignored, isDeep ? 4 : isSize ? 0 : 3};
}

// "Bird species", "Sampling site": a known word among others.
std::optional<HeaderMeaning> namedAmong(std::string_view plain) {
    const std::size_t gap = plain.rfind(' ');
    const bool isPlain =
        gap != std::string_view::npos && !anyWord(plain, [](auto word) {
            return word == "per" || word == "to" || (word[0] >= '0' && word[0] <= '9');
        });
    if (!isPlain) return std::nullopt;
    const auto holds = [plain](const auto& words) {
        return anyWord(plain, [&words](auto word) { return isOneOf(words, word); });
    };
    const bool isNumber = isOneOf(countingWords, plain.substr(0, plain.find(' ')));
    if (holds(speciesWords)) {
        if (isNumber) return std::nullopt;
        return HeaderMeaning{ColumnRole::species, 4};
    }
    if (holds(countWords)) return HeaderMeaning{ColumnRole::count, 2};
    const bool isOfTwo = plain.find(' ') == gap;
    const auto numbered = isOfTwo && isOneOf(numberWords, plain.substr(0, gap))
                              ? meaningOf(plain.substr(gap + 1))
                              : std::nullopt;
    if (numbered && numbered->role == ColumnRole::census)
        return HeaderMeaning{ColumnRole::census, 5};
    const auto last = meaningOf(plain.substr(gap + 1));
    if (!isNumber && last && last->role == ColumnRole::census && last->rank < 2) {
        return HeaderMeaning{ColumnRole::census, 4};
    }
    return std::nullopt;
}

std::optional<HeaderMeaning> meaningOfHeader(std::string_view header) {
    const std::string plain = plainHeader(header);
    if (const auto meaning = meaningOf(plain)) return meaning;
    // "plot no", "relevé number", "ASV ID", "Locatienummer": the word itself, less surely.
    if (plain.ends_with("nummer") && plain.find(' ') == std::string::npos) {
        auto meaning = meaningOf(std::string_view(plain).substr(0, plain.size() - 6));
        if (meaning && meaning->role == ColumnRole::census)
            return HeaderMeaning{ColumnRole::census, 5};
    }
    for (const std::string_view ending :
         {" id", " number", " no", " nr", " code", " name", " naam", " nome", " nom"}) {
        if (!plain.ends_with(ending)) continue;
        auto meaning = meaningOf(std::string_view(plain).substr(0, plain.size() - ending.size()));
        const bool names = meaning && (meaning->role == ColumnRole::census ||
                                       meaning->role == ColumnRole::species);
        if (names) return HeaderMeaning{meaning->role, meaning->rank + 5};
    }
    for (const auto& [ending, role] :
         {std::pair(" latitude", ColumnRole::latitude), {" longitude", ColumnRole::longitude}}) {
        if (plain.ends_with(ending)) return HeaderMeaning{role, 0};
    }
    if (plain.starts_with("name of ")) return meaningOf(std::string_view(plain).substr(8));
    for (const std::string_view word : {"date ", "datum ", "data ", "fecha ", "dato "}) {
        if (plain.starts_with(word)) return HeaderMeaning{ColumnRole::date, 2};
    }
    if (const auto measured = measureOf(header, plain)) return measured;
    if (plain.starts_with("sum of ") || plain.ends_with(" sum"))
        return HeaderMeaning{ColumnRole::total, 0};
    // Other words for a total may be names: Sum is the Polish name of a fish.
    const bool isTotal = anyWord(plain, [](std::string_view word) {
        const auto meaning = meaningOf(word);
        return meaning && meaning->role == ColumnRole::total && meaning->rank == 0 &&
               (word.starts_with("tot") || word.starts_with("gesamt"));
    });
    if (isTotal) return HeaderMeaning{ColumnRole::total, 0};
    if (const auto named = namedAmong(plain)) return named;
    const bool identifier = plain.ends_with(" id") || header.ends_with("ID") ||
                            (header.ends_with("Key") && header.size() > 3);
    if (identifier) return HeaderMeaning{ColumnRole::ignored, 0};
    return std::nullopt;
}

// siteName: site Name.
std::string withGaps(std::string_view header) {
    std::string text;
    for (const char c : header) {
        const bool begins =
            c >= 'A' && c <= 'Z' && !text.empty() && text.back() >= 'a' && text.back() <= 'z';
        if (begins) text += ' ';
        text += c;
    }
    return text;
}

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
           static_cast<unsigned char>(c) >= 0x80;
}

// sp1, OTU_12, Morphospecies 3.
bool looksLikeNumberedSpecies(std::string_view text) {
    constexpr auto words = std::to_array<std::string_view>(
        {"sp", "spp", "spec", "species", "otu", "zotu", "asv", "taxon", "taxa", "morph",
         "morphospecies", "msp", "mots", "motu", "espece", "especie", "specie", "soort",
         "gatunek"});
    constexpr std::string_view digits = "0123456789";
    if (text.find_first_of(digits) == std::string_view::npos) return false;
    const std::string plain = plainHeader(text);
    const std::size_t number = plain.find_first_of(digits);
    if (number == std::string::npos ||
        plain.find_first_not_of(digits, number) != std::string::npos) {
        return false;
    }
    std::string_view word = std::string_view(plain).substr(0, number);
    if (word.ends_with(' ')) word.remove_suffix(1);
    return isOneOf(words, word);
}

bool isBinomial(std::string_view text) {
    const std::size_t gap = text.find_first_of(" _.");
    if (gap == std::string_view::npos || gap < 2 || gap + 3 > text.size()) return false;
    const std::string_view genus = text.substr(0, gap);
    const std::string_view epithet = text.substr(gap + 1);
    return genus.front() >= 'A' && genus.front() <= 'Z' &&
           std::all_of(genus.begin(), genus.end(), isLetter) &&
           (epithet.front() >= 'a' && epithet.front() <= 'z') && isLetter(epithet[1]);
}

}  // namespace

std::optional<HeaderMeaning> headerMeaning(std::string_view header) {
    if (const auto meaning = meaningOfHeader(header)) return meaning;
    const std::string parted = withGaps(header);
    return parted == header ? std::nullopt : meaningOfHeader(parted);
}

std::optional<int> summaryRank(std::string_view label) {
    const auto meaning = headerMeaning(label);
    if (!meaning) return std::nullopt;
    if (meaning->role == ColumnRole::total) return meaning->rank;
    return meaning->role == ColumnRole::count && meaning->rank == 0 ? std::optional(0)
                                                                    : std::nullopt;
}

bool isCountUnit(std::string_view text) {
    const auto meaning = meaningOf(plainHeader(text));
    return (meaning && meaning->role == ColumnRole::count) || plainHeader(text) == "ind";
}

bool isStage(std::string_view text) {
    return isOneOf(stageWords, plainHeader(text));
}

std::optional<std::string_view> withoutStage(std::string_view name) {
    std::optional<std::string_view> stem;
    for (;;) {
        const std::string_view text = name.substr(0, name.find_last_not_of(" .:)]\n") + 1);
        std::size_t start = text.find_last_of(" _.,-/([\n") + 1;
        for (const std::string_view sign : {"♂", "♀"}) {
            if (text.ends_with(sign)) start = text.size() - sign.size();
        }
        if (!isStage(text.substr(start))) return stem;
        if (start > 0 && text[start - 1] == '.') --start;  // but not that of "sp. juv"
        name = text.substr(0, text.substr(0, start).find_last_not_of(" _,-/([\n") + 1);
        stem = name;
    }
}

bool isAmountHeader(std::string_view header) {
    constexpr auto amounts = std::to_array<std::string_view>(
        {"cover",     "coverage",  "deckung",  "deckungsgrad", "recouvrement", "cobertura",
         "copertura", "bedekking", "tackning", "pokrycie",     "biomass",      "biomasse",
         "biomasa",   "biomassa",  "weight",   "mass",         "gewicht",      "poids",
         "peso",      "vikt",      "masa",     "density",      "dichte"});
    return header.find('%') != std::string_view::npos ||
           anyWord(plainHeader(header), [&amounts](auto word) { return isOneOf(amounts, word); });
}

bool looksLikeCensusName(std::string_view text) {
    const auto digit = [](char c) { return c >= '0' && c <= '9'; };
    if (text.empty() || text.size() > 24 || !isLetter(text.front()) || !digit(text.back())) {
        return false;
    }
    if (looksLikeNumberedSpecies(text)) return false;
    return std::all_of(text.begin(), text.end(), [&](char c) {
        return isLetter(c) || digit(c) || c == ' ' || c == '_' || c == '-' || c == '.';
    });
}

bool looksLikeSpeciesName(std::string_view text) {
    const bool sequence =
        text.size() >= 20 && text.find_first_not_of("ACGTN") == std::string_view::npos;
    if (sequence) return true;
    return isBinomial(text) || looksLikeNumberedSpecies(text);
}

}  // namespace zorvel
