/**
 * @file
 * Registration of the data files that veko is compiled with: the catalogue of messages, the schemas, and the template
 * of its page.
 */
#ifndef POS_CHECKRESOURCES_H
#define POS_CHECKRESOURCES_H

/** Registers ":/messages.xml", ":/report.html" and the schemas, as ":/field_definition.rng". Calling it again is
 * harmless. */
int qInitResources_check_files();

#endif
