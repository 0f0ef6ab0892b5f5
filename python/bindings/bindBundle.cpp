#include "LibraryCall.h"
#include "PointedPlate.h"
#include "arrays.h"
#include "bindings.h"

#include "angles.h"

#include <string>
#include <vector>

namespace pos {

namespace {

namespace py = pybind11;

/** What a fibre tells of itself. */
struct FibreRow {
    std::uint32_t id;
    std::string name;
    std::string status;
    double dx; ///< mm, as are the next three
    double dy;
    double x;
    double y;
};

/** The fibres of a bundle, in ascending identifier. */
struct FibreTable {
    std::vector<FibreRow> rows;
    double orientation; ///< radians
};

FibreTable readFibres(const std::string& configFile) {
    // Where the bundle is on its plate depends on no pointing.
    const PointedPlate plate(configFile, Astrometric{}, 0.0, Conditions{}, std::nullopt);
    FibreTable table{{}, plate.bundle().centre.orientation};
    for (const auto& [id, fibre] : plate.bundle().fibres) {
        const PlateCoordinates position = fibre.platePosition();
        table.rows.push_back(
            {id, plate.bundle().names.at(id), std::string(fibre.status), fibre.dx, fibre.dy, position.x, position.y});
    }
    return table;
}

py::dict bundle(const std::string& configFile) {
    const FibreTable table = inLibrary([&] { return readFibres(configFile); });
    py::dict result;
    result["ids"] = columnOf(table.rows, &FibreRow::id);
    result["names"] = columnOf(table.rows, &FibreRow::name);
    result["statuses"] = columnOf(table.rows, &FibreRow::status);
    result["dx"] = columnOf(table.rows, &FibreRow::dx);
    result["dy"] = columnOf(table.rows, &FibreRow::dy);
    result["x"] = columnOf(table.rows, &FibreRow::x);
    result["y"] = columnOf(table.rows, &FibreRow::y);
    result["orientation"] = radiansToDegrees(table.orientation);
    return result;
}

} // namespace

void bindBundle(py::module_& module) {
    module.def("bundle", &bundle);
}

} // namespace pos
