#include "platePictures.h"

#include "PlateView.h"
#include "Report.h"
#include "angles.h"
#include "fibreRadius.h"
#include "pageText.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <erfa.h>
#include <iterator>
#include <nlohmann/json.hpp>

namespace pos {

namespace {

using Json = nlohmann::ordered_json;

constexpr double kSize = PlateView::kSize;

Json jsonOf(Pixel pixel) {
    return {{"x", pixels(pixel.x)}, {"y", pixels(pixel.y)}};
}

/** The transformation that draws millimetres of the plate in pixels. */
std::string transformOf(const PlateView& view) {
    const std::string scale = pictureText(view.pixelsPerMm(), 4);
    return "translate(" + pictureText(kSize / 2, 0) + ' ' + pictureText(kSize / 2, 0) + ") scale(" + scale + " -" +
           scale + ") translate(" + pictureText(-view.centre().x, 3) + ' ' + pictureText(-view.centre().y, 3) + ')';
}

/** The direction of a step on the plate in a picture, of length 1. */
Pixel directionOf(PlateCoordinates step) {
    const double length = std::hypot(step.x, step.y);
    return {step.x / length, -step.y / length};
}

/** An arrow, its end and its label. */
Json arrow(Pixel from, Pixel direction, double length) {
    constexpr double kToLabel = 14;
    const auto along = [&](double distance) {
        return Pixel{from.x + distance * direction.x, from.y + distance * direction.y};
    };
    return {{"from", jsonOf(from)}, {"to", jsonOf(along(length))}, {"label", jsonOf(along(length + kToLabel))}};
}

/** Arrows to the north and to the east in the upper right corner; in the left one where a guide star is there. */
Json compass(const PlateAxes& axes, Pixel guide) {
    constexpr double kToCorner = 80;
    constexpr double kLength = 42;
    const bool isTaken = guide.x > kSize / 2 && guide.y < kSize / 2;
    const Pixel origin{isTaken ? kToCorner : kSize - kToCorner, kToCorner};
    return {{"north", arrow(origin, directionOf(axes.north), kLength)},
            {"east", arrow(origin, directionOf(axes.east), kLength)}};
}

/** A bar of a round length, at most a quarter of the picture, on the left or where no guide star is. */
Json scaleBar(const PlateView& view, const PlateAxes& axes, Pixel guide) {
    constexpr double kToCorner = 20;
    constexpr std::array kArcseconds = {1, 2, 5, 10, 20, 30, 60, 120, 300, 600, 1200, 1800, 3600, 7200};
    const auto lengthOf = [&](double arcseconds) {
        return view.length(degreesToRadians(arcseconds / 3600) / axes.radiansPerMm());
    };
    int chosen = kArcseconds.front();
    for (const int arcseconds : kArcseconds) {
        chosen = lengthOf(arcseconds) <= kSize / 4 ? arcseconds : chosen;
    }
    const bool isMinutes = chosen >= 60;
    const bool isTaken = guide.x < kSize / 2 && guide.y > kSize / 2;
    return {{"x", pixels(isTaken ? kSize - kToCorner - lengthOf(chosen) : kToCorner)},
            {"length", pixels(lengthOf(chosen))},
            {"label", std::to_string(isMinutes ? chosen / 60 : chosen) + (isMinutes ? " arcmin" : " arcsec")}};
}

Json drawnFibre(const ReportedFibre& fibre) {
    return {{"id", std::to_string(fibre.id)},     {"spaxel", fibre.spaxel},
            {"x", pictureText(fibre.plate.x, 3)}, {"y", pictureText(fibre.plate.y, 3)},
            {"ra", pictureText(fibre.raDeg, 5)},  {"dec", pictureText(fibre.decDeg, 5)}};
}

/** The fibres of each kind of which there are some. */
Json kindsOf(const std::vector<ReportedFibre>& fibres) {
    Json kinds = Json::array();
    for (const FibreKind kind : kFibreKinds) {
        Json ofKind = Json::array();
        for (const ReportedFibre& fibre : fibres) {
            if (fibre.kind == kind) {
                ofKind.push_back(drawnFibre(fibre));
            }
        }
        if (!ofKind.empty()) {
            const std::string count = std::to_string(ofKind.size());
            kinds.push_back({{"kind", wordOf(kind)}, {"count", count}, {"fibres", std::move(ofKind)}});
        }
    }
    return kinds;
}

/** The square that holds all fibres, with a margin. */
PlateView viewOf(const std::vector<ReportedFibre>& fibres) {
    std::vector<PlateCoordinates> places;
    std::transform(fibres.begin(), fibres.end(), std::back_inserter(places),
                   [](const ReportedFibre& fibre) { return fibre.plate; });
    return PlateView::around(places);
}

/** An arrow in the margin of a picture towards what it does not show. */
Json arrowTo(const PlateView& view, PlateCoordinates place) {
    constexpr double kEdge = kSize / 2 - 8;
    constexpr double kLength = 28;
    const Pixel pixel = view.at(place);
    const double x = pixel.x - kSize / 2;
    const double y = pixel.y - kSize / 2;
    const double length = std::hypot(x, y);
    const Pixel direction{x / length, y / length};
    const double reach = kEdge / std::max(std::fabs(direction.x), std::fabs(direction.y)) - kLength;
    Json json = arrow({kSize / 2 + reach * direction.x, kSize / 2 + reach * direction.y}, direction, kLength);
    const double labelX = std::clamp(kSize / 2 + (reach - 16) * direction.x, 100.0, kSize - 100);
    json["label"] = jsonOf(Pixel{labelX, kSize / 2 + (reach - 16) * direction.y + 4});
    return json;
}

std::string guideDistance(const ReportedField& field) {
    const Astrometric& star = field.guide.sky;
    const Astrometric& science = field.science.sky;
    return smallAngleText(eraSeps(science.ra, science.dec, star.ra, star.dec));
}

Json masksIn(const PlateView& view, const ReportedField& field) {
    Json masks = Json::array();
    for (const ReportedMask& mask : field.masks) {
        const double mm = degreesToRadians(std::fabs(mask.mask.radius) / 3600) / field.axes.radiansPerMm();
        Json json = jsonOf(view.at(mask.plate));
        json["radius"] = pixels(std::max(view.length(mm), 2.0));
        masks.push_back(json);
    }
    return masks;
}

/** A mark with its label on one side. */
Json marked(const PlateView& view, PlateCoordinates place, bool isLabelLeft) {
    constexpr double kToLabel = 20;
    const Pixel pixel = view.at(place);
    Json json = jsonOf(pixel);
    json["labelX"] = pixels(pixel.x + (isLabelLeft ? -kToLabel : kToLabel));
    json["labelY"] = pixels(pixel.y + 4);
    json["anchor"] = isLabelLeft ? "end" : "start";
    return json;
}

/** The radius of the fibres, radians; of a single one, an arcsecond. */
double radiusOf(const std::vector<ReportedFibre>& fibres) {
    std::vector<FibrePlace> places;
    places.reserve(fibres.size());
    for (const ReportedFibre& fibre : fibres) {
        places.push_back({fibre.plate, {degreesToRadians(fibre.raDeg), degreesToRadians(fibre.decDeg)}});
    }
    return fibreRadius(places).value_or(degreesToRadians(1.0 / 3600));
}

/** What both pictures show. */
Json commonOf(const PlateView& view, const ReportedField& field) {
    return {{"transform", transformOf(view)},
            {"science", jsonOf(view.at(field.science.plate))},
            {"masks", masksIn(view, field)},
            {"compass", compass(field.axes, view.at(field.guide.plate))},
            {"bar", scaleBar(view, field.axes, view.at(field.guide.plate))},
            {"guideDistance", guideDistance(field)}};
}

} // namespace

Json bundlePicture(const ReportedField& field) {
    const PlateView view = viewOf(field.fibres);
    Json picture = commonOf(view, field);
    picture["radius"] = pictureText(radiusOf(field.fibres) / field.axes.radiansPerMm(), 4);
    picture["count"] = std::to_string(field.fibres.size());
    picture["kinds"] = kindsOf(field.fibres);
    const bool isShown = view.shows(field.guide.plate);
    picture["guide"] =
        isShown ? marked(view, field.guide.plate, view.at(field.guide.plate).x > kSize / 2) : Json(false);
    picture["guideArrow"] = isShown ? Json(false) : arrowTo(view, field.guide.plate);
    return picture;
}

Json platePicture(const ReportedField& field) {
    constexpr double kMargin = 1.08;
    double halfSize = field.fieldRadiusMm;
    for (const PlateCoordinates place : {field.guide.plate, field.science.plate}) {
        halfSize = std::max({halfSize, std::fabs(place.x), std::fabs(place.y)});
    }
    const PlateView view({0.0, 0.0}, halfSize * kMargin);
    Json picture = commonOf(view, field);
    picture["radius"] = pixels(view.length(field.fieldRadiusMm));
    const bool isGuideLeft = field.guide.plate.x < field.centre.plate.x;
    picture["centre"] = marked(view, field.centre.plate, !isGuideLeft);
    picture["bundle"] = marked(view, field.science.plate, !isGuideLeft);
    picture["guide"] = marked(view, field.guide.plate, isGuideLeft);
    return picture;
}

} // namespace pos
