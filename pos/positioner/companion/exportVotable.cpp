#include "Version.h"
#include "exportedTargets.h"

#include <QXmlStreamWriter>

namespace pos {

namespace {

/** Where the sky of the places is described. */
const QString kCoordinates = QStringLiteral("ICRS");

/** The attributes that tell what the values of a column are. */
void writeColumn(QXmlStreamWriter& xml, const ExportColumn& column) {
    xml.writeAttribute("name", column.name);
    switch (column.type) {
    case ColumnType::Text:
        xml.writeAttribute("datatype", "unicodeChar");
        xml.writeAttribute("arraysize", "*");
        break;
    case ColumnType::Integer:
        xml.writeAttribute("datatype", "int");
        break;
    case ColumnType::Number:
        xml.writeAttribute("datatype", "double");
        break;
    }
    if (!column.unit.isEmpty()) {
        xml.writeAttribute("unit", column.unit);
    }
    if (!column.ucd.isEmpty()) {
        xml.writeAttribute("ucd", column.ucd);
    }
    if (column.ucd.startsWith("pos.eq") || column.ucd.startsWith("pos.pm")) {
        xml.writeAttribute("ref", kCoordinates);
    }
}

void writeDescription(QXmlStreamWriter& xml, const QString& description) {
    if (!description.isEmpty()) {
        xml.writeTextElement("DESCRIPTION", description);
    }
}

/** A value of the whole table. */
void writeParameter(QXmlStreamWriter& xml, const ExportColumn& column, const QString& value) {
    xml.writeStartElement("PARAM");
    writeColumn(xml, column);
    xml.writeAttribute("value", value);
    writeDescription(xml, column.description);
    xml.writeEndElement();
}

/** A text of which readers keep each character: XML lets them take a carriage return for a line feed. */
void writeText(QXmlStreamWriter& xml, const QString& text) {
    const QStringList parts = text.split('\r');
    xml.writeCharacters(parts.first());
    for (int i = 1; i < parts.size(); ++i) {
        xml.writeEntityReference("#13");
        xml.writeCharacters(parts.at(i));
    }
}

void writeRow(QXmlStreamWriter& xml, const ExportedTarget& target) {
    xml.writeCharacters("\n");
    xml.writeStartElement("TR");
    for (const QString& value : target.values) {
        xml.writeStartElement("TD");
        writeText(xml, value);
        xml.writeEndElement();
    }
    xml.writeEndElement();
}

} // namespace

QByteArray exportVotable(const ExportedTargets& table) {
    QByteArray text;
    QXmlStreamWriter xml(&text);
    xml.writeStartDocument();
    xml.writeCharacters("\n");
    xml.writeStartElement("VOTABLE");
    xml.writeAttribute("version", "1.4");
    xml.writeDefaultNamespace("http://www.ivoa.net/xml/VOTable/v1.3");
    xml.writeStartElement("RESOURCE");
    xml.writeEmptyElement("COOSYS");
    xml.writeAttribute("ID", kCoordinates);
    xml.writeAttribute("system", "ICRS");
    xml.writeStartElement("TABLE");
    xml.writeAttribute("name", "targets");
    xml.writeAttribute("nrows", QString::number(table.targets.size()));
    writeDescription(xml, "The targets of a field definition, by veko " + QString::fromStdString(configure_version) +
                              ". What a run has written for a fibre (kind fibre) has the place that the fibre sees at "
                              "the date of the observation; any other target has its place at targepoch.");
    writeParameter(xml, {"file", ColumnType::Text, "", "meta.id;meta.file", "Name of the document."}, table.file);
    writeParameter(xml, {"observation", ColumnType::Text, "", "meta.id", "Name of the observation."},
                   table.observation);
    if (table.epoch) {
        writeParameter(xml, {"epoch", ColumnType::Number, "yr", "time.epoch;obs", "Julian epoch of the observation."},
                       QString::number(*table.epoch, 'g', 17));
    }
    for (const ExportColumn& column : table.columns) {
        xml.writeStartElement("FIELD");
        writeColumn(xml, column);
        writeDescription(xml, column.description);
        xml.writeEndElement();
    }
    xml.writeStartElement("DATA");
    xml.writeStartElement("TABLEDATA");
    for (const ExportedTarget& target : table.targets) {
        writeRow(xml, target);
    }
    xml.writeEndDocument();
    return text + '\n';
}

} // namespace pos
