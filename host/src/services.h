// The objects through which packs reach a host. Each operation forwards to the host.
#pragma once

#include <cstring>

#include "efi/host.h"
#include "efihost/host.h"

namespace efihost {

inline constexpr std::int32_t statusNoInterface = static_cast<std::int32_t>(0x80004002);
inline constexpr std::int32_t statusNoMemory = static_cast<std::int32_t>(0x8007000E);

// The interface that every object has.
inline constexpr EfiGuid objectId = {0, 0, 0, {0xc0, 0, 0, 0, 0, 0, 0, 0x46}};

inline bool sameId(const EfiGuid& one, const EfiGuid& other) {
    return std::memcmp(&one, &other, sizeof(EfiGuid)) == 0;
}

// An object that lives as long as its host, and counts who refers to it.
template <class Interface>
class Service : public Interface {
 public:
    explicit Service(Host& host) : host_(host) {}

    std::uint32_t EFI_OPERATION AddRef() final { return ++references_; }
    std::uint32_t EFI_OPERATION Release() final { return --references_; }
    std::uint32_t references() const { return references_; }

    Host& host() const { return host_; }

 protected:
    ~Service() = default;

    std::int32_t hand(void** out) {
        AddRef();
        *out = static_cast<Interface*>(this);
        return 0;
    }

    std::int32_t refuse(void** out, std::int32_t status) {
        *out = nullptr;
        return status;
    }

 private:
    Host& host_;
    std::uint32_t references_ = 0;
};

class Allocator final : public Service<IqrAllocator> {
 public:
    using Service::Service;

    std::int32_t EFI_OPERATION QueryInterface(const EfiGuid& interfaceId, void** out) override {
        if (sameId(interfaceId, objectId)) return hand(out);
        if (!sameId(interfaceId, efiRootSetId)) return refuse(out, statusNoInterface);
        EfiRootSet* roots = host().openRootSet();
        if (!roots) return refuse(out, statusNoMemory);
        *out = roots;
        return 0;
    }
    void EFI_OPERATION newScalar(aComplex** out) override { *out = host().makeScalar(); }
};

class RootSet final : public Service<EfiRootSet> {
 public:
    RootSet(Host& host, Allocator& allocator) : Service(host), allocator_(allocator) {}

    // Root set and allocator are interfaces of one object.
    std::int32_t EFI_OPERATION QueryInterface(const EfiGuid& interfaceId, void** out) override {
        if (sameId(interfaceId, efiRootSetId)) return hand(out);
        return allocator_.QueryInterface(interfaceId, out);
    }
    void EFI_OPERATION addRoot(Anyval*** out) override { *out = host().addRoot(); }
    void EFI_OPERATION removeRoot(Anyval** cell) override { host().removeRoot(cell); }

 private:
    Allocator& allocator_;
};

class Evaluator final : public Service<EfiEvaluator> {
 public:
    using Service::Service;

    std::int32_t EFI_OPERATION QueryInterface(const EfiGuid& interfaceId, void** out) override {
        return sameId(interfaceId, objectId) ? hand(out) : refuse(out, statusNoInterface);
    }
    std::int32_t EFI_OPERATION applyList(aLambda* function, Cons* arguments, Anyval** result) override {
        return host().applyList(function, arguments, result);
    }
    std::int32_t EFI_OPERATION pollInterrupt(std::int32_t) override { return host().pollInterrupt(); }
    std::int32_t EFI_OPERATION applyOne(aLambda* function, Anyval* argument, Anyval** result) override {
        return host().applyOne(function, argument, result);
    }
};

}  // namespace efihost
