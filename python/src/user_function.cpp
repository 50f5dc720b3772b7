// A Python callable as a user function. What it raises passes through the host as a C++ exception,
// which the host keeps from unwinding the pack.
#include "conversion.h"
#include "interpreter_lock.h"

namespace undula {

std::shared_ptr<PyObject> keep(py::handle object) {
    return {object.inc_ref().ptr(), [](PyObject* kept) {
                const LockHeld lock;
                askingForLock([kept] { Py_DECREF(kept); });
            }};
}

Value userFunction(py::handle callable, const std::string& place) {
    const auto call = [callable = keep(callable), place](const std::vector<Value>& arguments) {
        const LockHeld lock;
        py::tuple converted(arguments.size());
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            converted[i] = toPython(arguments[i]);
        }
        const py::object result =
            newReference([&] { return PyObject_CallObject(callable.get(), converted.ptr()); });
        return toHost(result, place + ", its result");
    };
    return Value::function(efihost::Callback(call));
}

}  // namespace undula
