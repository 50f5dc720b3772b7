// The stack of the interpreter, which nested calls use up faster than Octave expects.
#pragma once

namespace undula {

// Raises an Octave error when a call of the pack, or what it calls back, might not fit.
void requireStack();

}  // namespace undula
