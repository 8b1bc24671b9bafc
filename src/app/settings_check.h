// Looks at the settings file once, at the start: whatever it is like, the program runs. Main
// thread.
#pragma once

namespace zorvel {

// A file that cannot be parsed is copied beside itself, as NAME.damaged, before the next setting
// that is stored replaces it. The console tells of this, and of settings that cannot be read or
// stored.
void checkSettings();

}  // namespace zorvel
