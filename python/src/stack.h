// The stack of the thread, which nested calls and nested arguments use up faster than Python expects.
#pragma once

namespace undula {

// Raises RecursionError when a call of the pack, or the next level of an argument, might not fit.
void requireStack();

}  // namespace undula
