#ifndef POS_TESTS_SPREAD_H
#define POS_TESTS_SPREAD_H

#include <cmath>

/** How many disagreements there were, the worst of them and their root mean square, in the unit in which they came. */
class Spread {
public:
    void add(double disagreement) {
        ++count_;
        // Written so that NaN, once there, stays.
        if (!(std::fabs(disagreement) <= worst_) && !std::isnan(worst_)) {
            worst_ = std::fabs(disagreement);
        }
        sumOfSquares_ += disagreement * disagreement;
    }
    int count() const {
        return count_;
    }
    double worst() const {
        return worst_;
    }
    double rms() const {
        return count_ > 0 ? std::sqrt(sumOfSquares_ / count_) : 0.0;
    }

private:
    int count_ = 0;
    double worst_ = 0.0;
    double sumOfSquares_ = 0.0;
};

#endif
