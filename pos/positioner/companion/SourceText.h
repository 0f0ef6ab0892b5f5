/**
 * @file
 * The text of a document as people see it: in lines and columns.
 */
#ifndef POS_SOURCETEXT_H
#define POS_SOURCETEXT_H

#include <QByteArray>
#include <vector>

namespace pos {

/** A stretch of a text, bytes of UTF-8. */
struct Span {
    int begin = 0;
    int end = 0; ///< behind the last byte

    /** Whether both are the same stretch. */
    bool operator==(const Span&) const = default;
};

/** Where a character stands: both count from 1. */
struct LineColumn {
    int line = 1;
    int column = 1; ///< in characters (code points), a tab being one
};

/** A text in UTF-8, cut into lines by LF, CR or both. */
class SourceText {
public:
    /** @param utf8 the whole text, without a byte-order mark */
    explicit SourceText(QByteArray utf8);

    const QByteArray& utf8() const {
        return utf8_;
    }

    /** Where a byte's character stands. @param offset bytes, from 0 to the size of the text */
    LineColumn at(int offset) const;

    /** The number of the line on which a byte stands, from 1. */
    int lineOf(int offset) const;

    /** A line without its end. @param line from 1 to the number of lines */
    Span line(int line) const;

private:
    QByteArray utf8_;
    std::vector<int> lineBegins_; ///< offsets
    // Places are asked for in ascending order: the next one on a line is counted on from the one before.
    mutable int countedTo_ = 0;
    mutable int countedCharacters_ = 0; ///< on the line, before that offset
};

} // namespace pos

#endif
