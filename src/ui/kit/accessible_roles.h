// What a screen reader takes the program's own widgets for, where their base class says too little:
// the message strip is an alert, the popover a balloon of help. Main thread.
#pragma once

namespace zorvel {

// By whoever makes such a widget, before the first is asked about; again does nothing.
void installAccessibleRoles();

}  // namespace zorvel
