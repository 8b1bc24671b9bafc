// What can be undone and redone: the steps since the project was opened, each the changes between
// its beginning and its end. It keeps blocks and applies nothing itself. For this folder only.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "store/change_set.h"

namespace zorvel {

class History {
  public:
    // Steps nest; the outermost one has the name and becomes one entry, if anything changed.
    void beginStep(std::string name);
    void endStep();
    [[nodiscard]] bool isStepOpen() const { return depth_ > 0; }

    // Changes that were made. Outside a step they are one by themselves, without a name.
    void record(ChangeSet changes);

    [[nodiscard]] bool canUndo() const { return depth_ == 0 && !done_.empty(); }
    [[nodiscard]] bool canRedo() const { return depth_ == 0 && !undone_.empty(); }
    // Empty where there is no step, or it has no name.
    [[nodiscard]] std::string undoName() const { return canUndo() ? done_.back().name : ""; }
    [[nodiscard]] std::string redoName() const { return canRedo() ? undone_.back().name : ""; }

    // The changes to make now. Only where canUndo(), canRedo().
    ChangeSet undo();
    ChangeSet redo();

    void forget();

  private:
    struct Step {
        std::string name;
        ChangeSet changes;
    };
    void push(Step step);

    std::vector<Step> done_;
    std::vector<Step> undone_;
    int depth_ = 0;
    std::string openName_;
    ChangeLog open_;
};

}  // namespace zorvel
