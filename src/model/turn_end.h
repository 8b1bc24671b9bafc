// When a turn of work ends: the moment at which changes of a project are announced together. The
// desktop answers with its event loop; the command-line tool has no turns.
#pragma once

#include <functional>

namespace zorvel {

class TurnEnd {
  public:
    TurnEnd() = default;
    TurnEnd(const TurnEnd&) = delete;
    TurnEnd& operator=(const TurnEnd&) = delete;
    virtual ~TurnEnd() = default;

    // Calls action once, on the same thread, when what runs now has returned. An action that is
    // still waiting when its caller goes must do nothing: the caller sees to that.
    virtual void atTurnEnd(std::function<void()> action) = 0;
};

}  // namespace zorvel
