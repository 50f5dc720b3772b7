// The dispatcher: what stands between the host and a worker.
//
// A *form* describes one way of calling a function as the type of a C++ function: M(M, S, M) takes
// an array, a scalar and an array and results in an array. From the form follow the worker's type,
// the kinds that are checked, and which arguments the user writes.
#pragma once

#include <array>
#include <cstdint>

#include "efi/host.h"

namespace undula {

// The letters of forms.
namespace form {
using S = aComplex*;  // scalar
using T = aString*;   // text
using M = aMatrix*;   // array
using V = aVector*;   // array of one column
using F = aLambda*;   // function
using A = Anyval*;    // scalar or array, passed on as it is
struct O;             // optional array: a scalar is passed on as a 1 x 1 array
struct Z;             // a scalar that the user does not write: the pack supplies 0
}  // namespace form

enum class Kind : std::uint8_t {
    Scalar,
    String,
    Array,
    Vector,
    Function,
    ScalarOrArray,
    OptionalArray,
    Zero
};

namespace detail {

template <class Value, Kind of>
struct ParameterOf {
    using Type = Value;
    static constexpr Kind kind = of;
};

template <class Letter>
struct Parameter;
template <>
struct Parameter<form::S> : ParameterOf<aComplex*, Kind::Scalar> {};
template <>
struct Parameter<form::T> : ParameterOf<aString*, Kind::String> {};
template <>
struct Parameter<form::M> : ParameterOf<aMatrix*, Kind::Array> {};
template <>
struct Parameter<form::V> : ParameterOf<aVector*, Kind::Vector> {};
template <>
struct Parameter<form::F> : ParameterOf<aLambda*, Kind::Function> {};
template <>
struct Parameter<form::A> : ParameterOf<Anyval*, Kind::ScalarOrArray> {};
template <>
struct Parameter<form::O> : ParameterOf<aMatrix*, Kind::OptionalArray> {};
template <>
struct Parameter<form::Z> : ParameterOf<aComplex*, Kind::Zero> {};

template <class Form>
struct FormTraits;
template <class Result, class... Letters>
struct FormTraits<Result(Letters...)> {
    using Worker = Result(EfiCallContext*, typename Parameter<Letters>::Type...);
    static constexpr std::array<Kind, sizeof...(Letters)> kinds = {Parameter<Letters>::kind...};
    // Arguments that the user writes.
    static constexpr int written = (0 + ... + (Parameter<Letters>::kind != Kind::Zero));

    // Hands the arguments to the worker under their types.
    static Anyval* invoke(void (*worker)(), EfiCallContext* context, Anyval** arguments) {
        return [&]<std::size_t... i>(std::index_sequence<i...>) {
            return static_cast<Anyval*>(reinterpret_cast<Worker*>(worker)(
                context, static_cast<typename Parameter<Letters>::Type>(arguments[i])...));
        }
        (std::index_sequence_for<Letters...>());
    }
};

}  // namespace detail

template <class Form>
using Worker = typename detail::FormTraits<Form>::Worker;

inline constexpr int mostArguments = 10;

// A call on its way to its worker.
struct Call {
    EfiCallContext* context;
    const Kind* kinds;  // one for each of the worker's parameters
    int parameters;
    Anyval* given[mostArguments];  // what the user wrote, in order
    void (*worker)();
    Anyval* (*invoke)(void (*worker)(), EfiCallContext* context, Anyval** arguments);
};

// Runs a call inside the frame: kinds checked, floating-point state set and put back, whatever is
// thrown turned into a result.
Anyval* run(const Call& call);

template <class Form, class... Given>
Anyval* dispatch(Worker<Form>* worker, EfiCallContext* context, Given*... given) {
    using Traits = detail::FormTraits<Form>;
    static_assert(sizeof...(Given) == Traits::written && Traits::kinds.size() <= mostArguments);
    return run({context,
                Traits::kinds.data(),
                static_cast<int>(Traits::kinds.size()),
                {given...},
                reinterpret_cast<void (*)()>(worker),
                &Traits::invoke});
}

// A dispatcher of a fixed number of arguments, as a variadic one forwards to it.
struct FixedDispatcher {
    int count;
    Anyval* (*call)(EfiCallContext* context, Anyval** arguments);
};

// Calls the dispatcher of the given count; without one, "Wrong number of Arguments".
Anyval* forward(EfiCallContext* context, int count, Anyval** arguments, const FixedDispatcher* dispatchers,
                int dispatcherCount);

}  // namespace undula
