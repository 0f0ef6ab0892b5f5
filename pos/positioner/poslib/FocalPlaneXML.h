/**
 * @file
 * The record of site and optical model in the output document.
 */
#ifndef POS_FOCALPLANEXML_H
#define POS_FOCALPLANEXML_H

#include <QDomDocument>
#include <QDomElement>

namespace pos {

class FocalPlane;

/**
 * Writes the elements "telescope" and "focal_plane_map" under a parent, reusing those that are there.
 *
 * "telescope" holds the site: "east_longitude" (degrees, 6 decimals), "latitude" (degrees, 5) and "height" (metres, 1).
 * "focal_plane_map" holds "focal_length" and "nominal_focal_length" (mm, 1 decimal); its child
 * "distortion_coefficients" holds "c1", "c3" and "c5" of the model and a "c7" of 0; its child "optical_axis" holds
 * "PLATE_A", "PLATE_B" and "VEKO", each with "x0", "y0" (mm) and "r0" (radians), 3 decimals. A plate element is sought
 * directly under "focal_plane_map" but created under "optical_axis", so a second call adds three more.
 *
 * @param focalPlane the pointing, from which the site is taken; the rest is the process-wide optical model
 * @param document creates the elements
 * @param parent holds, or gets, both elements
 */
void saveFocalPlaneXML(const FocalPlane& focalPlane, QDomDocument document, QDomElement parent);

} // namespace pos

#endif
