// Turns of the event loop until something has come about.
#pragma once

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>

namespace zorvel {

template <class Condition>
bool waitUntil(Condition condition) {
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.elapsed() > 20000) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return true;
}

}  // namespace zorvel
