#include "ReadDocument.h"

#include "xmlEncoding.h"

#include <algorithm>

namespace pos {

namespace {

ReadDocument upToFault(const QByteArray& utf8, const UnreadableXml& fault, bool isDecoded) {
    return {SourceText(utf8), parseXmlBeginning(utf8), fault, isDecoded, nullptr};
}

ReadDocument withRoot(ReadDocument document) {
    if (!document.parsed.document.documentElement().isNull()) {
        document.root = locateElements(document.text.utf8(), document.parsed);
    }
    return document;
}

} // namespace

Span ReadDocument::faultPlace() const {
    const QByteArray& utf8 = text.utf8();
    const auto isInCharacter = [&](int byte) { return byte < utf8.size() && (utf8.at(byte) & 0xC0) == 0x80; };
    const int begin = std::min(fault->offset(), utf8.size());
    int end = begin + 1;
    while (isInCharacter(end)) {
        ++end;
    }
    return {begin, end};
}

std::string ReadDocument::faultMessage() const {
    return fault->what() + (fault->reason().empty() ? "" : ": " + fault->reason());
}

void ReadDocument::removeUncertain(std::vector<Problem>& problems) const {
    if (!fault) {
        return;
    }
    const int end = faultPlace().begin;
    const auto isUncertain = [&](const Problem& problem) {
        const int begin = problem.place.begin;
        bool isOpen = false;
        for (const SourceElement* open = root.get(); open != nullptr && !open->isWhole;
             open = open->children.empty() ? nullptr : open->children.back().get()) {
            isOpen = isOpen || (open->tag.begin <= begin && begin < open->namePlace.end);
        }
        return isOpen || (begin <= end && end < problem.place.end);
    };
    problems.erase(std::remove_if(problems.begin(), problems.end(), isUncertain), problems.end());
}

ReadDocument readText(const QByteArray& utf8, const std::string& name) {
    try {
        return withRoot({SourceText(utf8), parseXml(utf8, name), std::nullopt, true, nullptr});
    } catch (const UnreadableXml& fault) {
        return withRoot(upToFault(utf8, fault, true));
    }
}

ReadDocument readDocument(const QByteArray& bytes, const std::string& name) {
    QByteArray utf8;
    try {
        utf8 = decodeXml(bytes, name);
    } catch (const UnreadableXml& fault) {
        return withRoot(upToFault(decodedForPeople(bytes), fault, false));
    }
    return readText(utf8, name);
}

} // namespace pos
