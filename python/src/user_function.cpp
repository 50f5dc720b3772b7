// A Python callable as a user function. What it raises passes through the host as a C++ exception,
// which the host keeps from unwinding the pack.
#include <cmath>
#include <string>
#include <vector>

#include "conversion.h"
#include "interpreter_lock.h"

namespace undula {

std::shared_ptr<PyObject> keep(py::handle object) {
    return {object.inc_ref().ptr(), [](PyObject* kept) {
                const LockHeld lock;
                askingForLock([kept] { Py_DECREF(kept); });
            }};
}

namespace {

// What a callable returns for values of the host. The interpreter lock is held.
py::object resultOf(py::handle callable, const std::vector<Value>& arguments) {
    py::tuple converted(arguments.size());
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        converted[i] = toPython(arguments[i]);
    }
    return newReference([&] { return PyObject_CallObject(callable.ptr(), converted.ptr()); });
}

// A result as a number; the usual one without ado.
Value numberOf(const py::object& result, const std::string& place) {
    if (PyFloat_CheckExact(result.ptr())) {
        return PyFloat_AS_DOUBLE(result.ptr());
    }
    Value value = toHost(result, place + ", its result");
    if (!value.isScalar()) {
        throw py::type_error(place + " must return one number, not " + Py_TYPE(result.ptr())->tp_name);
    }
    return value;
}

}  // namespace

Value userFunction(py::handle callable, const std::string& place) {
    const auto call = [callable = keep(callable), place](const std::vector<Value>& arguments) {
        const LockHeld lock;
        return toHost(resultOf(callable.get(), arguments), place + ", its result");
    };
    return Value::function(efihost::Callback(call));
}

Value numberFunction(py::handle object, const std::string& place) {
    auto* const function = object.cast<NumberFunction*>();
    const auto call = [kept = keep(object), function, place](const std::vector<Value>& arguments) {
        const LockHeld lock;
        const py::object result = resultOf(function->callable, arguments);
        Value value = numberOf(result, place);
        function->metNan = function->metNan || std::isnan(value.real());
        return value;
    };
    return Value::function(efihost::Callback(call));
}

}  // namespace undula
