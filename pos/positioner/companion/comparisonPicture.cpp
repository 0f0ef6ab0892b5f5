#include "comparisonRecords.h"
#include "numberText.h"

#include <algorithm>
#include <cmath>

namespace pos {

namespace {

constexpr double kSize = 800.0; // of a field's picture
constexpr double kMargin = 60.0;
constexpr double kLongest = 60.0; // of an arrow

std::string number(double value) {
    return fixedText(value, 2).toStdString();
}

/** From millimetres on the plate to the picture, whose y points down. */
struct Scale {
    Point middle;
    double perMillimetre;
    double top;

    Point at(Point plate) const {
        return {kSize / 2 + (plate.x - middle.x) * perMillimetre,
                top + kSize / 2 - (plate.y - middle.y) * perMillimetre};
    }
};

/** The largest of 1, 2 and 5 times a power of ten that is not larger. */
double roundBelow(double value) {
    const double power = std::pow(10.0, std::floor(std::log10(value)));
    const double digit = value / power;
    return (digit >= 5 ? 5 : digit >= 2 ? 2 : 1) * power;
}

std::vector<std::pair<Point, Point>> fibresOf(const FieldComparison& field) {
    std::vector<std::pair<Point, Point>> fibres;
    for (const MovedTarget& target : field.targets) {
        if (target.fibre && target.plate) {
            fibres.push_back(*target.plate);
        }
    }
    return fibres;
}

Scale scaleOf(const std::vector<std::pair<Point, Point>>& fibres, double top) {
    const auto [left, right] = std::minmax_element(fibres.begin(), fibres.end(),
                                                   [](const auto& a, const auto& b) { return a.first.x < b.first.x; });
    const auto [low, high] = std::minmax_element(fibres.begin(), fibres.end(),
                                                 [](const auto& a, const auto& b) { return a.first.y < b.first.y; });
    const double extent = std::max({right->first.x - left->first.x, high->first.y - low->first.y, 1e-9});
    return {{(left->first.x + right->first.x) / 2, (low->first.y + high->first.y) / 2},
            (kSize - 2 * kMargin) / extent,
            top};
}

std::string line(Point from, Point to, const char* extra) {
    return "<line x1=\"" + number(from.x) + "\" y1=\"" + number(from.y) + "\" x2=\"" + number(to.x) + "\" y2=\"" +
           number(to.y) + '"' + extra + "/>\n";
}

std::string text(Point at, const std::string& words) {
    return "<text x=\"" + number(at.x) + "\" y=\"" + number(at.y) + "\">" + words + "</text>\n";
}

std::string pictureOf(const FieldComparison& field, double top) {
    const std::string name = "Field " + std::to_string(field.number);
    const std::vector<std::pair<Point, Point>> fibres = fibresOf(field);
    if (fibres.empty()) {
        return text({20, top + 30}, name + ": no fibre has a place on the plate in both documents");
    }
    const Scale scale = scaleOf(fibres, top);
    double longest = 0.0;
    for (const auto& [first, second] : fibres) {
        longest = std::max(longest, std::hypot(second.x - first.x, second.y - first.y));
    }
    const double magnified = longest > 0 ? kLongest / longest : 0.0; // of an arrow, per millimetre
    std::string picture = "<g><title>" + name + "</title>\n" + text({20, top + 30}, name);
    for (const auto& [first, second] : fibres) {
        const Point place = scale.at(first);
        picture += "<circle cx=\"" + number(place.x) + "\" cy=\"" + number(place.y) + "\" r=\"1.5\"/>\n";
        if (longest > 0) {
            picture +=
                line(place, {place.x + (second.x - first.x) * magnified, place.y - (second.y - first.y) * magnified},
                     " marker-end=\"url(#head)\"");
        }
    }
    if (longest > 0) {
        const double shown = roundBelow(longest);
        const Point begin{20, top + kSize - 20};
        picture +=
            line(begin, {begin.x + shown * magnified, begin.y}, " stroke-width=\"2\"") +
            text({begin.x + kLongest + 10, begin.y + 5}, QString::number(shown * 1000, 'g', 3).toStdString() + " µm");
    } else {
        picture += text({20, top + kSize - 15}, "No fibre has moved on the plate.");
    }
    return picture + "</g>\n";
}

} // namespace

std::string comparisonPicture(const Comparison& comparison) {
    const std::size_t fields = std::max<std::size_t>(comparison.fields.size(), 1);
    const std::string size = number(kSize) + ' ' + number(kSize * static_cast<double>(fields));
    std::string picture =
        "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " + size +
        "\" font-family=\"sans-serif\" font-size=\"16\" role=\"img\">\n<title>How fibres moved on the plate</title>\n"
        "<desc>Each dot is a fibre in the first document; its arrow points to where it is in the second, "
        "magnified.</desc>\n"
        "<defs><marker id=\"head\" viewBox=\"0 0 6 6\" refX=\"5\" refY=\"3\" markerWidth=\"5\" markerHeight=\"5\" "
        "orient=\"auto\"><path d=\"M0 0 6 3 0 6z\" fill=\"#b03020\"/></marker></defs>\n"
        "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n"
        "<style>line{stroke:#b03020}circle{fill:#405060}text{fill:#202020}</style>\n";
    double top = 0.0;
    for (const FieldComparison& field : comparison.fields) {
        picture += pictureOf(field, top);
        top += kSize;
    }
    return picture + "</svg>\n";
}

} // namespace pos
