#include "invoke.h"

#include <array>
#include <utility>

#include "efihost/host.h"

namespace efihost {

namespace {

// The type T, once for each number of an index sequence.
template <class T, std::size_t>
using Repeated = T;

using Caller = Anyval* (*)(EfiEntry, EfiCallContext*, Anyval* const*);

template <std::size_t... I>
constexpr Caller fixedCaller(std::index_sequence<I...>) {
    return [](EfiEntry entry, EfiCallContext* context, [[maybe_unused]] Anyval* const* arguments) {
        using Entry = Anyval* (*)(EfiCallContext*, Repeated<Anyval*, I>...);
        return reinterpret_cast<Entry>(entry)(context, arguments[I]...);
    };
}

template <std::size_t... I>
constexpr Caller variableCaller(std::index_sequence<I...>) {
    return [](EfiEntry entry, EfiCallContext* context, [[maybe_unused]] Anyval* const* arguments) {
        using Entry = Anyval* (*)(EfiCallContext*, int, ...);
        return reinterpret_cast<Entry>(entry)(context, int{sizeof...(I)}, arguments[I]...);
    };
}

// One caller for every count of arguments.
template <std::size_t... Count>
constexpr auto fixedCallers(std::index_sequence<Count...>) {
    return std::array{fixedCaller(std::make_index_sequence<Count>())...};
}

template <std::size_t... Count>
constexpr auto variableCallers(std::index_sequence<Count...>) {
    return std::array{variableCaller(std::make_index_sequence<Count>())...};
}

using Counts = std::make_index_sequence<Host::maxArguments + 1>;
constexpr auto fixed = fixedCallers(Counts());
constexpr auto variable = variableCallers(Counts());

}  // namespace

Anyval* invoke(const Function& function, EfiCallContext* context, std::span<Anyval* const> arguments) {
    const auto& callers = function.arity ? fixed : variable;
    return callers[arguments.size()](function.entry, context, arguments.data());
}

}  // namespace efihost
