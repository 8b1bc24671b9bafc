// All by which the program asks the person at the screen, together: handed down from main().
#pragma once

namespace zorvel {

class Alerts;
class OpenPanel;
class SavePanel;

// Each must outlive whoever is given these.
struct Panels {
    OpenPanel& open;
    SavePanel& save;
    Alerts& alerts;
};

}  // namespace zorvel
