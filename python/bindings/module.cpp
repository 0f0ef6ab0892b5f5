#include "LibraryCall.h"
#include "bindings.h"

#include "Version.h"

#include <exception>
#include <pybind11/pybind11.h>
#include <stdexcept>

namespace {

namespace py = pybind11;

/** The class veko.Error, which lives as long as the process. */
PyObject* errorClass = nullptr;

/** Its message may hold the bytes of a file's name. */
void raiseError(const std::exception& error) {
    PyErr_SetObject(errorClass, py::reinterpret_steal<py::object>(PyUnicode_DecodeFSDefault(error.what())).ptr());
}

/** Failures of the library become veko.Error, with their own messages; those of the binding stay what they are. */
void translateErrors(std::exception_ptr thrown) { // NOLINT(performance-unnecessary-value-param): as it is registered
    try {
        std::rethrow_exception(thrown);
    } catch (const py::builtin_exception&) {
        throw;
    } catch (const std::runtime_error& error) {
        raiseError(error);
    } catch (const std::out_of_range& error) {
        raiseError(error);
    }
}

} // namespace

PYBIND11_MODULE(_veko, module) {
    pos::prepareLibrary();
    errorClass =
        PyErr_NewExceptionWithDoc("veko.Error", "What the run, or the library, refuses.", PyExc_RuntimeError, nullptr);
    module.attr("Error") = py::handle(errorClass);
    py::register_exception_translator(&translateErrors);
    module.attr("version") = pos::configure_version;
    pos::bindArguments(module);
    pos::bindBundle(module);
    pos::bindComparison(module);
    pos::bindDocument(module);
    pos::bindNights(module);
    pos::bindPointing(module);
}
