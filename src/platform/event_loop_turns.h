// The turns of the desktop: what is to happen at the end of a turn happens in the next turn of the
// event loop, once, in the order given; nothing of it happens after this object has gone. Main
// thread.
#pragma once

#include <QObject>
#include <functional>

#include "model/turn_end.h"

namespace zorvel {

class EventLoopTurns : public QObject, public TurnEnd {
  public:
    void atTurnEnd(std::function<void()> action) override;
};

}  // namespace zorvel
