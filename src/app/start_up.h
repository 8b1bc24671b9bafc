// What the program does once, before its first window.
#pragma once

namespace zorvel {

// Names, icon, registered preferences, and the calculator with its table. Needs a QApplication.
void setUpApplication();

}  // namespace zorvel
