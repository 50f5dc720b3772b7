// Where the x87 unit does the arithmetic: faults trap, and the host throws them.
#include "frame/floating_point.h"

// In place of the library's, for which the root of a negative number is no fault.
extern "C" double sqrt(double x) {
    asm volatile("fsqrt" : "+t"(x));
    return x;
}

namespace undula {

namespace {

// Invalid operation, division by zero and overflow trap; 64 bits of precision; round to nearest.
constexpr unsigned short packControlWord = 0x372;

// In the status word: division by zero, overflow, and invalid operations, those of a full or an
// empty stack among them.
constexpr unsigned allFaults = 0x4d;

// Whether a call is in progress, and the faults of that call that have not been thrown.
bool insideFrame = false;
unsigned setAside = 0;

unsigned statusWord() {
    unsigned short word = 0;
    asm volatile("fnstsw %0" : "=m"(word));
    return word & allFaults;
}

void loadControlWord(const unsigned short& word) {
    asm volatile("fldcw %0" : : "m"(word));
}

// The unit reports a fault when it is used the next time. That must not be by the host, nor must the
// host's fault be met by the pack. A host masks what it cannot throw, and it or a user function may
// change modes: from here on the pack's are in force. For a worker without the frame, faults are
// forgotten, and the modes are its caller's.
void setFaultsAside() {
    const unsigned faults = statusWord();
    if (!insideFrame) {
        asm volatile("fnclex");
        return;
    }
    setAside |= faults;
    if (faults != 0) asm volatile("fninit");
    loadControlWord(packControlWord);
}

}  // namespace

FloatingPointFrame::FloatingPointFrame() : controlWord(0), outerFrame(insideFrame), outerFaults(setAside) {
    insideFrame = true;
    setAside = 0;
    asm volatile("fnclex");
    asm volatile("fnstcw %0" : "=m"(controlWord));
    loadControlWord(packControlWord);
}

FloatingPointFrame::~FloatingPointFrame() {
    insideFrame = outerFrame;
    setAside = outerFaults;
    asm volatile("fninit");
    loadControlWord(controlWord);
}

// A fault that the host could not throw is in the status word. What is pending is reported here.
unsigned raisedFaults() {
    asm volatile("fwait");
    return statusWord() | setAside;
}

HostServiceScope::HostServiceScope() {
    setFaultsAside();
}
HostServiceScope::~HostServiceScope() {
    setFaultsAside();
}

// They are set aside, and reported in any case.
void HostServiceScope::keepFaults() {}

}  // namespace undula
