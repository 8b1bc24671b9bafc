#include "platform/event_loop_turns.h"

#include <QMetaObject>
#include <utility>

namespace zorvel {

void EventLoopTurns::atTurnEnd(std::function<void()> action) {
    QMetaObject::invokeMethod(this, std::move(action), Qt::QueuedConnection);
}

}  // namespace zorvel
