// Loads the pack as an installer and a host would, knowing only its file: registers it, reads its
// table, calls `dwt`, and takes the registration back.
#include <windows.h>

#include <cmath>
#include <cstdio>
#include <string_view>

#include "efi/pack.h"
#include "efihost/host.h"
#include "efihost/registration.h"

namespace {

using efihost::Value;

int failures = 0;

void check(bool holds, const char* what) {
    std::printf("%s  %s\n", holds ? "ok    " : "FAILED", what);
    if (!holds) ++failures;
}

template <class Symbol>
Symbol symbolOf(HMODULE module, const char* name) {
    return reinterpret_cast<Symbol>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

const EfiFunction* rowOf(const EfiFunction* rows, int count, std::string_view name) {
    for (int i = 0; i < count; ++i) {
        if (rows[i].name->text == name) return rows + i;
    }
    return nullptr;
}

// One level with the Haar filter: sums and differences of neighbours, over the root of 2.
void callDwt(const EfiFunction& row) {
    using Variadic = Anyval* (*)(EfiCallContext*, int, ...);
    const double root = std::sqrt(2.0);
    const double samples[] = {1, 2, 5, 9};
    const double filter[] = {1 / root, 1 / root};
    const double expected[] = {3 / root, 14 / root, -1 / root, -4 / root};

    const Value signal = Value::column(samples);
    const Value level = 1;
    const Value haar = Value::column(filter);
    efihost::Host host;
    efihost::Call call(host);
    const auto dwt = reinterpret_cast<Variadic>(row.entry);
    const Value result = call.finish(dwt(call.context(), 3, signal.raw(), level.raw(), haar.raw()));
    check(result.isMatrix() && result.rows() == 4, "dwt answers a column of 4 rows");
    if (!result.isMatrix() || result.rows() != 4) return;
    bool right = true;
    for (int i = 0; i < 4; ++i) {
        const double value = result.at(i, 0).real();
        right = right && std::abs(std::abs(value) - std::abs(expected[i])) < 1e-14;
    }
    check(right, "its values are those of the Haar transform");
}

}  // namespace

int main() {
    HMODULE module = LoadLibraryA("undula.dll");
    check(module != nullptr, "LoadLibrary finds undula.dll");
    if (!module) return 1;

    const auto* count = symbolOf<const std::int32_t*>(module, "numFuncs");
    const auto* rows = symbolOf<const EfiFunction*>(module, "theEfi");
    check(count && *count == 58, "numFuncs is 58");
    check(rows != nullptr, "theEfi is exported");
    if (!count || !rows) return 1;

    const auto registerServer = symbolOf<int (*)()>(module, "DllRegisterServer");
    const auto unregisterServer = symbolOf<int (*)()>(module, "DllUnregisterServer");
    check(registerServer && unregisterServer, "the registration entry points are exported undecorated");
    if (!registerServer || !unregisterServer) return 1;

    check(registerServer() == 0, "DllRegisterServer answers what the host answers");
    const auto registered = efihost::lastRegistered();
    check(registered && registered->module == module, "the host has been given the module handle");

    const EfiFunction* row = rowOf(rows, *count, "dwt");
    check(row != nullptr, "the table has a row for dwt");
    if (row) callDwt(*row);

    check(unregisterServer() == 0, "DllUnregisterServer answers what the host answers");
    const auto unregistered = efihost::lastUnregistered();
    check(registered && unregistered && registered->id.data1 == unregistered->id.data1,
          "the same identifier has been taken back");
    std::printf("%s\n", failures == 0 ? "loaded, called and unregistered" : "the pack does not work");
    return failures == 0 ? 0 : 1;
}
