// Help > About Zorvel.
#pragma once

class QWidget;

namespace zorvel {

// Does not wait; the box goes with its window.
void showAbout(QWidget* window);

}  // namespace zorvel
