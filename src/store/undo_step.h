// A step of undo for as long as this object lives.
#pragma once

#include <string>
#include <utility>

#include "store/object_context.h"

namespace zorvel {

class UndoStep {
  public:
    UndoStep(ObjectContext& context, std::string name) : context_(context) {
        context_.beginStep(std::move(name));
    }
    ~UndoStep() { context_.endStep(); }
    UndoStep(const UndoStep&) = delete;
    UndoStep& operator=(const UndoStep&) = delete;

  private:
    ObjectContext& context_;
};

}  // namespace zorvel
