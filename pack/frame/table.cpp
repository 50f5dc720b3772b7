// The name records, the dispatchers and the table, made from functions.def.
#include "frame/table.h"

#include <cstdarg>
#include <cstring>

#include "efi/layout.h"
#include "frame/workers.h"

#define UNDULA_PARAMETERS_1 Anyval* a1
#define UNDULA_PARAMETERS_2 UNDULA_PARAMETERS_1, Anyval* a2
#define UNDULA_PARAMETERS_3 UNDULA_PARAMETERS_2, Anyval* a3
#define UNDULA_PARAMETERS_4 UNDULA_PARAMETERS_3, Anyval* a4
#define UNDULA_PARAMETERS_5 UNDULA_PARAMETERS_4, Anyval* a5
#define UNDULA_PARAMETERS_6 UNDULA_PARAMETERS_5, Anyval* a6
#define UNDULA_PARAMETERS_7 UNDULA_PARAMETERS_6, Anyval* a7
#define UNDULA_PARAMETERS_8 UNDULA_PARAMETERS_7, Anyval* a8
#define UNDULA_PARAMETERS_9 UNDULA_PARAMETERS_8, Anyval* a9
#define UNDULA_PARAMETERS_10 UNDULA_PARAMETERS_9, Anyval* a10

#define UNDULA_ARGUMENTS_1 a1
#define UNDULA_ARGUMENTS_2 UNDULA_ARGUMENTS_1, a2
#define UNDULA_ARGUMENTS_3 UNDULA_ARGUMENTS_2, a3
#define UNDULA_ARGUMENTS_4 UNDULA_ARGUMENTS_3, a4
#define UNDULA_ARGUMENTS_5 UNDULA_ARGUMENTS_4, a5
#define UNDULA_ARGUMENTS_6 UNDULA_ARGUMENTS_5, a6
#define UNDULA_ARGUMENTS_7 UNDULA_ARGUMENTS_6, a7
#define UNDULA_ARGUMENTS_8 UNDULA_ARGUMENTS_7, a8
#define UNDULA_ARGUMENTS_9 UNDULA_ARGUMENTS_8, a9
#define UNDULA_ARGUMENTS_10 UNDULA_ARGUMENTS_9, a10

// The dispatcher of n arguments, and the name record.
#define UNDULA_DISPATCHER(name, n, form)                                                  \
    EFI_PACK Anyval* name(EfiCallContext* context, UNDULA_PARAMETERS_##n) {               \
        return undula::dispatch<form>(static_cast<undula::Worker<form>*>(&name), context, \
                                      UNDULA_ARGUMENTS_##n);                              \
    }
#define UNDULA_NAME(name)                      \
    extern "C" EFI_PACK sString string_##name; \
    sString string_##name = {TagString, #name, 0, 0};

// The dispatcher of any number of arguments. The host passes `count` pointers; no more of them are
// read than the longest form takes.
#define UNDULA_VARIADIC(name, ...)                                                              \
    EFI_PACK Anyval* name(EfiCallContext* context, int count, ...) {                            \
        constexpr undula::FixedDispatcher dispatchers[] = {__VA_ARGS__};                        \
        Anyval* arguments[undula::mostArguments];                                               \
        std::va_list list;                                                                      \
        va_start(list, count);                                                                  \
        for (int i = 0; i < count && i < undula::mostArguments; ++i) {                          \
            arguments[i] = va_arg(list, Anyval*);                                               \
        }                                                                                       \
        va_end(list);                                                                           \
        return undula::forward(context, count, arguments, dispatchers, std::size(dispatchers)); \
    }

namespace {

template <class... Arguments>
using EntryOf = Anyval*(EfiCallContext*, Arguments...);
using VariadicEntry = Anyval*(EfiCallContext*, int, ...);

template <class Indices>
struct FixedOf;
template <std::size_t... i>
struct FixedOf<std::index_sequence<i...>> {
    template <std::size_t>
    using Argument = Anyval*;
    using Entry = EntryOf<Argument<i>...>;

    template <Entry* entry>
    static Anyval* call(EfiCallContext* context, Anyval** arguments) {
        return entry(context, arguments[i]...);
    }
};
template <int n>
using Fixed = FixedOf<std::make_index_sequence<static_cast<std::size_t>(n)>>;

}  // namespace

#define UNDULA_FIXED(name, n)     \
    undula::FixedDispatcher {     \
        n, &Fixed<n>::call<&name> \
    }

#define FIXED(name, n, form) \
    UNDULA_NAME(name)        \
    UNDULA_DISPATCHER(name, n, form)
#define OPTIONAL(name, n1, form1, n2, form2, n3, form3) \
    UNDULA_NAME(name)                                   \
    UNDULA_DISPATCHER(name, n1, form1)                  \
    UNDULA_DISPATCHER(name, n2, form2)                  \
    UNDULA_DISPATCHER(name, n3, form3)                  \
    UNDULA_VARIADIC(name, UNDULA_FIXED(name, n1), UNDULA_FIXED(name, n2), UNDULA_FIXED(name, n3))
#define SHORTENED(name, n1, form1, n2, form2) \
    UNDULA_NAME(name)                         \
    UNDULA_DISPATCHER(name, n1, form1)        \
    UNDULA_DISPATCHER(name, n2, form2)        \
    UNDULA_VARIADIC(name, UNDULA_FIXED(name, n1), UNDULA_FIXED(name, n2))
#define UNREACHED(name, form)

#include "frame/functions.def"

#undef FIXED
#undef OPTIONAL
#undef SHORTENED

// Counts the rows.
#define FIXED(...) +1
#define OPTIONAL(...) +1
#define SHORTENED(...) +1

namespace {
constexpr std::int32_t rowCount = 0
#include "frame/functions.def"
    ;
static_assert(rowCount == 58);
}  // namespace

#undef FIXED
#undef OPTIONAL
#undef SHORTENED

EfiFunction theEfi[rowCount];
const std::int32_t numFuncs = rowCount;

namespace undula {

namespace {

void fillRow(EfiFunction*& row, sFunctionInfo* signature, sString& name, EfiEntry entry) {
    name.length = static_cast<std::int32_t>(std::strlen(name.text)) + 1;
    *row++ = {signature, 0, 0, &name, 0, entry, 0};
}

}  // namespace

#define UNDULA_SIGNATURE_1 Any_to_Any
#define UNDULA_SIGNATURE_2 Any_Any_to_Any
#define UNDULA_SIGNATURE_3 Any_Any_Any_to_Any
#define UNDULA_SIGNATURE_4 Any_Any_Any_Any_to_Any
#define UNDULA_SIGNATURE_5 Any_Any_Any_Any_Any_to_Any
#define UNDULA_SIGNATURE_7 Any_Any_Any_Any_Any_Any_Any_to_Any

#define UNDULA_ROW(name, signature, Entry) \
    fillRow(row, signature, string_##name, reinterpret_cast<EfiEntry>(static_cast<Entry*>(&name)));
#define FIXED(name, n, form) UNDULA_ROW(name, UNDULA_SIGNATURE_##n, Fixed<n>::Entry)
#define OPTIONAL(name, ...) UNDULA_ROW(name, Variable_to_Any, VariadicEntry)
#define SHORTENED(name, ...) UNDULA_ROW(name, Variable_to_Any, VariadicEntry)

void fillTable() {
    EfiFunction* row = theEfi;
#include "frame/functions.def"
}

}  // namespace undula
