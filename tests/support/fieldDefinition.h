#ifndef POS_TESTS_FIELDDEFINITION_H
#define POS_TESTS_FIELDDEFINITION_H

#include <string>
#include <vector>

/** A target element. @param attributes further attributes, such as "configid=\"7\""; @param children its content */
std::string targetXml(const std::string& use, const std::string& name, const std::string& ra, const std::string& dec,
                      const std::string& attributes = "", const std::string& children = "");

/** A field element with this content, centred at right ascension 150°, declination 20°. */
std::string fieldXml(const std::string& content);

/** The science target and the guide star that stand in most fields of the tests: 0.1° apart, south of the zenith. */
std::string scienceTargetXml(const std::string& attributes = "");
std::string guideStarXml(const std::string& attributes = "");

/** A field of those two, in this order. */
std::string ordinaryFieldXml();

/**
 * A second field, one degree away from the ordinary one, of its own two targets.
 *
 * @param attributes further attributes of its science target
 */
std::string secondFieldXml(const std::string& attributes = "");

/** A field definition in parts, each of which a test may replace; by itself it is one that the program configures. */
struct FieldDefinition {
    std::string declaration = R"(<?xml version="1.0" encoding="UTF-8"?>)";
    std::string rootAttributes = R"(datamver="8.00")";
    std::string observationAttributes = R"(pa="0.0")";
    /** Of the configure element, which a document may lack too. */
    std::string configure = R"(<configure><conditions epoch="2024.5"/></configure>)";
    std::vector<std::string> fields = {ordinaryFieldXml()};

    std::string text() const;
};

/** The configure element with a conditions element of these attributes. */
std::string configureXml(const std::string& conditionsAttributes);

/** The ordinary field definition with these attributes of its conditions element. */
std::string documentWithConditions(const std::string& attributes);

/** The ordinary field definition with these fields instead of its own. */
std::string documentWithFields(const std::vector<std::string>& fields);

/** The ordinary field definition with these attributes of its observation element. */
std::string documentWithObservation(const std::string& attributes);

/** A text in which every occurrence of a part is replaced. Fails the test when there is none. */
std::string replaced(std::string text, const std::string& part, const std::string& replacement);

/** A field definition with one field that passes south of the zenith, high enough to be configured 1.5 h later. */
inline const std::string kPlainField =
    R"(<?xml version="1.0" encoding="UTF-8"?>
<configuration datamver="8.00">
 <observation pa="0.0">
  <configure>
   <conditions epoch="2022.25" ha="1.5" temperature="283.0" pressure="770.0" relative_humidity="0.3"/>
  </configure>
  <fields>
   <field RA_d="180.000000" Dec_d="20.000000">
    <target targname="Science" targuse="T" targra="180.010000" targdec="20.010000"/>
    <target targname="Guide" targuse="G" targra="180.150000" targdec="20.100000"/>
   </field>
  </fields>
 </observation>
</configuration>
)";

/** A text many times over. */
inline std::string repeated(int count, const std::string& text) {
    std::string all;
    all.reserve(static_cast<std::size_t>(count) * text.size());
    for (int i = 0; i < count; ++i) {
        all += text;
    }
    return all;
}

#endif
