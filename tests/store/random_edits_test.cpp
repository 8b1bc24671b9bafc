// Random edits, steps, undo, redo, frozen copies and announcements of a context, beside the same on
// plain lists, where a step is two whole states. Now and then they are written to a file, which
// then holds exactly the records and the names in use.
#include <algorithm>
#include <functional>
#include <map>
#include <random>
#include <set>

#include "tests/store/plain_project.h"
#include "tests/store/project_file_support.h"

namespace zorvel {
namespace {

std::map<RecordId, PlainCensus> byId(const PlainProject& project) {
    std::map<RecordId, PlainCensus> censuses;
    for (const PlainCensus& census : project) censuses.emplace(census.id, census);
    return censuses;
}

// How each census that differs was and is; the same as announced, or as the states tell.
using Differences =
    std::map<RecordId, std::pair<std::optional<PlainCensus>, std::optional<PlainCensus>>>;

Differences differences(const PlainProject& before, const PlainProject& after) {
    Differences all;
    for (const auto& [id, census] : byId(before)) all[id].first = census;
    for (const auto& [id, census] : byId(after)) all[id].second = census;
    for (auto one = all.begin(); one != all.end();) {
        one = one->second.first == one->second.second ? all.erase(one) : std::next(one);
    }
    return all;
}

Differences announced(const ChangeSet& changes) {
    Differences all;
    for (const CensusChange& change : changes) {
        if (change.before) all[change.census].first = plainCensus(*change.before);
        if (change.after) all[change.census].second = plainCensus(*change.after);
    }
    return all;
}

class Twins {
  public:
    explicit Twins(unsigned seed) : random_(seed) {
        context_.addObserver([this](const ChangeSet& changes) { heard_ = announced(changes); });
    }

    [[nodiscard]] const ObjectContext& context() const { return context_; }
    [[nodiscard]] std::vector<std::string> namesInUse() const {
        std::set<std::string> names;
        for (const PlainCensus& census : plain_) {
            for (const PlainTaxon& taxon : census.taxa) {
                if (taxon.name) names.insert(*taxon.name);
            }
        }
        return {names.begin(), names.end()};
    }

    void actOnce() {
        const std::uint64_t revision = context_.revision();
        const auto before = context_.frozenCopy();
        act();
        EXPECT_TRUE(context_.changesSince(*before).empty() || context_.revision() > revision);
    }

    void compare() {
        ASSERT_TRUE(plainProject(context_) == plain_);
        ASSERT_EQ(context_.isStepOpen(), depth_ > 0);
        ASSERT_EQ(context_.canUndo(), depth_ == 0 && !done_.empty());
        ASSERT_EQ(context_.canRedo(), depth_ == 0 && !undone_.empty());
        ASSERT_EQ(context_.undoName(), context_.canUndo() ? done_.back().name : "");
        ASSERT_EQ(context_.redoName(), context_.canRedo() ? undone_.back().name : "");
    }

    void compareCopies() const {
        for (const Copy& copy : copies_) ASSERT_TRUE(plainProject(*copy.frozen) == copy.plain);
    }

    void undoAndRedoAll() {
        while (depth_ > 0) endStep();
        while (context_.canRedo()) context_.redo();
        while (!undone_.empty()) redo();
        ASSERT_TRUE(plainProject(context_) == plain_);
        while (context_.canUndo()) context_.undo();
        ASSERT_TRUE(plainProject(context_) == (done_.empty() ? plain_ : done_.front().before));
        while (context_.canRedo()) context_.redo();
        ASSERT_TRUE(plainProject(context_) == plain_);
    }

  private:
    struct Step {
        std::string name;
        PlainProject before;
        PlainProject after;
    };
    struct Copy {
        std::shared_ptr<const ObjectContext> frozen;
        PlainProject plain;
    };

    std::size_t below(std::size_t bound) { return random_() % bound; }

    void act() {
        const std::size_t action = below(100);
        if (action < 4) return beginStep();
        if (action < 8) return endStep();
        if (action < 16) return undo();
        if (action < 22) return redo();
        if (action < 26) return announce();
        if (action < 29) return takeCopy();
        if (action < 30) return goBack();
        if (action == 30 && below(4) == 0) return adopt();
        edit([this] { editOnce(); });
    }

    // A change outside any step is a step without a name.
    void edit(const std::function<void()>& change) {
        const PlainProject before = plain_;
        change();
        if (depth_ == 0) push({"", before, plain_});
    }

    void push(Step step) {
        if (step.before == step.after) return;
        undone_.clear();
        done_.push_back(std::move(step));
    }

    void beginStep() {
        const std::string name = "step " + std::to_string(below(9));
        context_.beginStep(name);
        if (depth_++ == 0) open_ = {name, plain_, {}};
    }

    void endStep() {
        context_.endStep();
        if (depth_ == 0 || --depth_ > 0) return;
        open_.after = plain_;
        push(open_);
    }

    void undo() {
        context_.undo();
        if (depth_ > 0 || done_.empty()) return;
        plain_ = done_.back().before;
        undone_.push_back(done_.back());
        done_.pop_back();
    }

    void redo() {
        context_.redo();
        if (depth_ > 0 || undone_.empty()) return;
        plain_ = undone_.back().after;
        done_.push_back(undone_.back());
        undone_.pop_back();
    }

    void announce() {
        heard_.clear();
        context_.announceChanges();
        EXPECT_TRUE(heard_ == differences(lastHeard_, plain_));
        lastHeard_ = plain_;
    }

    void takeCopy() {
        if (copies_.size() == 20) copies_.erase(copies_.begin());
        copies_.push_back({context_.frozenCopy(), plain_});
    }

    void goBack() {
        if (copies_.empty()) return;
        const Copy& copy = copies_[below(copies_.size())];
        edit([&] {
            context_.changeTo(*copy.frozen);
            plain_ = copy.plain;
        });
    }

    void adopt() {
        if (copies_.empty()) return;
        const Copy& copy = copies_[below(copies_.size())];
        context_.adopt({copy.frozen->blocks(), context_.records().names});
        plain_ = lastHeard_ = copy.plain;
        done_.clear();
        undone_.clear();
        depth_ = 0;
    }

    void editOnce() {
        const std::size_t action = below(20);
        if (plain_.empty() || action == 0) return insertCensus();
        if (action == 1) return insertManyCensuses();
        if (action == 2) return deleteCensuses();
        PlainCensus& plain = plain_[below(plain_.size())];
        const Census census = *context_.census(plain.id);
        if (action == 3) return changeCensus(census, plain);
        if (plain.taxa.empty() || action < 9) return insertTaxa(census, plain);
        if (action < 13) return deleteTaxa();
        if (action < 15) return include();
        const std::size_t place = below(plain.taxa.size());
        const Zorvel taxon = census.taxa()[place];
        if (action == 15) {
            const std::optional<SharedText> name = randomName();
            plain.taxa[place].name = plainName(name);
            return context_.setName(taxon, name);
        }
        plain.taxa[place].abundance = static_cast<std::int64_t>(below(3));
        context_.setAbundance(taxon, plain.taxa[place].abundance);
    }

    std::optional<SharedText> randomName() {
        const std::size_t number = below(50);
        if (number == 0) return std::nullopt;
        return SharedText(number == 1 ? "" : std::to_string(number));
    }

    std::vector<TaxonValues> randomValues(std::size_t most) {
        std::vector<TaxonValues> values(below(most));
        for (TaxonValues& value : values) {
            value.name = randomName();
            value.abundance = static_cast<std::int64_t>(below(9));
        }
        return values;
    }

    static void addPlain(PlainCensus& plain, const std::vector<Zorvel>& handles,
                         const std::vector<TaxonValues>& values) {
        ASSERT_EQ(handles.size(), values.size());
        for (std::size_t i = 0; i < values.size(); ++i) {
            plain.taxa.push_back({handles[i].id(), plainName(values[i].name), values[i].abundance});
        }
    }

    void insertCensus() {
        const std::vector<TaxonValues> values = randomValues(below(4) == 0 ? 600 : 20);
        const Census census = context_.insertCensus({}, values);
        addPlain(plain_.emplace_back(PlainCensus{census.id(), {}, 0, {}}), census.taxa(), values);
    }

    void insertManyCensuses() {
        context_.beginStep("");
        for (std::size_t i = below(100); i > 0; --i) {
            plain_.push_back({context_.insertCensus().id(), {}, 0, {}});
        }
        context_.endStep();
    }

    // Some of a run, which may go over many chunks of the list.
    void deleteCensuses() {
        std::vector<Census> gone;
        const std::size_t first = below(plain_.size());
        const std::size_t count = below(3) == 0 ? plain_.size() : 3;
        const PlainProject before = plain_;
        plain_.clear();
        for (std::size_t i = 0; i < before.size(); ++i) {
            const bool stays = i < first || i >= first + count || below(4) == 0;
            if (stays) plain_.push_back(before[i]);
            if (!stays) gone.push_back(*context_.census(before[i].id));
        }
        std::shuffle(gone.begin(), gone.end(), random_);
        context_.deleteCensuses(gone);
    }

    void changeCensus(const Census& census, PlainCensus& plain) {
        if (below(2) == 0) {
            plain.name = std::to_string(below(5));
            context_.setName(census, *plain.name);
        } else {
            plain.latitude = static_cast<double>(below(3));
            context_.setLatitude(census, plain.latitude);
        }
    }

    void insertTaxa(const Census& census, PlainCensus& plain) {
        const std::vector<TaxonValues> values = randomValues(below(4) == 0 ? 600 : 3);
        addPlain(plain, context_.insertTaxa(census, values), values);
    }

    // Taxa of all censuses, each with that chance in a thousand, in no order and some twice.
    template <class Change>
    std::vector<Zorvel> pick(std::size_t chance, Change change) {
        std::vector<Zorvel> picked;
        for (PlainCensus& plain : plain_) {
            const std::vector<Zorvel> taxa = context_.census(plain.id)->taxa();
            for (std::size_t i = taxa.size(); i > 0; --i) {
                if (below(1000) >= chance) continue;
                picked.push_back(taxa[i - 1]);
                change(plain.taxa, plain.taxa.begin() + static_cast<std::ptrdiff_t>(i - 1));
            }
        }
        if (!picked.empty()) picked.push_back(picked.front());
        std::shuffle(picked.begin(), picked.end(), random_);
        return picked;
    }

    void deleteTaxa() {
        const std::size_t chance = below(4) == 0 ? 900 : 5;
        context_.deleteTaxa(pick(chance, [](auto& taxa, auto taxon) { taxa.erase(taxon); }));
    }

    void include() {
        const bool on = below(2) == 0;
        context_.setInclude(pick(5, [&](auto&, auto taxon) { taxon->include = on; }), on);
    }

    std::mt19937 random_;
    ObjectContext context_;
    PlainProject plain_;
    std::vector<Step> done_;
    std::vector<Step> undone_;
    Step open_;
    int depth_ = 0;
    std::vector<Copy> copies_;
    PlainProject lastHeard_;
    Differences heard_;
};

using RandomEdits = ProjectFileTest;

TEST_F(RandomEdits, GiveWhatPlainListsGiveAndReachTheFile) {
    for (unsigned seed = 1; seed <= 10; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Twins twins(seed);
        auto file = created(path("p.zorvel"), twins.context());
        for (int action = 0; action < 200; ++action) {
            twins.actOnce();
            ASSERT_NO_FATAL_FAILURE(twins.compare()) << action;
            if (action % 10 != 9) continue;
            ASSERT_FALSE(file->write(twins.context().frozenCopy()));
            expectHolds(path("p.zorvel"), twins.context());
            ASSERT_EQ(rows(path("p.zorvel"), "SELECT text FROM name ORDER BY text"),
                      twins.namesInUse());
            if (HasFailure()) return;
            if (action % 50 != 49) continue;
            file.reset();
            file = std::move(opened(path("p.zorvel")).file);
        }
        ASSERT_NO_FATAL_FAILURE(twins.compareCopies());
        ASSERT_NO_FATAL_FAILURE(twins.undoAndRedoAll());
        ASSERT_NO_FATAL_FAILURE(twins.compareCopies());
    }
}

}  // namespace
}  // namespace zorvel
