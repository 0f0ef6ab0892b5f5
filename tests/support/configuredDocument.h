#ifndef POS_TESTS_CONFIGUREDDOCUMENT_H
#define POS_TESTS_CONFIGUREDDOCUMENT_H

#include "Program.h"
#include "xml.h"

#include <QDomDocument>
#include <map>
#include <string>
#include <vector>

/**
 * Runs the program on a document in a folder of its own. Fails the test when the run does not end with status 0, says
 * anything, or leaves no output file.
 *
 * @param document the bytes of the input
 * @param arguments further arguments
 * @return the bytes of the output
 */
std::string configuredBytes(const std::string& document, const std::vector<std::string>& arguments = {},
                            const ProgramOptions& options = {});

/** The same, parsed. */
QDomDocument configured(const std::string& document, const std::vector<std::string>& arguments = {},
                        const ProgramOptions& options = {});

/** Fails the test unless a run ended with status 0 and said nothing. */
void expectSilentSuccess(const ProgramResult& result);

/** All elements of a name at or below a node, in document order. */
std::vector<QDomElement> elements(const QDomNode& node, const std::string& name);

/** The only element of a name at or below a node. Fails the test, and gives a null element, when there is another. */
QDomElement onlyElement(const QDomNode& node, const std::string& name);

/** The child elements of a name. */
std::vector<QDomElement> children(const QDomElement& parent, const std::string& name);

/** An attribute as a number. Fails the test when it is none. */
double number(const QDomElement& element, const std::string& attribute);

/** All attributes of an element. */
std::map<std::string, std::string> attributes(const QDomElement& element);

#endif
