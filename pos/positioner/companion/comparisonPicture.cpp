#include "PlateView.h"
#include "comparisonRecords.h"
#include "comparisonUnits.h"
#include "pageText.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace pos {

namespace {

constexpr double kPanelSize = PlateView::kSize;

/** What the picture says about itself, and its colours, by day and by night; it may stand in a page beside others. */
constexpr const char* kHead = R"(<title>How the fibres moved</title>
<desc>Each dot is a fibre in the first document. Its arrow points to where it is in the second one, and is as long as the
bar tells.</desc>
<style>
.veko-moved{--paper:#fff;--ink:#1a1f24;--soft:#8a949e;--accent:#b3261e}
@media (prefers-color-scheme:dark){.veko-moved{--paper:#12161b;--ink:#e6e9ec;--soft:#6b7680;--accent:#ff8a80}}
.veko-moved rect{fill:var(--paper)}.veko-moved text{fill:var(--ink)}.veko-moved circle{fill:var(--soft)}
.veko-moved line{stroke:var(--accent)}.veko-moved path{fill:var(--accent)}.veko-moved .bar{stroke-width:3}
</style>
<defs><marker id="veko-moved-head" viewBox="0 0 6 6" refX="5" refY="3" markerWidth="4" markerHeight="4" orient="auto">
<path d="M0 0 6 3 0 6z"/></marker></defs>
<rect width="100%" height="100%"/>
)";

std::string attribute(const std::string& name, double value) {
    return ' ' + name + "=\"" + pixels(value) + '"';
}

std::string line(Pixel from, Pixel to, const std::string& style) {
    return "<line" + attribute("x1", from.x) + attribute("y1", from.y) + attribute("x2", to.x) + attribute("y2", to.y) +
           ' ' + style + "/>\n";
}

std::string caption(Pixel at, const std::string& words) {
    return "<text" + attribute("x", at.x) + attribute("y", at.y) + '>' + words + "</text>\n";
}

/** The largest of 1, 2 and 5 times a power of ten that is not larger. */
double roundBelow(double value) {
    const double power = std::pow(10.0, std::floor(std::log10(value)));
    return (value >= 5 * power ? 5 : value >= 2 * power ? 2 : 1) * power;
}

double lengthOf(const PointPair& pair) {
    return std::hypot(pair.second.x - pair.first.x, pair.second.y - pair.first.y);
}

/** The largest step of all, in the unit of the pairs. */
double longestOf(const std::vector<PointPair>& pairs) {
    double longest = 0.0;
    for (const PointPair& pair : pairs) {
        longest = std::max(longest, lengthOf(pair));
    }
    return longest;
}

/** The fibres as dots. */
std::string dotsOf(const std::vector<PlateCoordinates>& places, const PlateView& view) {
    std::string dots;
    for (const PlateCoordinates place : places) {
        const Pixel pixel = view.at(place);
        dots += "<circle" + attribute("cx", pixel.x) + attribute("cy", pixel.y) + " r=\"2\"/>\n";
    }
    return dots;
}

/** An arrow for each step, the longest one of a certain length, and a bar that tells the scale. */
std::string arrowsOf(const std::vector<PointPair>& pairs, const PlateView& view, const std::string& unit) {
    constexpr double kLongest = 36.0;
    const double longest = longestOf(pairs);
    if (longest == 0) {
        return caption({20, kPanelSize - 20}, "No fibre has moved.");
    }
    const double scale = kLongest / longest;
    std::string arrows;
    for (const auto& [first, second] : pairs) {
        if (lengthOf({first, second}) > 0) {
            const Pixel from = view.at({first.x, first.y});
            arrows += line(from, {from.x + (second.x - first.x) * scale, from.y - (second.y - first.y) * scale},
                           "marker-end=\"url(#veko-moved-head)\"");
        }
    }
    const double shown = roundBelow(longest);
    const int decimals = std::max(0, static_cast<int>(-std::floor(std::log10(shown))));
    const Pixel begin{20, kPanelSize - 25};
    return arrows + line(begin, {begin.x + shown * scale, begin.y}, "class=\"bar\"") +
           caption({begin.x + kLongest + 10, begin.y + 5}, pictureText(shown, decimals) + ' ' + unit);
}

/** Half of a field's picture. @param pairs in the unit; x to the right, y up; nothing for fibres all over the sky */
std::string panel(Pixel corner, const std::string& title, const std::optional<std::vector<PointPair>>& pairs,
                  const std::string& unit) {
    const std::string picture = "<g transform=\"translate(" + pictureText(corner.x, 0) + ' ' +
                                pictureText(corner.y, 0) + ")\">\n" + caption({20, 30}, title);
    if (!pairs || pairs->empty()) {
        return picture +
               caption({20, kPanelSize - 20},
                       pairs ? "No fibre has a place in both documents." : "The fibres are all over the sky.") +
               "</g>\n";
    }
    std::vector<PlateCoordinates> places;
    std::transform(pairs->begin(), pairs->end(), std::back_inserter(places),
                   [](const PointPair& pair) { return PlateCoordinates(pair.first.x, pair.first.y); });
    const PlateView view = PlateView::around(places);
    return picture + dotsOf(places, view) + arrowsOf(*pairs, view, unit) + "</g>\n";
}

std::vector<PointPair> scaled(std::vector<PointPair> pairs, double factor) {
    for (auto& [first, second] : pairs) {
        first = {first.x * factor, first.y * factor};
        second = {second.x * factor, second.y * factor};
    }
    return pairs;
}

/** From x to the north and y to the east to a picture with the north up and the east on the left. */
std::vector<PointPair> northUp(std::vector<PointPair> pairs) {
    for (auto& [first, second] : pairs) {
        first = {-first.y, first.x};
        second = {-second.y, second.x};
    }
    return pairs;
}

std::string pictureOf(const FieldComparison& field, double top) {
    const std::string name = "Field " + std::to_string(field.number);
    auto onSky = skyPairs(field.fibres);
    if (onSky) {
        onSky = northUp(scaled(*onSky, kOnSky.factor));
    }
    return panel({0, top}, name + " on the plate", scaled(platePairs(field.fibres), kOnPlate.factor), kOnPlate.name) +
           panel({kPanelSize, top}, name + " on the sky, north up, east on the left", onSky, kOnSky.name);
}

} // namespace

std::string comparisonPicture(const Comparison& comparison) {
    const auto rows = static_cast<double>(std::max<std::size_t>(comparison.fields.size(), 1));
    std::string picture =
        R"(<svg xmlns="http://www.w3.org/2000/svg" class="veko-moved" font-family="sans-serif" font-size="16" role="img")";
    picture +=
        " viewBox=\"0 0 " + pictureText(2 * kPanelSize, 0) + ' ' + pictureText(rows * kPanelSize, 0) + "\">\n" + kHead;
    if (comparison.fields.empty()) {
        picture += caption({20, 30}, "No field is in both documents.");
    }
    double top = 0.0;
    for (const FieldComparison& field : comparison.fields) {
        picture += pictureOf(field, top);
        top += kPanelSize;
    }
    return picture + "</svg>\n";
}

} // namespace pos
