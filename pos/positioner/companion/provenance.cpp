#include "provenance.h"

#include "Report.h"
#include "Version.h"

#include <QStringList>
#include <QtGlobal>
#include <boost/version.hpp>
#include <erfa.h>
#include <erfaextra.h>
#include <expat.h>
#include <nlohmann/json.hpp>

namespace pos {

namespace {

using Json = nlohmann::ordered_json;

/** A text in which bytes that are not UTF-8 are replaced. */
std::string readable(const std::string& text) {
    return QString::fromStdString(text).toStdString();
}

/** The words of a command, those with blanks and the like in quotes. */
std::string commandOf(const std::vector<std::string>& words) {
    QStringList shown;
    for (const std::string& word : words) {
        const bool isPlain = !word.empty() && word.find_first_of(" \t\n'\"\\$&|;<>()*?`") == std::string::npos;
        const QString text = QString::fromStdString(word);
        shown.push_back(isPlain ? text : '\'' + QString(text).replace('\'', R"('\'')") + '\'');
    }
    return shown.join(' ').toStdString();
}

} // namespace

Json provenanceJson(const Report& report) {
    Json documents = Json::array();
    for (const DocumentRead& document : report.documents) {
        documents.push_back({{"what", document.what},
                             {"name", readable(document.name)},
                             {"sha256", document.sha256.empty() ? Json() : Json(document.sha256)}});
    }
    return {{"program", "veko " + configure_version},
            {"dataModel", datamver},
            {"libraries",
             {{{"name", "Qt"}, {"version", qVersion()}},
              {{"name", "ERFA"}, {"version", eraVersion()}},
              {{"name", "Expat"}, {"version", QString(XML_ExpatVersion()).remove("expat_").toStdString()}},
              {{"name", "Boost"}, {"version", QString(BOOST_LIB_VERSION).replace('_', '.').toStdString()}}}},
            {"command", commandOf(report.request.commandLine)},
            {"documents", documents}};
}

} // namespace pos
