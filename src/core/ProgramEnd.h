#pragma once

#include <functional>

// "Ends the program at once" goes through here, so tests can observe it instead of exiting.
namespace ProgramEnd {

void request();
// Replaces what request() does; an empty function restores the default (quit the event
// loop, or exit when there is none).
void setHandler(std::function<void()> handler);

} // namespace ProgramEnd
