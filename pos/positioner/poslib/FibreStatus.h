/**
 * @file
 * The state of a fibre.
 */
#ifndef POS_FIBRESTATUS_H
#define POS_FIBRESTATUS_H

#include <cstdint>
#include <string>

namespace pos {

/** The fibre-status word of a plate definition. */
class FibreStatus {
public:
    /** The states in the order of their words "enabled", "disabled", "broken", "bad ferrule", and so on. */
    enum Value : std::uint32_t { Enabled, Disabled, Broken, BadFerrule, NoMagnet, NoPrism, Absent };

    /** A status of the set, unchecked. */
    constexpr FibreStatus(Value value) : value_(value) {} // NOLINT(google-explicit-constructor): a value of the set

    /**
     * Reads a status word in any letter case. A word that is not in the set, the empty text included, counts as
     * Broken: a fibre of unknown state must not be relied on.
     */
    explicit FibreStatus(const std::string& text);

    /** The lower-case word; empty for a value outside the set. */
    explicit operator std::string() const;

    /** The status as a value that can be switched on. */
    constexpr Value value() const {
        return value_;
    }

    /** Whether both are the same status. */
    friend constexpr bool operator==(FibreStatus left, FibreStatus right) {
        return left.value_ == right.value_;
    }

private:
    Value value_;
};

} // namespace pos

#endif
