// Random edits, undo and redo, written now and then: after each write the file holds exactly the
// records and the names in use.
#include <algorithm>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "tests/store/project_file_support.h"

namespace zorvel {
namespace {

class Editor {
  public:
    explicit Editor(unsigned seed) : random_(seed) {}

    void edit(ObjectContext& context) {
        const std::vector<Census> censuses = context.censuses();
        const unsigned action = below(16);
        if (censuses.empty() || action == 0) return insertCensus(context);
        const Census census = censuses[below(censuses.size())];
        const std::vector<Zorvel> taxa = census.taxa();
        if (action == 1) return context.deleteCensuses({census});
        if (action == 2) return context.setName(census, name());
        if (action == 3) return context.setLatitude(census, below(2) == 0 ? 0.0 : -0.0);
        if (action <= 6) return goBack(context);
        if (taxa.empty() || action <= 9) {
            context.setName(context.insertTaxon(census), name());
            return;
        }
        editTaxa(context, taxa, action);
    }

  private:
    unsigned below(std::size_t bound) { return static_cast<unsigned>(random_() % bound); }

    std::optional<SharedText> name() {
        const unsigned number = below(12);
        if (number == 0) return std::nullopt;
        return SharedText(number == 1 ? "" : "name " + std::to_string(number));
    }

    void goBack(ObjectContext& context) {
        const unsigned steps = below(4);
        for (unsigned i = 0; i < steps; ++i) context.undo();
        if (below(2) == 0) context.redo();
    }

    void insertCensus(ObjectContext& context) {
        std::vector<TaxonValues> taxa(below(700));
        for (TaxonValues& taxon : taxa) taxon.name = name();
        context.insertCensus({}, taxa);
    }

    // A run of taxa, which may cross the bounds of chunks.
    void editTaxa(ObjectContext& context, const std::vector<Zorvel>& taxa, unsigned action) {
        const std::size_t first = below(taxa.size());
        const std::size_t end = std::min<std::size_t>(taxa.size(), first + 1 + below(40));
        for (std::size_t i = first; i < end; ++i) {
            if (action <= 11) {
                context.deleteTaxa({taxa[i]});
            } else if (action <= 13) {
                context.setName(taxa[i], name());
            } else {
                context.setAbundance(taxa[i], below(5));
                context.setInclude({taxa[i]}, below(2) == 0);
            }
        }
    }

    std::mt19937 random_;
};

std::vector<std::string> namesInUse(const ObjectContext& context) {
    std::set<std::string> names;
    for (const Zorvel& taxon : context.taxa()) {
        if (taxon.name()) names.insert(taxon.name()->str());
    }
    return {names.begin(), names.end()};
}

class ProjectFileEdits : public ProjectFileTest, public testing::WithParamInterface<unsigned> {
  protected:
    void expectWhole(const ObjectContext& context) {
        expectHolds(path("p.zorvel"), context);
        EXPECT_EQ(rows(path("p.zorvel"), "SELECT text FROM name ORDER BY text"),
                  namesInUse(context));
    }
};

TEST_P(ProjectFileEdits, ReachTheFile) {
    Editor editor(GetParam());
    ObjectContext context;
    auto file = created(path("p.zorvel"), context);
    for (int round = 0; round < 40; ++round) {
        for (int i = 0; i < 8; ++i) editor.edit(context);
        ASSERT_FALSE(file->write(context.frozenCopy()));
        ASSERT_NO_FATAL_FAILURE(expectWhole(context)) << "round " << round;
        if (HasFailure()) return;
        if (round % 10 == 9) {
            file.reset();
            Opened anew = opened(path("p.zorvel"));
            context.adopt(std::move(anew.records));
            file = std::move(anew.file);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, ProjectFileEdits, testing::Values(1U, 2U, 3U));

}  // namespace
}  // namespace zorvel
