#ifndef POS_TESTS_CHECKED_H
#define POS_TESTS_CHECKED_H

#include "Instrument.h"
#include "PosConfig.h"
#include "Version.h"
#include "checkDocument.h"

#include <string>
#include <vector>

/** The built-in instrument. */
inline pos::Instrument& builtInInstrument() {
    static const pos::PosConfig config(":/configure.xml", pos::PosConfig::XML);
    static pos::Instrument instrument(config);
    pos::datamver = config.get<std::string>("<xmlattr>.datamver"); // another test may have reset it
    return instrument;
}

/** What is found in a document by the built-in instrument. */
inline pos::CheckResult checked(const std::string& document, const pos::CheckOptions& options = {}) {
    return pos::checkDocument(QByteArray::fromStdString(document), "field.xml", builtInInstrument(), options);
}

/** Each problem as "VK104 5:21-5:25 message". */
inline std::vector<std::string> problemsOf(const pos::CheckResult& result) {
    std::vector<std::string> lines;
    for (const pos::Problem& problem : result.problems) {
        const auto begin = result.text.at(problem.place.begin);
        const auto last = result.text.at(problem.place.end - 1);
        lines.push_back(std::string(problem.rule->code) + ' ' + std::to_string(begin.line) + ':' +
                        std::to_string(begin.column) + '-' + std::to_string(last.line) + ':' +
                        std::to_string(last.column) + ' ' + problem.message);
    }
    return lines;
}

/** A document without a problem, one element a line. */
inline const std::string kFaultless = R"(<?xml version="1.0" encoding="UTF-8"?>
<field_definition datamver="8.00">
<observation pa="0">
<configure>
<conditions epoch="2027.25" temperature="281.5" pressure="770" relative_humidity="0.25" ha="-1.0"/>
</configure>
<fields>
<field RA_d="189.997633" Dec_d="-11.623054">
<target targname="Galaxy" targuse="T" targra="189.997633" targdec="-11.623054"/>
<target targname="Star" targuse="G" targra="190.120000" targdec="-11.500000"/>
</field>
</fields>
</observation>
</field_definition>
)";

#endif
