/**
 * @file
 * Registration of the data files that the checker is compiled with: the catalogue of messages and the schemas.
 */
#ifndef POS_CHECKRESOURCES_H
#define POS_CHECKRESOURCES_H

/** Registers ":/messages.xml" and the schemas, as ":/field_definition.rng". Calling it again is harmless. */
int qInitResources_check_files();

#endif
