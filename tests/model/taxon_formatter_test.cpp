#include "model/taxon_formatter.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/support/import_censuses.h"

namespace zorvel {
namespace {

TaxonFormatter formatterOf(TaxonFormatter::Names names) {
    TaxonFormatter formatter;
    formatter.setTaxonNames(std::move(names));
    return formatter;
}

// What stands in the field after typing the last character of typed, and the selection there.
std::string typedInto(const TaxonFormatter& formatter, const std::string& typed) {
    std::string text = typed;
    std::optional<TextRange> selection = TextRange{typed.size(), 0};
    const std::string before = typed.substr(0, typed.size() - 1);
    if (formatter.isPartialStringValid(text, selection, before, {before.size(), 0})) {
        EXPECT_EQ(text, typed);
        return text;
    }
    EXPECT_EQ(selection->location, typed.size());
    EXPECT_EQ(selection->location + selection->length, text.size());
    return text.substr(0, selection->location) + "[" + text.substr(selection->location) + "]";
}

TEST(TaxonFormatter, CompletesWhatIsTyped) {
    const TaxonFormatter formatter =
        formatterOf({"Globigerina", "Globorotalia", "Cafe", "Cafe\u0301ia", "Abies", "Abies alba",
                     "\u00C9chinops e\u0301trange"});
    const struct {
        const char* what;
        std::string typed;
        std::string shown;
    } rows[] = {
        {"the first in order", "Glob", "Glob[igerina]"},
        {"the only one", "Globo", "Globo[rotalia]"},
        {"case counts", "glob", "glob"},
        {"a whole name stays", "Abies", "Abies"},
        {"then the longer one", "Abies ", "Abies [alba]"},
        {"nothing known", "Globulina", "Globulina"},
        {"an accent is not the next character", "Cafe\u0301", "Cafe\u0301[ia]"},
        {"beyond ASCII", "\u00C9", "\u00C9[chinops e\u0301trange]"},
        {"not within a character", "\u00C9chinops e", "\u00C9chinops e"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(typedInto(formatter, row.typed), row.shown) << row.what;
    }
}

TEST(TaxonFormatter, LeavesOtherEditsAlone) {
    const TaxonFormatter formatter = formatterOf({"Globorotalia"});
    const struct {
        const char* what;
        std::string text;
        std::optional<TextRange> selection;
        TextRange before;
    } rows[] = {
        {"emptied", "", TextRange{0, 0}, {1, 0}},
        {"the proposed tail deleted", "Globo", TextRange{5, 0}, {5, 7}},
        {"the caret within the text", "Globo", TextRange{3, 0}, {2, 0}},
        {"something selected", "Globo", TextRange{4, 1}, {2, 0}},
        {"no selection", "Globo", std::nullopt, {4, 0}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        std::string text = row.text;
        std::optional<TextRange> selection = row.selection;
        EXPECT_TRUE(formatter.isPartialStringValid(text, selection, "Glob", row.before));
        EXPECT_EQ(text, row.text);
        EXPECT_EQ(selection, row.selection);
    }
}

TEST(TaxonFormatter, LearnsNamesAndForgetsNone) {
    ObjectContext context;
    TaxonFormatter formatter;
    context.addObserver([&](const ChangeSet& set) { formatter.updatedTaxonNotification(set); });
    MockCensus census;
    census.name = "Plot";
    census.taxa = {{1, "Abies"}, {2, "Picea"}};
    importCensuses(context, {census});
    context.announceChanges();
    EXPECT_EQ(formatter.taxonNames(), (TaxonFormatter::Names{"Abies", "Picea"}));

    editName(context, context.taxa()[0], "Abies alba");
    addTaxon(context, context.censuses()[0]);  // without a name
    context.announceChanges();
    deleteCensuses(context, context.censuses());
    context.announceChanges();
    EXPECT_EQ(formatter.taxonNames(), (TaxonFormatter::Names{"Abies", "Abies alba", "Picea"}));
}

TEST(TaxonFormatter, LearnsFromManyNewTaxaLittleByLittle) {
    constexpr int taxa = 20'000;
    ObjectContext context;
    TaxonFormatter formatter;
    context.addObserver([&](const ChangeSet& set) { formatter.updatedTaxonNotification(set); });
    MockCensus census;
    for (int i = 0; i < taxa; ++i) census.taxa.push_back({1, std::to_string(i) + " alba"});
    importCensuses(context, {census});
    context.announceChanges();
    deleteCensuses(context, context.censuses());
    context.announceChanges();
    const auto completes = [&formatter](std::string text, const std::string& whole) {
        std::optional<TextRange> selection = TextRange{text.size(), 0};
        formatter.isPartialStringValid(text, selection, "", {0, 0});
        return text == whole;
    };
    EXPECT_TRUE(completes("12 ", "12 alba"));
    EXPECT_FALSE(completes("19990 ", "19990 alba"));
    int turns = 0;
    while (formatter.learnSome()) ++turns;
    EXPECT_GE(turns, 1);
    EXPECT_LE(turns, 10);
    EXPECT_TRUE(completes("19990 ", "19990 alba"));
    EXPECT_EQ(formatter.taxonNames().size(), std::size_t{taxa});
}

}  // namespace
}  // namespace zorvel
