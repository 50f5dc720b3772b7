#include "services.h"

#include <cstring>

namespace efihost {

namespace {

constexpr EfiGuid objectId = {0, 0, 0, {0xc0, 0, 0, 0, 0, 0, 0, 0x46}};

}  // namespace

bool sameId(const EfiGuid& one, const EfiGuid& other) {
    return std::memcmp(&one, &other, sizeof(EfiGuid)) == 0;
}

bool isObjectId(const EfiGuid& id) {
    return sameId(id, objectId);
}

}  // namespace efihost
