#include "efihost/registration.h"

#include "efihost/host.h"

namespace efihost {

namespace {

std::optional<Registration> registered;
std::optional<Registration> unregistered;
int answer = 0;

}  // namespace

std::optional<Registration> lastRegistered() {
    return registered;
}
std::optional<Registration> lastUnregistered() {
    return unregistered;
}
void answerRegistrationsWith(int status) {
    answer = status;
}

}  // namespace efihost

int RegisterEfiFunctionPack(void* moduleHandle, const EfiGuid* packId) {
    const auto lock = efihost::Host::lock();
    efihost::registered = {moduleHandle, *packId};
    return efihost::answer;
}

int UnregisterEfiFunctionPack(const EfiGuid* packId) {
    const auto lock = efihost::Host::lock();
    efihost::unregistered = {nullptr, *packId};
    return efihost::answer;
}
