// Lack of memory on demand: the global operator new of the test program can be told to fail. Where
// it answers null (std::nothrow), it hands out memory full of signalling NaNs.
#pragma once

#include <cstddef>

// While it lives, the k-th allocation by the operator new that answers null (std::nothrow), of
// whatever library, does answer null; k counts from 1. One at a time, on one thread.
class FailingNew {
 public:
    explicit FailingNew(long k);
    ~FailingNew();
    FailingNew(const FailingNew&) = delete;
    FailingNew& operator=(const FailingNew&) = delete;

    // Whether there were as many allocations as that.
    bool happened() const;
};

// From now on the operator new that may answer null does so for more bytes than that.
void limitAllocations(std::size_t bytes);

// How often it has done so.
long refusedAllocations();

// Memory from any operator new that has not been given back.
long liveAllocations();

// What has been asked of any operator new so far, in bytes.
long allocatedBytes();
