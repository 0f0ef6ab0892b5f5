/**
 * @file
 * What a target is used for.
 */
#ifndef POS_TARGETUSE_H
#define POS_TARGETUSE_H

#include <cstdint>
#include <string>

namespace pos {

/**
 * The one-letter target use of the field-definition document.
 *
 * The run gives three letters a meaning: T marks the science target and the science spaxels, G the guide star, S the
 * sky spaxels. The others are carried through unchanged.
 */
class TargetUse {
public:
    /** The letters. */
    enum Value : std::uint32_t { T, C, G, S, E, R };

    /** A use of the set, unchecked. */
    constexpr TargetUse(Value value) : value_(value) {} // NOLINT(google-explicit-constructor): a value of the set

    /**
     * @param text one of T, C, G, S, E, R in either case
     * @throw std::runtime_error text + " is not a valid target use", for any other text
     */
    explicit TargetUse(const std::string& text);

    /** The upper-case letter; empty for a value outside the set. */
    explicit operator std::string() const;

    /** The use as a value that can be switched on. */
    constexpr Value value() const {
        return value_;
    }

    /** Whether both are the same use. */
    friend constexpr bool operator==(TargetUse left, TargetUse right) {
        return left.value_ == right.value_;
    }

private:
    Value value_;
};

} // namespace pos

#endif
