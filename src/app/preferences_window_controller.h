// The window of the preferences: not modal, nothing that the program would stay for. Main thread.
#pragma once

#include "app/preferences_view_controller.h"
#include "ui/kit/window_placement.h"

namespace zorvel {

class PreferencesWindowController : public PlacedWindow {
    Q_OBJECT
  public:
    // The panel must outlive the window.
    explicit PreferencesWindowController(ColorPanel& colors);

    [[nodiscard]] PreferencesViewController& viewController() { return *viewController_; }

  signals:
    void quitRequested();
    void preferencesRequested();

  private:
    PreferencesViewController* viewController_;
};

}  // namespace zorvel
