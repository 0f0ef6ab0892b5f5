#ifndef POS_TESTS_XMLATTACKS_H
#define POS_TESTS_XMLATTACKS_H

#include <functional>
#include <string>
#include <vector>

/** A text made to hurt its reader. */
struct XmlAttack {
    std::string name;
    std::function<std::string()> text;
};

/** A text many times over. */
std::string times(int count, const std::string& text);

/** A text many times over, with the number of each, from 0, for each "#" in it. */
std::string numbered(int count, const std::string& text);

/** Attacks of up to 10 MB that the check before the tree is built refuses. */
std::vector<XmlAttack> refusedAttacks();

/** Documents of up to 10 MB that load, as large as their kind may be; none has a configure element. */
std::vector<XmlAttack> loadedAttacks();

#endif
