/**
 * @file
 * The errors of a document that cannot be read.
 */
#ifndef POS_MALFORMEDXML_H
#define POS_MALFORMEDXML_H

#include <stdexcept>
#include <string>
#include <utility>

namespace pos {

/** A document that cannot be read, for whatever the message says. */
class UnreadableXml : public std::runtime_error {
public:
    /**
     * @param message what is wrong, beginning with the name of the document
     * @param offset where reading stops, bytes of the document's text in UTF-8 without a byte-order mark
     * @param reason what is wrong there, where the message leaves it out
     */
    UnreadableXml(const std::string& message, int offset, std::string reason = {})
        : std::runtime_error(message), offset_(offset), reason_(std::move(reason)) {}

    /** Where reading stops, bytes of the document's text in UTF-8 without a byte-order mark. */
    int offset() const {
        return offset_;
    }
    /** What is wrong there, where the message leaves it out; otherwise empty. */
    const std::string& reason() const {
        return reason_;
    }

private:
    int offset_;
    std::string reason_;
};

/** A document that is not well-formed XML 1.0: name + " is not valid XML". Up to the offset it is well-formed. */
class MalformedXml : public UnreadableXml {
public:
    /** As UnreadableXml, for a document of this name. */
    MalformedXml(const std::string& name, int offset, const std::string& reason)
        : UnreadableXml(name + " is not valid XML", offset, reason) {}
};

} // namespace pos

#endif
