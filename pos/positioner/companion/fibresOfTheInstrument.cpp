#include "CheckedDocument.h"
#include "FibreStatus.h"
#include "Target.h"
#include "instrumentFinders.h"
#include "nearNames.h"
#include "numberText.h"
#include "placeVeko.h"
#include "xmlKeywords.h"

#include <QStringList>
#include <algorithm>
#include <cmath>
#include <map>
#include <set>

namespace pos {

namespace {

/** Fibres of spectrographs are thicker than this, millimetres. */
constexpr double kThinnestFibre = 0.05;

std::string labelOf(const PlacedFibre& fibre) {
    return "fibre " + std::to_string(fibre.fibre.id);
}

/** Whether a fibre is there, and so its place means something. */
bool hasPlace(const PlacedFibre& fibre) {
    return fibre.fibre.status.value() != FibreStatus::Absent && std::isfinite(fibre.place.x) &&
           std::isfinite(fibre.place.y);
}

/** Where the place of a fibre is written. */
Span placeOf(const PlacedFibre& fibre) {
    return valueOrOpening(*fibre.element, attr::posX);
}

/** Places on a plate among which one finds those that coincide, in a time that does not depend on their number. */
class PlatePlaces {
public:
    /** An earlier fibre on which this one lies. Where there is none, keeps this one. */
    const PlacedFibre* findOrAdd(const PlacedFibre& fibre) {
        const Cell own = cellOf(fibre.place);
        // Two places in one cell coincide, so a cell needs to keep one.
        for (int x = -2; x <= 2; ++x) {
            for (int y = -2; y <= 2; ++y) {
                const auto found = cells_.find({own.first + x, own.second + y});
                if (found != cells_.end() && distance(found->second->place, fibre.place) < kThinnestFibre) {
                    return found->second;
                }
            }
        }
        cells_.emplace(own, &fibre);
        return nullptr;
    }

private:
    using Cell = std::pair<double, double>;

    static Cell cellOf(PlateCoordinates place) {
        constexpr double kSide = kThinnestFibre / 1.5;
        return {std::floor(place.x / kSide), std::floor(place.y / kSide)};
    }
    static double distance(PlateCoordinates a, PlateCoordinates b) {
        return std::hypot(a.x - b.x, a.y - b.y);
    }

    std::map<Cell, const PlacedFibre*> cells_;
};

/** The words for the states of a fibre. */
const QStringList& stateWords() {
    static const QStringList words = [] {
        QStringList all;
        for (std::uint32_t state = FibreStatus::Enabled; state <= FibreStatus::Absent; ++state) {
            all.push_back(QString::fromStdString(std::string(FibreStatus(static_cast<FibreStatus::Value>(state)))));
        }
        return all;
    }();
    return words;
}

/** The known status nearest to a word; empty where none is near. */
QString meantState(const QString& word) {
    for (const QString& known : stateWords()) {
        if (isSameWord(word.simplified(), known) || isSimilar(word.simplified(), known)) {
            return known;
        }
    }
    return {};
}

} // namespace

void findRepeatedFibreIds(const Rule& rule, const InstrumentDocument& document, Problems& problems) {
    std::set<std::uint32_t> ids;
    for (const PlacedFibre& fibre : document.fibres) {
        if (!ids.insert(fibre.fibre.id).second) {
            problems.add(rule, valueOrOpening(*fibre.element, attr::id),
                         "id " + std::to_string(fibre.fibre.id) +
                             " is that of another fibre too: the run takes place and status of the first, and the name "
                             "of the last",
                         "Give each fibre an id of its own");
        }
    }
}

void findRepeatedFibreNames(const Rule& rule, const InstrumentDocument& document, Problems& problems) {
    std::map<QString, const PlacedFibre*> names;
    for (const PlacedFibre& fibre : document.fibres) {
        const QString name = fibre.element->node.attribute(attr::fibreName);
        const auto [first, isNew] = names.try_emplace(name, &fibre);
        if (name.isEmpty() || !isNew) {
            problems.add(rule, valueOrOpening(*fibre.element, attr::fibreName),
                         name.isEmpty()
                             ? "fibre_name is empty"
                             : "fibre_name '" + name.toStdString() + "' is that of " + labelOf(*first->second) + " too",
                         "Give each fibre a name of its own");
        }
    }
}

void findFibresInOnePlace(const Rule& rule, const InstrumentDocument& document, Problems& problems) {
    PlatePlaces places;
    for (const PlacedFibre& fibre : document.fibres) {
        const PlacedFibre* other = hasPlace(fibre) ? places.findOrAdd(fibre) : nullptr;
        if (other != nullptr && other->fibre.id != fibre.fibre.id) {
            problems.add(rule, placeOf(fibre),
                         labelOf(fibre) + " stands on " + labelOf(*other) + ": " +
                             fixedText(std::hypot(fibre.place.x - other->place.x, fibre.place.y - other->place.y), 3)
                                 .toStdString() +
                             " mm are between them",
                         "Correct pos_x and pos_y, in millimetres");
        }
    }
}

void findFibresOffPlate(const Rule& rule, const InstrumentDocument& document, Problems& problems) {
    const std::optional<double> radius = plateRadiusMm(document.facts);
    if (!radius || !document.facts.geometry) {
        return;
    }
    const OpticalAxis& axis = document.facts.geometry->axes.at(factsOf(document.part).plate);
    const auto distanceOf = [&](const PlacedFibre& fibre) {
        return std::hypot(fibre.place.x - axis.x0, fibre.place.y - axis.y0);
    };
    const auto isOff = [&](const PlacedFibre& fibre) { return hasPlace(fibre) && distanceOf(fibre) > *radius; };
    const auto add = [&](Span place, const std::string& who, double distance, const std::string& help) {
        problems.add(rule, place,
                     who + " is " + fixedText(distance, 1).toStdString() +
                         " mm from the optical axis, and the field ends at " + fixedText(*radius, 1).toStdString() +
                         " mm",
                     help);
    };
    if (document.fibres.size() > 1 && std::all_of(document.fibres.begin(), document.fibres.end(), isOff)) {
        add(valueOrOpening(document.root, attr::centreX), "Every fibre, as " + labelOf(document.fibres.front()) + ',',
            distanceOf(document.fibres.front()),
            "Correct centre_x and centre_y, or the axis in the focal-plane map, in millimetres");
        return;
    }
    for (const PlacedFibre& fibre : document.fibres) {
        if (isOff(fibre)) {
            add(placeOf(fibre), labelOf(fibre), distanceOf(fibre), "Correct pos_x and pos_y, in millimetres");
        }
    }
}

void findUnknownStates(const Rule& rule, const InstrumentDocument& document, Problems& problems) {
    for (const PlacedFibre& fibre : document.fibres) {
        const SourceAttribute* status = fibre.element->attribute(attr::status);
        if (status == nullptr || stateWords().contains(status->value.toLower())) {
            continue;
        }
        const QString meant = meantState(status->value);
        const bool isCertain =
            isSameWord(status->value.simplified(), meant) && !(status->valuePlace == fibre.element->tag);
        problems.add(rule, status->valuePlace,
                     "status '" + status->value.toStdString() + "' is not known, and the run takes " + labelOf(fibre) +
                         " for broken",
                     (meant.isEmpty() ? "Write one of: " + stateWords().join(", ") : "Write " + meant).toStdString(),
                     isCertain ? std::optional(meant.toUtf8()) : std::nullopt);
    }
}

void findNoMiddleFibre(const Rule& rule, const InstrumentDocument& document, Problems& problems) {
    const std::uint32_t middle = scienceFibre(Target());
    const bool hasMiddle = std::any_of(document.fibres.begin(), document.fibres.end(),
                                       [&](const PlacedFibre& fibre) { return fibre.fibre.id == middle; });
    if (document.part == InstrumentPart::Bundle && !hasMiddle) {
        problems.add(rule, opening(document.root),
                     "There is no fibre " + std::to_string(middle) +
                         ", on which the run places each science target that asks for none",
                     "Give the middle fibre this id, or each science target a fibreid");
    }
}

} // namespace pos
