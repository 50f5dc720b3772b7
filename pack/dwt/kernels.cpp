#include "dwt/kernels.h"

#include <cstdlib>
#include <cstring>

namespace undula {

extern const Kernels plain;
extern const Kernels narrow;
extern const Kernels avx2;
extern const Kernels avx512;

namespace {

struct Available {
    const Kernels* list[5] = {};
    int count = 0;
    const Kernels* chosen = nullptr;

    Available() {
#if defined(__x86_64__)
        if (__builtin_cpu_supports("avx512f")) list[count++] = &avx512;
        if (__builtin_cpu_supports("avx2")) list[count++] = &avx2;
#endif
// The x87 unit does one number at a time.
#if !defined(__i386__) || defined(__SSE2_MATH__)
        list[count++] = &narrow;
#endif
        list[count++] = &plain;
        chosen = list[0];
        if (const char* wanted = std::getenv("UNDULA_KERNELS")) choose(wanted);
    }

    bool choose(const char* name) {
        for (int i = 0; i < count; ++i) {
            if (std::strcmp(list[i]->name, name) != 0) continue;
            chosen = list[i];
            return true;
        }
        return false;
    }
};

Available& available() {
    static Available found;
    return found;
}

}  // namespace

const Kernels& kernels() {
    return *available().chosen;
}

const Kernels* const* availableKernels() {
    return available().list;
}

bool useKernels(const char* name) {
    return available().choose(name);
}

}  // namespace undula
