// A function pack, loaded from a file.
#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "efi/pack.h"

namespace efihost {

// A row of a pack's table.
struct Function {
    std::string_view name;
    std::optional<int> arity;  // the number of arguments; none where it varies
    EfiEntry entry;
    // The names of the arguments for each number of them, as in "data level wavelet"; none for the
    // functions of a pack that the host does not know.
    std::span<const std::string_view> forms;
};

// The functions of a loaded library. It stays loaded for the life of the process: a pack cannot undo
// what it did when it was loaded. Copies are cheap and equivalent.
class EFI_HOST Pack {
 public:
    // The pack that is installed with the host: it lies beside the host's library, or where the system
    // finds libraries. Throws LoadError.
    Pack();
    // Throws LoadError.
    explicit Pack(const std::filesystem::path& path);

    // In table order.
    const std::vector<Function>& functions() const { return functions_; }
    std::vector<std::string_view> names() const;
    bool has(std::string_view name) const { return find(name) != nullptr; }
    // Throws Error when the pack has no such function. The reference lives as long as the pack.
    const Function& function(std::string_view name) const;

    // The raw table, as the library exports it.
    std::span<const EfiFunction> table() const { return table_; }
    // The address of any exported symbol; null when there is none.
    void* symbol(const char* name) const;

    // Have the pack register itself with the host (registration.h), and unregister itself. Both return
    // the status that the pack returns.
    int registerServer() const { return register_(); }
    int unregisterServer() const { return unregister_(); }

 private:
    Pack(void* library, const std::filesystem::path& path);
    const Function* find(std::string_view name) const;

    void* library_;
    std::span<const EfiFunction> table_;
    std::vector<Function> functions_;
    int (*register_)();
    int (*unregister_)();
};

}  // namespace efihost
