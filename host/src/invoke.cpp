#include "invoke.h"

#include <array>
#include <utility>

#include "efihost/host.h"

namespace efihost {

namespace {

// T for each number of an index sequence.
template <class T, std::size_t>
using Repeated = T;

using Caller = Anyval* (*)(EfiEntry, EfiCallContext*, Anyval* const*);

template <bool varies, std::size_t... I>
constexpr Caller caller(std::index_sequence<I...>) {
    return [](EfiEntry entry, EfiCallContext* context, [[maybe_unused]] Anyval* const* arguments) {
        if constexpr (varies) {
            using Entry = Anyval* (*)(EfiCallContext*, int, ...);
            return reinterpret_cast<Entry>(entry)(context, int{sizeof...(I)}, arguments[I]...);
        } else {
            using Entry = Anyval* (*)(EfiCallContext*, Repeated<Anyval*, I>...);
            return reinterpret_cast<Entry>(entry)(context, arguments[I]...);
        }
    };
}

// One for every count of arguments.
template <bool varies, std::size_t... Count>
constexpr auto callers(std::index_sequence<Count...>) {
    return std::array{caller<varies>(std::make_index_sequence<Count>())...};
}

using Counts = std::make_index_sequence<Host::maxArguments + 1>;
constexpr auto fixed = callers<false>(Counts());
constexpr auto variable = callers<true>(Counts());

}  // namespace

Anyval* invoke(const Function& function, EfiCallContext* context, std::span<Anyval* const> arguments) {
    const auto& ofShape = function.arity ? fixed : variable;
    return ofShape[arguments.size()](function.entry, context, arguments.data());
}

}  // namespace efihost
