// What depends on the platform: how symbols are exported and imported, and how the operations of a
// host object are called. No other header of the border knows the platform.
#pragma once

#if defined(_WIN32)
#define EFI_SHOWN __declspec(dllexport)
#define EFI_TAKEN __declspec(dllimport)
#define EFI_OPERATION __stdcall
#else
#define EFI_SHOWN __attribute__((visibility("default")))
#define EFI_TAKEN __attribute__((visibility("default")))
#define EFI_OPERATION
#endif

// A type that one library throws, or a pointer to it, and another catches.
#define EFI_THROWN __attribute__((visibility("default")))

// The host defines the operations that packs import; the pack defines the table that hosts read.
#if defined(EFI_BUILDS_HOST)
#define EFI_HOST EFI_SHOWN
#else
#define EFI_HOST EFI_TAKEN
#endif
#if defined(EFI_BUILDS_PACK)
#define EFI_PACK EFI_SHOWN
#else
#define EFI_PACK EFI_TAKEN
#endif
