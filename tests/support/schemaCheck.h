#ifndef POS_TESTS_SCHEMACHECK_H
#define POS_TESTS_SCHEMACHECK_H

#include <string>

/** What schemas/field_definition.rng has to say against a document; empty where it keeps to the schema. */
std::string againstFieldDefinition(const std::string& document);

/** What schemas/configured_field.rng has to say against the output of a run; empty where it keeps to the schema. */
std::string againstConfiguredField(const std::string& document);

/**
 * What is wrong with the output of a run: where its input keeps to the schema of what is read, it keeps to the schema
 * of what is written. The program accepts more than the schema, and then the output need not keep to one either.
 *
 * @return what the schema has against the output; empty where nothing is wrong
 */
std::string againstOutput(const std::string& input, const std::string& output);

#endif
