#include "checkedProblems.h"

#include "Version.h"
#include "checkedRun.h"
#include "configureDocument.h"
#include "problemSarif.h"
#include "problemText.h"
#include "xmlEncoding.h"
#include "xmlParse.h"
#include "xmlSerialise.h"
#include "xmlStructure.h"

using namespace pos;

bool isConfigured(const QByteArray& bytes, const PosConfig& config, const Estimates& estimates) {
    return endsOrExplains([&] {
        const QDomDocument document = parseXml(decodeXml(bytes, "field.xml"), "field.xml").document;
        requireDataModelVersion(document);
        configureDocument(config, document, estimates);
        serialiseXml(document);
    });
}

bool hasError(const CheckedFile& file) {
    return countOf(Severity::Error, file.result.problems) > 0;
}

void tellProblems(const std::vector<CheckedFile>& files) {
    for (const CheckedFile& file : files) {
        for (const Problem& problem : file.result.problems) {
            require(!problem.message.empty(), "a problem has a message");
            problemText(problem, file.result.text, file.name, {});
        }
    }
    problemJson(files);
    problemSarif(files);
}
