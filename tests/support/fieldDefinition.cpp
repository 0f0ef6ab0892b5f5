#include "fieldDefinition.h"

#include <gtest/gtest.h>

std::string targetXml(const std::string& use, const std::string& name, const std::string& ra, const std::string& dec,
                      const std::string& attributes, const std::string& children) {
    return "<target targname=\"" + name + "\" targuse=\"" + use + "\" targra=\"" + ra + "\" targdec=\"" + dec + "\" " +
           attributes + ">" + children + "</target>";
}

std::string fieldXml(const std::string& content) {
    return R"(<field RA_d="150.000000" Dec_d="20.000000">)" + content + "</field>";
}

std::string scienceTargetXml(const std::string& attributes) {
    return targetXml("T", "Galaxy", "150.10000000", "20.10000000", attributes);
}

std::string guideStarXml(const std::string& attributes) {
    return targetXml("G", "Star", "150.10000000", "20.20000000", attributes);
}

std::string ordinaryFieldXml() {
    return fieldXml(scienceTargetXml() + guideStarXml());
}

std::string secondFieldXml(const std::string& attributes) {
    return R"(<field RA_d="150.000000" Dec_d="21.000000">)" +
           targetXml("T", "Galaxy 2", "150.20000000", "21.10000000", attributes) +
           targetXml("G", "Star 2", "150.20000000", "21.20000000") + "</field>";
}

std::string FieldDefinition::text() const {
    std::string text = declaration + "\n<vante " + rootAttributes + "><observation " + observationAttributes + ">" +
                       configure + "<fields>";
    for (const std::string& field : fields) {
        text += field;
    }
    return text + "</fields></observation></vante>\n";
}

std::string configureXml(const std::string& conditionsAttributes) {
    return "<configure><conditions " + conditionsAttributes + "/></configure>";
}

std::string documentWithConditions(const std::string& attributes) {
    FieldDefinition definition;
    definition.configure = configureXml(attributes);
    return definition.text();
}

std::string documentWithFields(const std::vector<std::string>& fields) {
    FieldDefinition definition;
    definition.fields = fields;
    return definition.text();
}

std::string documentWithObservation(const std::string& attributes) {
    FieldDefinition definition;
    definition.observationAttributes = attributes;
    return definition.text();
}

std::string replaced(std::string text, const std::string& part, const std::string& replacement) {
    std::size_t place = text.find(part);
    EXPECT_NE(place, std::string::npos) << part;
    while (place != std::string::npos) {
        text.replace(place, part.size(), replacement);
        place = text.find(part, place + replacement.size());
    }
    return text;
}
