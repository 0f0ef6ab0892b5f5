#include "veko_configure.h"

#include "OutputFile.h"
#include "configureDocument.h"

#include "PosConfig.h"
#include "xmlSerialise.h"
#include "xmlStructure.h"

#include <QDomDocument>
#include <filesystem>
#include <iostream>
#include <memory>
#include <stdexcept>

using namespace pos;

namespace {

/**
 * The document of the last run. The end of the process does not take it apart, which would cost a tenth of a run: the
 * system takes the memory back.
 */
QDomDocument& keptDocument() {
    static QDomDocument* const document = std::make_unique<QDomDocument>().release();
    return *document;
}

/** Loads the document. @return whether it is there; if not, the error stream has said why */
bool loadDocument(const std::string& input, QDomDocument& document) {
    document.clear(); // before there are two
    try {
        document = loadingFieldDefinition([&] { return loadXmlFile(input); });
        return true;
    } catch (const std::runtime_error& error) {
        std::cerr << error.what() << std::endl;
        return false;
    }
}

/** Configures the document. @return whether it is configured; if not, the error stream has said why */
bool configure(const PosConfig& config, const QDomDocument& document, const Estimates& estimates) {
    try {
        configureDocument(config, document, estimates);
        return true;
    } catch (const NoEpoch& error) {
        std::cerr << error.what() << std::endl;
    } catch (const BadHourAngle& error) {
        std::cerr << error.what() << std::flush;
    }
    return false;
}

/** @param file a file of the configuration, or an embedded resource, which no output can be */
void refuseIfSame(const std::string& output, const std::string& file, const std::string& what) {
    std::error_code notThere;
    if (!file.starts_with(":") && std::filesystem::equivalent(output, file, notThere)) {
        throw std::runtime_error("The output file " + output + " is the " + what + " in use");
    }
}

/** Writes the document. @return whether it is on disk; if not, the error stream has said why */
bool saveDocument(const PosConfig& config, const std::string& output, const QDomDocument& document) {
    checkOutput(config, output);
    try {
        writeFile(output, serialiseXml(document));
        return true;
    } catch (const std::runtime_error& error) {
        std::cerr << error.what() << std::endl;
        return false;
    }
}

} // namespace

void pos::checkOutput(const PosConfig& config, const std::string& output) {
    refuseIfSame(output, config.name(), "configuration file");
    refuseIfSame(output, config.getFilename("telescope.focal_plane_map"), "focal-plane map");
    refuseIfSame(output, config.getFilename("veko_definition"), "bundle definition");
}

int veko_configure(const PosConfig& config, const std::string& input, const std::string& output, double epoch,
                   double hourAngle, double pressure, double zenithDistanceLimit) {
    // A configuration without it is reported before an input that cannot be read.
    static_cast<void>(config.get<double>("default_epoch"));
    QDomDocument& document = keptDocument();
    const bool isDone = loadDocument(input, document) &&
                        configure(config, document, {epoch, hourAngle, pressure, zenithDistanceLimit}) &&
                        saveDocument(config, output, document);
    return isDone ? 0 : 1;
}
