#include "documentFromBytes.h"

#include "fieldDefinition.h"
#include "vocabulary.h"

#include <QTextCodec>
#include <iterator>

namespace {

/** Most edits of one document. */
constexpr int kMaxEdits = 40;
/** A document of more elements than this gets no copies. */
constexpr std::size_t kMaxElements = 300;

/** How the declaration calls an encoding, and the one in which the text is really written. */
struct Encoding {
    const char* declared;
    const char* codec;
};

constexpr Encoding kEncodings[] = {
    {"UTF-8", "UTF-8"},           {"UTF-8", "ISO-8859-1"}, {"utf8", "UTF-8"},
    {"ISO-8859-1", "ISO-8859-1"}, {"US-ASCII", "UTF-8"},   {"windows-1252", "windows-1252"},
    {"KOI8-R", "KOI8-R"},         {"UTF-16", "UTF-16"},    {"UTF-16LE", "UTF-16LE"},
    {"UTF-16", "UTF-8"},          {"UTF-32", "UTF-32"},    {"Shift_JIS", "Shift_JIS"},
    {"no-such-encoding", "UTF-8"}};

template <typename T> T& pick(FuzzedDataProvider& bytes, std::vector<T>& from) {
    return from[bytes.ConsumeIntegralInRange<std::size_t>(0, from.size() - 1)];
}

template <typename T> const T& pick(FuzzedDataProvider& bytes, const std::vector<T>& from) {
    return from[bytes.ConsumeIntegralInRange<std::size_t>(0, from.size() - 1)];
}

/** Replaces, inserts or removes one character. */
void touch(FuzzedDataProvider& bytes, std::string& text) {
    const auto place = bytes.ConsumeIntegralInRange<std::size_t>(0, text.size());
    const char character = bytes.ConsumeIntegral<char>();
    const int how = bytes.ConsumeIntegralInRange<int>(0, 2);
    if (how == 0 || place == text.size()) {
        text.insert(place, 1, character);
    } else if (how == 1) {
        text[place] = character;
    } else {
        text.erase(place, 1);
    }
}

void setAttribute(Node& node, const std::string& name, const std::string& value) {
    for (auto& [ownName, ownValue] : node.attributes) {
        if (ownName == name) {
            ownValue = value;
            return;
        }
    }
    node.attributes.emplace_back(name, value);
}

void editAttributes(FuzzedDataProvider& bytes, Node& node) {
    const int how = node.attributes.empty() ? 0 : bytes.ConsumeIntegralInRange<int>(0, 5);
    if (how == 0) {
        setAttribute(node, pick(bytes, attributeNames()), chosenValue(bytes));
        return;
    }
    auto& attribute = pick(bytes, node.attributes);
    switch (how) {
    case 1:
        attribute.second = chosenValue(bytes);
        break;
    case 2:
        touch(bytes, attribute.second);
        break;
    case 3:
        attribute.first = pick(bytes, attributeNames());
        break;
    case 4:
        node.attributes.erase(node.attributes.begin() + (&attribute - node.attributes.data()));
        break;
    default: // a second one of the name, which no well-formed document has
        node.attributes.emplace_back(attribute.first, chosenValue(bytes));
    }
}

void editText(FuzzedDataProvider& bytes, Node& node) {
    switch (bytes.ConsumeIntegralInRange<int>(0, 2)) {
    case 0:
        node.text = chosenValue(bytes);
        break;
    case 1:
        touch(bytes, node.text);
        break;
    default:
        node.markup += pick(bytes, markups());
    }
}

/** Adds, removes, doubles or renames a child. */
void editChildren(FuzzedDataProvider& bytes, Node& node, bool mayGrow) {
    const int how = node.children.empty() ? 0 : bytes.ConsumeIntegralInRange<int>(0, 4);
    if (how == 0) {
        node.children.push_back({pick(bytes, elementNames()), {}, {}, {}, {}});
        return;
    }
    const auto child =
        node.children.begin() + bytes.ConsumeIntegralInRange<std::ptrdiff_t>(0, std::ssize(node.children) - 1);
    if (how == 1) {
        node.children.erase(child);
    } else if (how == 2) {
        child->name = pick(bytes, elementNames());
    } else if (how == 3) {
        std::iter_swap(child, node.children.begin());
    } else if (mayGrow) {
        const Node copy = *child;
        node.children.insert(child, copy);
    }
}

void editOnce(FuzzedDataProvider& bytes, Node& root) {
    const std::vector<Node*> nodes = nodesOf(root);
    Node& node = *pick(bytes, nodes);
    switch (bytes.ConsumeIntegralInRange<int>(0, 7)) {
    case 0:
        editText(bytes, node);
        break;
    case 1:
    case 2:
        editChildren(bytes, node, nodes.size() < kMaxElements);
        break;
    case 3: { // nests anything, the whole document too, in an element
        const Node copy = *pick(bytes, nodes);
        if (nodes.size() < kMaxElements) {
            node.children.push_back(copy);
        }
        break;
    }
    default:
        editAttributes(bytes, node);
    }
}

/** Where a target asks for a fibre, gives it one of the small bundle's. */
void useSmallBundle(std::vector<Node>& documents) {
    for (Node& document : documents) {
        for (Node* node : nodesOf(document)) {
            for (auto& [name, value] : node->attributes) {
                value = name == "fibreid" ? "101" : value;
            }
        }
    }
}

std::string encoded(const Encoding& encoding, const std::string& text) {
    const std::string whole = std::string("<?xml version=\"1.0\" encoding=\"") + encoding.declared + "\"?>" + text;
    return QTextCodec::codecForName(encoding.codec)->fromUnicode(QString::fromStdString(whole)).toStdString();
}

} // namespace

std::string chosenNumber(FuzzedDataProvider& bytes) {
    switch (bytes.ConsumeIntegralInRange<int>(0, 4)) {
    case 0:
        return std::to_string(bytes.ConsumeIntegral<std::int16_t>());
    case 1:
        return std::to_string(bytes.ConsumeIntegral<std::int32_t>());
    case 2: // the six decimals of the documents' angles
        return QString::number(bytes.ConsumeIntegralInRange<int>(-400'000'000, 400'000'000) / 1e6, 'f', 6)
            .toStdString();
    case 3:
        return QString::number(bytes.ConsumeIntegral<std::int16_t>() / 100.0, 'f', 2).toStdString();
    default:
        return QString::number(bytes.ConsumeFloatingPoint<double>(), 'g', 17).toStdString();
    }
}

std::string chosenValue(FuzzedDataProvider& bytes) {
    switch (bytes.ConsumeIntegralInRange<int>(0, 3)) {
    case 0:
        return bytes.ConsumeRandomLengthString(64);
    case 1:
        return pick(bytes, chosenValues());
    default:
        return chosenNumber(bytes);
    }
}

void editDocument(FuzzedDataProvider& bytes, Node& root) {
    for (int edit = 0; edit < kMaxEdits && bytes.remaining_bytes() > 0; ++edit) {
        editOnce(bytes, root);
    }
}

std::string editedDocument(FuzzedDataProvider& bytes, const std::vector<Node>& documents) {
    Node document = pick(bytes, documents);
    const bool bare = bytes.ConsumeBool();
    const Encoding encoding = bytes.PickValueInArray(kEncodings);
    const std::string& prologue = pick(bytes, prologues());
    editDocument(bytes, document);
    return bare ? xmlText(document) : encoded(encoding, prologue + xmlText(document));
}

RunNumbers chosenNumbers(FuzzedDataProvider& bytes) {
    RunNumbers numbers;
    numbers.horizonLimit = bytes.PickValueInArray({-90.0, -90.0, 25.0, 0.0, 90.0, -1e300, 1e300, 60.0});
    numbers.hourAngle = bytes.PickValueInArray({100.0, 100.0, 0.0, -1.5, 6.0, 23.9, 3.25, -12.0});
    numbers.epoch = bytes.PickValueInArray({0.0, 0.0, 0.0, 2027.5, 1955.25, 2016.0, -100.0, 2400.0});
    numbers.pressure = bytes.PickValueInArray({0.0, 0.0, 770.0, -1.0, 1e300, 1e-300, 1.0, 660.0});
    return numbers;
}

const std::vector<Node>& fieldDefinitions() {
    static const std::vector<Node> documents = [] {
        std::vector<Node> all = {nodeOf(kPlainField), nodeOf("<field_definition datamver=\"8.00\"/>")};
        for (const char* example : {"m74_groups", "m81_north", "sombrero_south", "virgo_two_fields"}) {
            all.push_back(nodeOf(sourceText(std::string("examples/") + example + ".xml")));
        }
        useSmallBundle(all);
        return all;
    }();
    return documents;
}
