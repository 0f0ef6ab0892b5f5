/**
 * @file
 * Documents as Python gives them.
 */
#ifndef POS_SOURCE_H
#define POS_SOURCE_H

#include "xmlStructure.h"

#include <pybind11/stl.h>
#include <string>
#include <utility>

namespace pos {

/** The text of a document, and its name. */
using Source = std::pair<std::string, std::string>;

/** The document of a text. @throw as loadXmlBytes */
inline QDomDocument load(const Source& source) {
    return loadXmlBytes(QByteArray::fromStdString(source.first), source.second);
}

} // namespace pos

#endif
