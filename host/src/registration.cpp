#include "efihost/registration.h"

#include "efihost/host.h"

namespace efihost {

namespace {

std::optional<Registration> registered;
std::optional<Registration> unregistered;
int status = 0;

}  // namespace

std::optional<Registration> lastRegistered() {
    return registered;
}
std::optional<Registration> lastUnregistered() {
    return unregistered;
}
void setRegistrationStatus(int newStatus) {
    status = newStatus;
}

}  // namespace efihost

int RegisterEfiFunctionPack(void* moduleHandle, const EfiGuid* packId) {
    const auto lock = efihost::Host::lock();
    efihost::registered = {moduleHandle, *packId};
    return efihost::status;
}

int UnregisterEfiFunctionPack(const EfiGuid* packId) {
    const auto lock = efihost::Host::lock();
    efihost::unregistered = {nullptr, *packId};
    return efihost::status;
}
