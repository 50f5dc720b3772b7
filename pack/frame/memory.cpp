#include "frame/memory.h"

#if defined(__linux__)
#include <sys/mman.h>
#endif

namespace undula {

void adviseLargePages([[maybe_unused]] void* block, [[maybe_unused]] std::size_t bytes) {
#if defined(__linux__)
    constexpr std::size_t worthwhile = std::size_t{4} << 20;
    constexpr std::uintptr_t page = 4096;
    if (bytes < worthwhile) return;
    const auto start = (reinterpret_cast<std::uintptr_t>(block) + page - 1) / page * page;
    const auto end = (reinterpret_cast<std::uintptr_t>(block) + bytes) / page * page;
    static_cast<void>(madvise(reinterpret_cast<void*>(start), end - start, MADV_HUGEPAGE));
#endif
}

}  // namespace undula
