// Calls of several threads take turns. All of them are made by one host.
#pragma once

#include <mutex>

#include "efihost/host.h"

namespace undula {

// Makes the host, and sees to it that a process which is forked during a call has one, too. Called once.
void prepareHost();

efihost::Host& host();

// A thread waits for its turn without the interpreter lock, which the thread that has the turn may need
// for a user function, and has the handlers of signals called meanwhile. While the interpreter ends
// nothing waits, as that thread may sleep for ever.
std::unique_lock<efihost::CallLock> takeTurn();

// Returns false, or raises what the handler of a pending signal raises, such as KeyboardInterrupt. For a
// thread that has the turn. Packs poll often and taking the interpreter lock is slow, so most polls only
// look at the clock.
bool checkInterrupt();

}  // namespace undula
