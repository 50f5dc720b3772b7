#include "library.h"

#include "efihost/error.h"

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace efihost {

// Made absolute, as a bare file name would be searched for among the system's libraries.
void* loadLibrary(const std::filesystem::path& path) {
    const std::filesystem::path file = std::filesystem::absolute(path);
#ifdef _WIN32
    void* library = LoadLibraryW(file.c_str());
    if (!library) throw LoadError(file.string() + ": cannot be loaded");
#else
    void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) throw LoadError(dlerror());
#endif
    return library;
}

void* findSymbol(void* library, const char* name) {
#ifdef _WIN32
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
#else
    return dlsym(library, name);
#endif
}

}  // namespace efihost
