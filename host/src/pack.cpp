#include "efihost/pack.h"

#include <algorithm>

#include "argument_names.h"
#include "efihost/error.h"
#include "library.h"
#include "shapes.h"

namespace efihost {

namespace {

template <class Symbol>
Symbol needed(void* library, const char* name, const std::filesystem::path& path) {
    void* symbol = findSymbol(library, name);
    if (!symbol) throw LoadError(path.string() + ": no function pack: exports no " + name);
    return reinterpret_cast<Symbol>(symbol);
}

bool isWhole(const EfiFunction& row) {
    return isShape(row.signature) && row.name && row.name->text && row.entry;
}

}  // namespace

Pack::Pack() : Pack(loadCompanion(EFIHOST_PACK_FILE), EFIHOST_PACK_FILE) {}

Pack::Pack(const std::filesystem::path& path) : Pack(loadLibrary(path), path) {}

Pack::Pack(void* library, const std::filesystem::path& path) : library_(library) {
    const auto* rows = needed<const EfiFunction*>(library_, "theEfi", path);
    const auto* count = needed<const std::int32_t*>(library_, "numFuncs", path);
    register_ = needed<int (*)()>(library_, "DllRegisterServer", path);
    unregister_ = needed<int (*)()>(library_, "DllUnregisterServer", path);
    if (*count < 0) throw LoadError(path.string() + ": a table of negative length");
    table_ = {rows, static_cast<std::size_t>(*count)};
    for (const EfiFunction& row : table_) {
        if (!isWhole(row)) throw LoadError(path.string() + ": an incomplete row in its table");
        functions_.push_back({row.name->text, arityOf(*row.signature), row.entry, {}});
    }
    nameArguments(functions_);
}

std::vector<std::string_view> Pack::names() const {
    std::vector<std::string_view> names;
    for (const Function& function : functions_) names.push_back(function.name);
    return names;
}

const Function* Pack::find(std::string_view name) const {
    const auto isIt = [=](const Function& function) { return function.name == name; };
    const auto found = std::find_if(functions_.begin(), functions_.end(), isIt);
    return found == functions_.end() ? nullptr : &*found;
}

const Function& Pack::function(std::string_view name) const {
    if (const Function* found = find(name)) return *found;
    throw Error(std::string(name), "no such function", 0);
}

void* Pack::symbol(const char* name) const {
    return findSymbol(library_, name);
}

}  // namespace efihost
