// A small project in the states that it goes through while someone works on it, for tests that
// break off the writing of any of them.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "store/object_context.h"

namespace zorvel {

class ProjectStory {
  public:
    struct State {
        std::string name;
        std::shared_ptr<const ObjectContext> records;
    };

    ProjectStory() {
        context_.insertCensus({SharedText("North"), 51.5, -0.25, {}, TimeStamp()}, taxa(40, "a"));
        const Census south = context_.insertCensus({}, taxa(200, "b"));
        note("the start");
        const Census hill = context_.insertCensus();
        context_.setName(hill, SharedText("Hill"));
        context_.setName(context_.insertTaxon(hill), SharedText("Abies alba"));
        note("an insertion");
        context_.setAbundance(south.taxa()[150], 12345);
        context_.setInclude({south.taxa()[7]}, false);
        context_.setNotes(hill, SharedText("steep"));
        note("edits");
        context_.deleteTaxa({south.taxa()[3]});
        context_.deleteCensuses({hill});
        note("deletions");
        context_.undo();
        note("an undo");
        {
            const UndoStep step(context_, "Import");
            for (int i = 0; i < 3; ++i) {
                context_.insertCensus({SharedText("Plot " + std::to_string(i)), 0, 0, {}, {}},
                                      taxa(120, "species of plot " + std::to_string(i % 2) + " "));
            }
        }
        note("an import");
        context_.undo();
        note("an import undone");
    }

    // In order; each is a frozen copy of the same context.
    [[nodiscard]] const std::vector<State>& states() const { return states_; }

  private:
    static std::vector<TaxonValues> taxa(int count, const std::string& stem) {
        std::vector<TaxonValues> values(static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            TaxonValues& taxon = values[static_cast<std::size_t>(i)];
            if (i % 10 != 9) taxon.name = SharedText(stem + std::to_string(i));
            taxon.abundance = std::int64_t{17} * i;
        }
        return values;
    }
    void note(const std::string& name) { states_.push_back({name, context_.frozenCopy()}); }

    ObjectContext context_;
    std::vector<State> states_;
};

}  // namespace zorvel
