#ifndef POS_TESTS_REPEATED_H
#define POS_TESTS_REPEATED_H

#include <string>

/** A text many times over. */
inline std::string repeated(int count, const std::string& text) {
    std::string all;
    all.reserve(static_cast<std::size_t>(count) * text.size());
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

#endif
