/**
 * @file
 * Reading the focal-plane map: the optical model, and the axes of the plates.
 *
 * Here the functions "initialise" of FocalPlaneCoordinates and PlateCoordinates are defined, too.
 */
#ifndef POS_FOCALPLANEMAPXML_H
#define POS_FOCALPLANEMAPXML_H

#include "Optics.h"
#include "PlateGeometry.h"

class QDomDocument;

namespace pos {

/**
 * The optical model of a map; the focal length in use is the nominal one.
 *
 * @throw std::runtime_error "Bad focal length in focal plane map"
 * @throw std::runtime_error "Bad coefficient in focal plane map"
 */
Optics createOpticsXML(const QDomDocument& map);

/**
 * The axes of all three plates of a map. The rotation is that of VEKO, the plate read last, even if another is in use.
 *
 * @param map the focal-plane map, with rotations in degrees
 * @param plate the plate in use
 * @throw std::runtime_error "Bad optical axis in focal plane map"
 * @throw std::runtime_error "Bad plate rotation in focal plane map"
 */
PlateGeometry createPlateGeometryXML(const QDomDocument& map, PlateName plate);

} // namespace pos

#endif
