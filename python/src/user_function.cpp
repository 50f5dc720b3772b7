// A Python callable as a user function. What it raises passes through the host as a C++ exception,
// which the host keeps from unwinding the pack.
#include "conversion.h"

namespace undula {

std::shared_ptr<PyObject> keep(py::handle object) {
    return {object.inc_ref().ptr(), [](PyObject* kept) {
                const LockHeld lock;
                askingForLock([kept] { Py_DECREF(kept); });
            }};
}

Value userFunction(py::handle callable, const Place& place) {
    const auto function = [callable = keep(callable), function = place.function, index = place.index,
                           name = std::string(place.name)](const std::vector<Value>& arguments) {
        const LockHeld lock;
        const auto count = static_cast<py::ssize_t>(arguments.size());
        const Reference converted = newReference([=] { return PyTuple_New(count); });
        for (py::ssize_t i = 0; i < count; ++i) {
            PyTuple_SET_ITEM(converted.get(), i, toPython(arguments[static_cast<std::size_t>(i)]).release());
        }
        const Place ofResult = {.function = function, .index = index, .name = name, .isResult = true};
        return toHost(callPython(callable.get(), converted), ofResult);
    };
    return Value::function(efihost::Callback(function));
}

}  // namespace undula
