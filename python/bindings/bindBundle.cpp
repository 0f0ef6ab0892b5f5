#include "LibraryCall.h"
#include "PointedPlate.h"
#include "arrays.h"
#include "bindings.h"

#include "angles.h"

#include <pybind11/stl.h>
#include <string>
#include <vector>

namespace pos {

namespace {

namespace py = pybind11;

/** The fibres of a bundle, column by column, in ascending identifier. */
struct FibreColumns {
    std::vector<std::uint32_t> ids;
    std::vector<std::string> names;
    std::vector<std::string> statuses;
    std::vector<double> dx;
    std::vector<double> dy;
    std::vector<double> x;
    std::vector<double> y;
    double orientation = 0.0; ///< radians
};

FibreColumns readFibres(const std::string& configFile) {
    // Where the bundle is on its plate depends on no pointing.
    const PointedPlate plate(configFile, Astrometric{}, 0.0, Conditions{}, std::nullopt);
    FibreColumns columns;
    columns.orientation = plate.veko().centre.orientation;
    for (const auto& [id, fibre] : plate.veko().fibres) {
        const PlateCoordinates position = fibre.platePosition();
        columns.ids.push_back(id);
        columns.names.push_back(plate.veko().names.at(id));
        columns.statuses.emplace_back(fibre.status);
        columns.dx.push_back(fibre.dx);
        columns.dy.push_back(fibre.dy);
        columns.x.push_back(position.x);
        columns.y.push_back(position.y);
    }
    return columns;
}

py::dict bundle(const std::string& configFile) {
    const FibreColumns columns = inLibrary([&] { return readFibres(configFile); });
    py::dict result;
    result["ids"] = arrayOf(columns.ids);
    result["names"] = columns.names;
    result["statuses"] = columns.statuses;
    result["dx"] = arrayOf(columns.dx);
    result["dy"] = arrayOf(columns.dy);
    result["x"] = arrayOf(columns.x);
    result["y"] = arrayOf(columns.y);
    result["orientation"] = radiansToDegrees(columns.orientation);
    return result;
}

} // namespace

void bindBundle(py::module_& module) {
    module.def("bundle", &bundle, py::arg("config"));
}

} // namespace pos
