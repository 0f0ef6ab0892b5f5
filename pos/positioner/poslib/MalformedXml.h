/**
 * @file
 * The errors of a document that cannot be read.
 */
#ifndef POS_MALFORMEDXML_H
#define POS_MALFORMEDXML_H

#include <stdexcept>
#include <string>

namespace pos {

/** A document that cannot be read, for whatever the message says. */
class UnreadableXml : public std::runtime_error {
public:
    /** @param offset where reading stops, bytes of the document's text in UTF-8 without a byte-order mark */
    UnreadableXml(const std::string& message, int offset) : std::runtime_error(message), offset_(offset) {}

    /** Where reading stops, bytes of the document's text in UTF-8 without a byte-order mark. */
    int offset() const {
        return offset_;
    }

private:
    int offset_;
};

/** A document that is not well-formed XML 1.0: name + " is not valid XML". Up to the offset it is well-formed. */
class MalformedXml : public UnreadableXml {
public:
    MalformedXml(const std::string& name, int offset) : UnreadableXml(name + " is not valid XML", offset) {}
};

} // namespace pos

#endif
