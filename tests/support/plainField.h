#ifndef POS_TESTS_PLAINFIELD_H
#define POS_TESTS_PLAINFIELD_H

#include <string>

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

#endif
