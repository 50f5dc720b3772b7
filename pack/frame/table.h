// The table of functions that the pack publishes.
#pragma once

namespace undula {

// Fills theEfi and the name records. Called once, when the library is loaded.
void fillTable();

}  // namespace undula
