#include "soundDocument.h"

#include "PosConfig.h"
#include "ReadDocument.h"
#include "ReportedFibre.h"
#include "configureDocument.h"
#include "fileAccess.h"
#include "instrumentFiles.h"
#include "xmlEncoding.h"
#include "xmlParse.h"
#include "xmlStructure.h"

#include <QCryptographicHash>
#include <algorithm>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <utility>

namespace pos {

namespace {

/** The errors with their places, one a line. */
std::string errorsIn(const std::vector<CheckedFile>& files) {
    std::string lines;
    for (const CheckedFile& file : files) {
        for (const Problem& problem : file.result.problems) {
            if (problem.severity == Severity::Error) {
                const LineColumn place = file.result.text.at(problem.place.begin);
                lines += (lines.empty() ? "" : "\n") + file.name + ':' + std::to_string(place.line) + ':' +
                         std::to_string(place.column) + ": " + problem.message;
            }
        }
    }
    return lines;
}

void requireNoErrors(const std::vector<CheckedFile>& files) {
    const std::string errors = errorsIn(files);
    if (!errors.empty()) {
        throw std::runtime_error(errors);
    }
}

/** Whether a run has written the targets of the fibres into all fields. */
bool isConfigured(const QDomDocument& document) {
    const std::vector<QDomElement> fields = fieldsOf(document);
    return !fields.empty() && std::all_of(fields.begin(), fields.end(),
                                          [](const QDomElement& field) { return hasGeneratedTargets(field); });
}

std::string sha256(const QByteArray& bytes) {
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().toStdString();
}

} // namespace

QByteArray readInput(const std::string& name) {
    return loadFile(name == "-" ? "/dev/stdin" : name);
}

CheckedInstrument openSoundInstrument(const std::string& configFile, double fieldRadius) {
    CheckedInstrument checked = checkInstrument(configFile, fieldRadius);
    requireNoErrors(checked.files);
    return checked;
}

SoundDocument openSoundDocument(const QByteArray& bytes, const std::string& name, Instrument& instrument,
                                const CheckOptions& options) {
    const ReadDocument read = readDocument(bytes, name);
    SoundDocument sound{read.parsed.document,
                        !read.fault && isConfigured(read.parsed.document),
                        {name, checkDocument(bytes, name, instrument, options)}};
    // Those of a configured document tell of configuring it again.
    if (!sound.isConfigured) {
        requireNoErrors({sound.checked});
    }
    requireDataModelVersion(sound.document);
    return sound;
}

QDomDocument openConfigured(const QByteArray& bytes, const std::string& name, Instrument& instrument,
                            const CheckOptions& options) {
    try {
        const QDomDocument document = parseXml(decodeXml(bytes, name), name).document;
        if (isConfigured(document)) {
            requireDataModelVersion(document);
            return document;
        }
    } catch (const UnreadableXml&) {
        // The check tells the place.
    }
    const SoundDocument sound = openSoundDocument(bytes, name, instrument, options);
    saveTargets(placeDocument(instrument, sound.document, options.estimates));
    return sound.document;
}

std::vector<QDomElement> fieldsOf(const QDomDocument& document) {
    const QDomElement root = document.documentElement();
    std::vector<QDomElement> fields;
    for (QDomElement field = findFieldElement(root, {}); !field.isNull(); field = findFieldElement(root, field)) {
        fields.push_back(field);
    }
    return fields;
}

std::vector<DocumentRead> documentsRead(const std::string& name, const QByteArray& bytes, const PosConfig& config) {
    std::vector<DocumentRead> documents = {{"field definition", name, sha256(bytes)}};
    const auto add = [&](const std::string& what, const std::string& file, const std::string& shown) {
        const bool canBeReadAgain = file.starts_with(":") || isPlainFile(file);
        documents.push_back({what, shown, canBeReadAgain ? sha256(readFile(file).value_or(QByteArray())) : ""});
    };
    add("configuration", config.name(), config.name());
    for (const auto& [what, key] :
         {std::pair("focal-plane map", "telescope.focal_plane_map"), std::pair("bundle", "veko_definition")}) {
        add(what, config.getFilename(key), fileBeside(config.name(), config.get<std::string>(key)));
    }
    return documents;
}

void refuseIfRead(const std::string& output, const std::vector<DocumentRead>& documents) {
    for (const DocumentRead& document : documents) {
        std::error_code notThere;
        if (std::filesystem::equivalent(output, document.name, notThere)) {
            throw std::runtime_error("The output file " + output + " is the " + document.what + " in use");
        }
    }
}

} // namespace pos
