// How the pack makes itself known to the host.
#include "efi/pack.h"
#include "frame/module.h"

namespace {

// {B07F40EA-BEBD-4495-9CE7-3E559444D9DD}
constexpr EfiGuid packId = {0xB07F40EA, 0xBEBD, 0x4495, {0x9C, 0xE7, 0x3E, 0x55, 0x94, 0x44, 0xD9, 0xDD}};

}  // namespace

int DllRegisterServer() {
    return RegisterEfiFunctionPack(undula::moduleHandle(), &packId);
}

int DllUnregisterServer() {
    return UnregisterEfiFunctionPack(&packId);
}
