// Dynamic libraries. Only library.cpp knows how the platform loads one.
#pragma once

#include <filesystem>

namespace efihost {

// Throws LoadError. The library's symbols are not visible to others, and it is never unloaded.
void* loadLibrary(const std::filesystem::path& path);

// The library of this file name that lies beside the host, otherwise the one that the system finds.
// Throws LoadError.
void* loadCompanion(const std::filesystem::path& name);

// Returns null when the library exports no such symbol.
void* findSymbol(void* library, const char* name);

}  // namespace efihost
