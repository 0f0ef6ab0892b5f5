#include "LibraryCall.h"
#include "bindings.h"

#include "angles.h"
#include "comparisonRecords.h"
#include "xmlStructure.h"

#include <pybind11/stl.h>
#include <string>
#include <utility>
#include <vector>

namespace pos {

namespace {

namespace py = pybind11;

/** A comparison in every form: as JSON, as a text, as SVG. */
struct ComparisonForms {
    std::string json;
    std::string text;
    std::string picture;
};

/** A document: its text, and its name. */
using Source = std::pair<std::string, std::string>;

QDomDocument documentOf(const Source& source) {
    return loadXmlBytes(QByteArray::fromStdString(source.first), source.second);
}

py::tuple compare(const Source& first, const Source& second, double plateMicrometres, double skyArcseconds,
                  const std::vector<std::string>& ignored) {
    CompareOptions options{plateMicrometres / 1000, degreesToRadians(skyArcseconds / 3600)};
    for (const std::string& name : ignored) {
        options.ignored.insert(QString::fromStdString(name));
    }
    const ComparisonForms forms = inLibrary([&] {
        const QDomDocument firstDocument = documentOf(first);
        const Comparison comparison = compareDocuments(firstDocument, documentOf(second), options);
        return ComparisonForms{comparisonJson(comparison), comparisonText(comparison), comparisonPicture(comparison)};
    });
    return py::make_tuple(forms.json, forms.text, forms.picture);
}

} // namespace

void bindComparison(py::module_& module) {
    module.def("compare", &compare, py::arg("first"), py::arg("second"), py::arg("plate_tolerance"),
               py::arg("sky_tolerance"), py::arg("ignore"));
}

} // namespace pos
