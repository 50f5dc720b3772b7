// No lack of memory here: the libraries do not use the operator new of the program that loads them.
#include "support/failing_new.h"

FailingNew::FailingNew(long) {}
FailingNew::~FailingNew() = default;

bool FailingNew::happened() const {
    return false;
}

long liveAllocations() {
    return 0;
}

long allocatedBytes() {
    return 0;
}
