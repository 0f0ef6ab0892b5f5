#include "LibraryCall.h"
#include "bindings.h"

#include "ConditionsXML.h"
#include "Estimates.h"
#include "Version.h"

#include <array>
#include <exception>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>
#include <stdexcept>

namespace {

namespace py = pybind11;

/** Its message may hold the bytes of a file's name. */
void raise(const py::handle& type, const std::exception& error) {
    PyErr_SetObject(type.ptr(), py::reinterpret_steal<py::object>(PyUnicode_DecodeFSDefault(error.what())).ptr());
}

/** Failures of the library become veko.Error, with their own messages; those of the binding stay what they are. */
void translateErrors(std::exception_ptr thrown) { // NOLINT(performance-unnecessary-value-param): as it is registered
    try {
        std::rethrow_exception(thrown);
    } catch (const py::builtin_exception&) {
        throw;
    } catch (const std::runtime_error& error) {
        raise(py::module_::import("veko._veko").attr("Error"), error);
    } catch (const std::out_of_range& error) {
        raise(py::module_::import("veko._veko").attr("Error"), error);
    }
}

/** Temperature, pressure and humidity of a document that names none. */
std::array<double, 3> defaultWeather() {
    const pos::Conditions conditions = pos::createConditionsXML({});
    return {conditions.temperature, conditions.pressure, conditions.relativeHumidity};
}

} // namespace

PYBIND11_MODULE(_veko, module) {
    pos::prepareLibrary();
    module.attr("Error") = py::reinterpret_steal<py::object>(
        PyErr_NewExceptionWithDoc("veko.Error", "What the run, or the library, refuses.", PyExc_RuntimeError, nullptr));
    py::register_exception_translator(&translateErrors);
    module.attr("version") = pos::configure_version;
    module.def("default_weather", &defaultWeather);
    module.def(
        "mjd_of_epoch", [](double epoch) { return pos::resolveDate(epoch, {}); }, py::arg("epoch"));
    pos::bindBundle(module);
    pos::bindComparison(module);
    pos::bindDocument(module);
    pos::bindNights(module);
    pos::bindPointing(module);
}
