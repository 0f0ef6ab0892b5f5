/**
 * @file
 * Registration of the data files that are compiled into the program.
 *
 * Both collections register themselves during static initialisation. The functions come from the resource compiler and
 * return 1; calling them again is harmless.
 */
#ifndef POS_EMBEDDEDRESOURCES_H
#define POS_EMBEDDEDRESOURCES_H

/** Registers ":/configure.xml" and ":/focal_plane_map.xml". */
int qInitResources_config_files();
/** Unregisters them. */
int qCleanupResources_config_files();
/** Registers ":/PLATE_A.xml", ":/PLATE_B.xml" and ":/VEKO.xml". */
int qInitResources_plate_files();
/** Unregisters them. */
int qCleanupResources_plate_files();

#endif
