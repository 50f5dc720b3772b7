#include "library.h"

#include <system_error>

#include "efihost/error.h"

#ifdef _WIN32
#include <array>
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace efihost {

namespace {

// A bare file name is searched for among the system's libraries.
void* load(const std::filesystem::path& file) {
#ifdef _WIN32
    void* library = LoadLibraryW(file.c_str());
    if (!library) throw LoadError(file.string() + ": cannot be loaded");
#else
    void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) throw LoadError(dlerror());
#endif
    return library;
}

// The file that the host was loaded from; empty when the system does not say.
std::filesystem::path ownFile() {
#ifdef _WIN32
    HMODULE self = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       reinterpret_cast<LPCWSTR>(&ownFile), &self);
    std::array<wchar_t, 32768> name{};  // the longest path
    const DWORD length = GetModuleFileNameW(self, name.data(), static_cast<DWORD>(name.size()));
    return {name.data(), name.data() + length};
#else
    Dl_info self{};
    return dladdr(reinterpret_cast<const void*>(&ownFile), &self) != 0 ? self.dli_fname : "";
#endif
}

}  // namespace

void* loadLibrary(const std::filesystem::path& path) {
    return load(std::filesystem::absolute(path));
}

void* loadCompanion(const std::filesystem::path& name) {
    // The links to the host may lie elsewhere.
    std::error_code none;
    const std::filesystem::path beside = std::filesystem::canonical(ownFile(), none).parent_path() / name;
    return load(beside.has_parent_path() && std::filesystem::exists(beside, none) ? beside : name);
}

void* findSymbol(void* library, const char* name) {
#ifdef _WIN32
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(library), name));
#else
    return dlsym(library, name);
#endif
}

}  // namespace efihost
