#include "python_calls.h"

#include <optional>

namespace undula {

void throwPending() {
    std::optional<py::error_already_set> error;
    askingForLock([&] { error.emplace(); });
    throw *error;
}

Reference attribute(py::handle object, const char* name) {
    return newReference([=] { return PyObject_GetAttrString(object.ptr(), name); });
}

Reference attributeIfAny(py::handle object, const char* name) {
    PyObject* const found = askingForLock([=] { return PyObject_GetAttrString(object.ptr(), name); });
    if (found == nullptr) {
        if (PyErr_ExceptionMatches(PyExc_AttributeError) == 0) {
            throwPending();
        }
        askingForLock([] { PyErr_Clear(); });
    }
    return Reference(found);
}

Reference callPython(py::handle callable, py::handle arguments) {
    return newReference([=] { return PyObject_CallObject(callable.ptr(), arguments.ptr()); });
}

Reference tupleOf(py::handle sequence) {
    return newReference([=] { return PySequence_Tuple(sequence.ptr()); });
}

Objects itemsOf(const Reference& tuple) {
    PyObject* const raw = tuple.get();
    return {PySequence_Fast_ITEMS(raw), static_cast<std::size_t>(PyTuple_GET_SIZE(raw))};
}

std::string textOf(py::handle object) {
    const Reference text = newReference([=] { return PyObject_Str(object.ptr()); });
    return py::handle(text).cast<std::string>();
}

void checkSignals() {
    if (askingForLock([] { return PyErr_CheckSignals(); }) != 0) {
        throwPending();
    }
}

}  // namespace undula
