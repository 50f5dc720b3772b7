// Where no library can be loaded while a program runs: the pack is part of the program.
#include <array>
#include <string_view>

#include "efi/pack.h"
#include "efihost/error.h"
#include "library.h"

namespace efihost {

namespace {

struct Export {
    std::string_view name;
    void* symbol;
};

}  // namespace

void* loadLibrary(const std::filesystem::path& path) {
    throw LoadError(path.string() + ": this program can load no libraries");
}

void* loadCompanion(const std::filesystem::path&) {
    return theEfi;
}

void* findSymbol(void*, const char* name) {
    const std::array exports{
        Export{"theEfi", theEfi},
        Export{"numFuncs", const_cast<std::int32_t*>(&numFuncs)},
        Export{"DllRegisterServer", reinterpret_cast<void*>(&DllRegisterServer)},
        Export{"DllUnregisterServer", reinterpret_cast<void*>(&DllUnregisterServer)},
    };
    for (const Export& each : exports) {
        if (each.name == name) return each.symbol;
    }
    return nullptr;
}

}  // namespace efihost
