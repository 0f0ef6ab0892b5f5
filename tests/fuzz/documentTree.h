#ifndef POS_TESTS_DOCUMENTTREE_H
#define POS_TESTS_DOCUMENTTREE_H

#include <string>
#include <utility>
#include <vector>

/** An element as a fuzzer changes it: nothing in it need make a well-formed document. */
struct Node {
    std::string name;
    std::vector<std::pair<std::string, std::string>> attributes; ///< names may repeat
    std::string text;                                            ///< escaped when it is written
    std::string markup;                                          ///< written as it is, behind the text
    std::vector<Node> children;                                  ///< written behind the markup
};

/** The document element of a well-formed document, with its elements, attributes and texts. */
Node nodeOf(const std::string& xml);

/** Writes an element as XML. */
std::string xmlText(const Node& node);

/** Writes what is below an element in the INFO syntax of configuration files; attributes are left out. */
std::string infoText(const Node& node);

/** All nodes at and below a node, in document order. */
std::vector<Node*> nodesOf(Node& root);

#endif
