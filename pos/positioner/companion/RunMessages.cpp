#include "RunMessages.h"

#include "CheckResources.h"
#include "fileAccess.h"
#include "xmlParse.h"

#include <QRegularExpression>
#include <map>
#include <vector>

namespace pos {

namespace {

/** A message of the run and what to do about it. */
struct RunMessage {
    QRegularExpression text;
    std::string remedy;
};

/** The first sentence, on one line, without its links. */
std::string firstSentence(const QString& text) {
    static const QRegularExpression link(QStringLiteral("\\[([^]]*)\\]\\([^)]*\\)"));
    const QString line = text.simplified().replace(link, QStringLiteral("\\1"));
    const int stop = line.indexOf(QLatin1String(". "));
    return line.left(stop >= 0 ? stop : line.size() - (line.endsWith('.') ? 1 : 0)).toStdString();
}

/** A text with its placeholders, such as "{file}", as a regular expression. */
QRegularExpression patternOf(const QString& text, const std::map<QString, QString>& placeholders) {
    QString pattern = QRegularExpression::escape(text);
    for (const auto& [name, expression] : placeholders) {
        pattern.replace(QRegularExpression::escape('{' + name + '}'), "(?:" + expression + ")");
    }
    return QRegularExpression(QRegularExpression::anchoredPattern(pattern),
                              QRegularExpression::DotMatchesEverythingOption);
}

std::vector<RunMessage> readMessages() {
    qInitResources_check_files();
    const std::string name = ":/messages.xml";
    const QDomElement root = parseXml(readFile(name).value(), name).document.documentElement();
    std::map<QString, QString> placeholders;
    for (QDomElement e = root.firstChildElement("placeholder"); !e.isNull(); e = e.nextSiblingElement("placeholder")) {
        placeholders[e.attribute("name")] = e.attribute("pattern");
    }
    std::vector<RunMessage> messages;
    const QDomNodeList elements = root.elementsByTagName("message");
    for (int i = 0; i < elements.count(); ++i) {
        const QDomElement message = elements.at(i).toElement();
        const std::string remedy = firstSentence(message.firstChildElement("remedy").text());
        for (QDomElement text = message.firstChildElement("text"); !text.isNull();
             text = text.nextSiblingElement("text")) {
            messages.push_back({patternOf(text.text(), placeholders), remedy});
        }
    }
    return messages;
}

} // namespace

std::string whatToDo(const std::string& message) {
    static const std::vector<RunMessage> messages = readMessages();
    const QString text = QString::fromStdString(message);
    for (const RunMessage& candidate : messages) {
        if (candidate.text.match(text).hasMatch()) {
            return candidate.remedy;
        }
    }
    return {};
}

} // namespace pos
