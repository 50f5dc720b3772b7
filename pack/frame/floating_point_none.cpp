// Where the processor tells nothing of faults, and rounds to nearest always.
#include "frame/floating_point.h"

namespace undula {

FloatingPointFrame::FloatingPointFrame() = default;
FloatingPointFrame::~FloatingPointFrame() = default;

const char* pendingFault() {
    return nullptr;
}
unsigned raisedFaults() {
    return 0;
}

HostServiceScope::HostServiceScope() = default;
HostServiceScope::~HostServiceScope() = default;
void HostServiceScope::keepFaults() {}

}  // namespace undula
