// Makes calls possible in a child process that was forked while another thread was in a call.
#if !defined(_WIN32)

#include <pthread.h>

#include "efihost/call_lock.h"
#include "values.h"

namespace {

// The list of values is held only for a moment at a time, so a fork waits for it. A call may take long,
// or need a lock that the forking thread holds, so a fork does not wait for its end.
void beforeFork() {
    efihost::registry().lock();
}

void inParent() {
    efihost::registry().unlock();
}

void inChild() {
    efihost::registry().unlock();
    efihost::CallLock::instance().leaveToThisThread();
}

// Installed when the library is loaded.
[[maybe_unused]] const int installed = pthread_atfork(&beforeFork, &inParent, &inChild);

}  // namespace

#endif
