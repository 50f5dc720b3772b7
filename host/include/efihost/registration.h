// What packs have told the host about themselves.
#pragma once

#include <optional>

#include "efi/host.h"

namespace efihost {

struct Registration {
    void* module;  // null for a pack that unregisters itself
    EfiGuid id;
};

// The last call of RegisterEfiFunctionPack and of UnregisterEfiFunctionPack, if any.
EFI_HOST std::optional<Registration> lastRegistered();
EFI_HOST std::optional<Registration> lastUnregistered();

// The status that both functions return from now on; 0 at first.
EFI_HOST void setRegistrationStatus(int status);

}  // namespace efihost
