/**
 * @file
 * The parts of the module.
 */
#ifndef POS_BINDINGS_H
#define POS_BINDINGS_H

#include <pybind11/pybind11.h>

namespace pos {

/** What is to know about arguments: defaults and ranges. */
void bindArguments(pybind11::module_& module);
/** The bundle's fibres as arrays. */
void bindBundle(pybind11::module_& module);
/** What is different between two documents. */
void bindComparison(pybind11::module_& module);
/** Documents: what is in them, what is wrong with them, and configuring them. */
void bindDocument(pybind11::module_& module);
/** When fields can be observed, and pages to see them on. */
void bindNights(pybind11::module_& module);
/** Pointings of the plate. */
void bindPointing(pybind11::module_& module);

} // namespace pos

#endif
