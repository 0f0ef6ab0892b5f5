#ifndef POS_TESTS_RANDOMDOCUMENTS_H
#define POS_TESTS_RANDOMDOCUMENTS_H

#include <QByteArray>
#include <QDomDocument>
#include <QString>
#include <random>
#include <string>

/** Makes field definitions as users and runs write them, writes them in other forms, and changes them. */
class RandomDocuments {
public:
    explicit RandomDocuments(unsigned seed) : random_(seed) {}

    /**
     * One with one to three fields. No two targets of a field have the same fibre, nor two of its user the same name,
     * or the same configid but 0.
     */
    QDomDocument make();

    /** The same with its attributes in another order, and with another indentation, quotes, comments and encoding. */
    QByteArray writtenAnew(const QDomDocument& document);

    /** What was changed. */
    struct Change {
        std::string what;      ///< for messages
        std::string attribute; ///< its name; empty for an element
        std::string element;   ///< the name of a removed one; empty for an attribute
        int field = 0;         ///< from 1; 0 outside of fields
        std::string before;    ///< the name of the target as a comparison tells it; empty outside of targets
        std::string after;     ///< the same in the changed document; empty where it is removed
    };

    /** Changes, adds or removes one attribute, or removes one element. */
    Change change(const QDomDocument& document);

    int below(int count) {
        return std::uniform_int_distribution(0, count - 1)(random_);
    }

private:
    bool isHeads() {
        return below(2) == 0;
    }
    double between(double low, double high) {
        return std::uniform_real_distribution(low, high)(random_);
    }
    QString word();
    QString blank();
    void addTarget(QDomElement parent, int fibre, int number);
    void addField(QDomElement fields);
    QString written(const QDomElement& element, const QString& margin, bool isLatin);
    QString escaped(const QString& text, bool isLatin);

    std::mt19937 random_;
    QDomDocument document_;
};

#endif
