/**
 * @file
 * The error of a document that is not well-formed.
 */
#ifndef POS_MALFORMEDXML_H
#define POS_MALFORMEDXML_H

#include <stdexcept>
#include <string>

namespace pos {

/** A document that is not well-formed XML 1.0: name + " is not valid XML". */
class MalformedXml : public std::runtime_error {
public:
    /**
     * @param name of the file
     * @param offset how far the document is well-formed, bytes of its text in UTF-8 without a byte-order mark
     */
    MalformedXml(const std::string& name, int offset)
        : std::runtime_error(name + " is not valid XML"), offset_(offset) {}

    /** How far the document is well-formed, bytes of its text in UTF-8 without a byte-order mark. */
    int offset() const {
        return offset_;
    }

private:
    int offset_;
};

} // namespace pos

#endif
