// Callers and hosts that do as they please with the floating-point unit.
#pragma once

// The floating-point state of a caller who likes it unusual: rounds upward, downward or towards zero,
// flushes denormals to zero, has some flags raised, lets faults trap. Put back to normal at the end. On
// Windows, where a call gives back the x87 unit's control word and no more, that word.
class UnusualCaller {
 public:
    static const int kinds;

    explicit UnusualCaller(int kind = 0);
    ~UnusualCaller();
    UnusualCaller(const UnusualCaller&) = delete;
    UnusualCaller& operator=(const UnusualCaller&) = delete;

    // Whether all of it is as it was, bit by bit.
    bool undisturbed() const;

 private:
    int kind_;
    unsigned state_;
};

// Raises the flags of division by zero, overflow and invalid operation; by arithmetic, as the C library
// may raise a flag where the pack does not look.
void raiseFaults();
