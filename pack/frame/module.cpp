#include "frame/module.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace {
void* handle = nullptr;
}  // namespace

namespace undula {
void* moduleHandle() {
    return handle;
}
}  // namespace undula

#if defined(_WIN32)

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) handle = module;
    return TRUE;
}

#else

// Runs before the other load-time initialisers, as an entry point does.
__attribute__((constructor(101))) static void storeHandle() {
    Dl_info info;
    if (dladdr(reinterpret_cast<const void*>(&storeHandle), &info) != 0) handle = info.dli_fbase;
}

#endif
