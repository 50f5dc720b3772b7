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
    const std::uintptr_t beforePage = (page - reinterpret_cast<std::uintptr_t>(block) % page) % page;
    const std::size_t wholePages = (bytes - beforePage) / page * page;
    static_cast<void>(madvise(static_cast<std::byte*>(block) + beforePage, wholePages, MADV_HUGEPAGE));
#endif
}

}  // namespace undula
