#include "LibraryCall.h"
#include "Source.h"
#include "bindings.h"

#include "comparisonRecords.h"

#include <array>
#include <string>
#include <vector>

namespace pos {

namespace {

namespace py = pybind11;

/** A comparison as JSON, as a text and as SVG. Tolerances are micrometres and arcsec. */
std::array<std::string, 3> compare(const Source& first, const Source& second, double plateTolerance,
                                   double skyTolerance, const std::vector<std::string>& ignored) {
    const CompareOptions options = compareOptions(plateTolerance, skyTolerance, ignored);
    return inLibrary([&] {
        const QDomDocument firstDocument = load(first);
        const Comparison comparison = compareDocuments(firstDocument, load(second), options);
        return std::array{comparisonJson(comparison), comparisonText(comparison), comparisonPicture(comparison)};
    });
}

} // namespace

void bindComparison(py::module_& module) {
    module.def("compare", &compare);
}

} // namespace pos
