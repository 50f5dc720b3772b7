// What packs have told the host about themselves.
#pragma once

#include <optional>

#include "efi/host.h"

namespace efihost {

struct Registration {
    void* module;  // the handle handed over; null for a pack that takes itself back
    EfiGuid id;
};

// The last call of RegisterEfiFunctionPack and of UnregisterEfiFunctionPack, if any.
EFI_HOST std::optional<Registration> lastRegistered();
EFI_HOST std::optional<Registration> lastUnregistered();

// What both answer from now on; 0 at first.
EFI_HOST void answerRegistrationsWith(int status);

}  // namespace efihost
