#ifndef POS_TESTS_PARSEDXML_H
#define POS_TESTS_PARSEDXML_H

#include "xmlParse.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

/** How a document is refused, without its name; empty when it is taken. */
inline std::string refusal(const std::string& text) {
    const std::string name = "a.xml";
    try {
        pos::parseXml(QByteArray::fromStdString(text), name);
        return {};
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(std::string(error.what()).substr(0, name.size() + 1), name + ' ');
        return std::string(error.what()).substr(name.size() + 1);
    }
}

/** Fails the test for a document that is refused for another reason. */
inline bool wellFormed(const std::string& text) {
    const std::string reason = refusal(text);
    EXPECT_TRUE(reason.empty() || reason == "is not valid XML") << reason;
    return reason.empty();
}

inline QDomDocument parsed(const std::string& text) {
    return pos::parseXml(QByteArray::fromStdString(text), "a.xml").document;
}

#endif
