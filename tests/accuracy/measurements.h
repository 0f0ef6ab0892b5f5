/**
 * What is measured, and the form in which it is printed.
 */
#ifndef POS_TESTS_ACCURACY_MEASUREMENTS_H
#define POS_TESTS_ACCURACY_MEASUREMENTS_H

#include <cstdio>
#include <string>
#include <vector>

/**
 * A table that tables.py makes into Markdown: lines of the table's name and its cells, separated by tabs, the first
 * line being the heads of the columns. Numbers are printed in full; whole ones are counts.
 */
class PrintedTable {
public:
    PrintedTable(std::string name, const std::vector<std::string>& heads) : name_(std::move(name)) {
        row(heads);
    }
    void row(const std::vector<std::string>& cells) const {
        std::string line = name_;
        for (const std::string& cell : cells) {
            line += '\t' + cell;
        }
        std::puts(line.c_str());
    }

private:
    std::string name_;
};

/** A number that was measured. */
inline std::string cell(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6e", value);
    return text;
}

/** A count. */
inline std::string cell(int value) {
    return std::to_string(value);
}

/** From the sky to the plate and back, and from the plate to the sky and back, by altitude. */
void measureRoundTrips();
/** How the field-centre solve converges, and how near to the wanted place the target lands. */
void measureFieldCentreSolve();
/** How the hour-angle solve converges, and how near to the wanted hour angle it ends. */
void measureHourAngleSolve();
/** How far from the altitude limit a field is at the hour angles that count as its limits. */
void measureHourAngleLimits();
/** Optics, parallactic angle, and what the height of the site changes. */
void measureOtherQuantities();
/** How much of a star's place at the date the astronomy library lets rounding decide. */
void measureSpaceMotion();

#endif
