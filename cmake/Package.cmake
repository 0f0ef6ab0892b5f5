# The Debian packages veko-configure, veko-tools, libpos-dev and, where it is built, python3-veko, one for each component of
# Install.cmake; tools/build_packages makes them.

# CHANGELOG.md counts the releases of a version of the program, and nothing else does: its newest heading names the
# version of the packages and their day.
file(STRINGS CHANGELOG.md headings REGEX "^## ")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS CHANGELOG.md)
list(GET headings 0 heading)
if(NOT heading MATCHES "^## ([0-9.]+)-([1-9][0-9]*) \\(([0-9][0-9][0-9][0-9]-[0-9][0-9]-[0-9][0-9])\\)$"
   OR NOT CMAKE_MATCH_1 STREQUAL PROJECT_VERSION)
  message(FATAL_ERROR "The newest heading of CHANGELOG.md is \"${heading}\", where "
                      "\"## ${PROJECT_VERSION}-N (YEAR-MM-DD)\" is expected")
endif()
set(CPACK_DEBIAN_PACKAGE_RELEASE "${CMAKE_MATCH_2}")
set(CPACK_POS_DAY "${CMAKE_MATCH_3}")

set(CPACK_GENERATOR DEB)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL program tools development)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
# Manual pages compressed, and the files that only a Debian package has.
set(CPACK_POS_SOURCE "${PROJECT_SOURCE_DIR}")
set(CPACK_POS_BUILD "${PROJECT_BINARY_DIR}")
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/packaging/complete_packages.cmake")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The veko_configure developers <veko-configure@localhost>")

set(CPACK_DEBIAN_PROGRAM_PACKAGE_NAME veko-configure)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SHLIBDEPS ON)
# Completion, checking documents, also against the schemas, the recipes for many documents.
set(CPACK_DEBIAN_PROGRAM_PACKAGE_SUGGESTS "bash-completion, veko-tools, libxml2-utils, parallel, make")
set(CPACK_DEBIAN_PROGRAM_DESCRIPTION
    "configures fields for a 603-fibre integral-field unit
Reads the definition of an observation with the VEKO, the integral-field unit
of a multi-object fibre spectrograph: points each field so that the science
target falls on its fibre, checks horizon and rotator, and writes one target
per usable fibre, with sky position, plate position and spaxel name.
.
With the program come its manual pages, examples, schemas of the documents
that it reads and writes, and the files of the instrument to begin one's own.")

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME veko-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION science)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOLS_PACKAGE_RECOMMENDS "tzdata")
set(CPACK_DEBIAN_TOOLS_PACKAGE_SUGGESTS "bash-completion, veko-configure")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION
    "checks field definitions for a 603-fibre integral-field unit
Finds every problem of a document before veko_configure runs on it: tells the
line, the column, what is wrong and what to do, as text, JSON or SARIF, and
mends what can be mended for certain. Tells when a field can be observed, and
what ends it, and makes a page to see it on.
.
The instrument is compiled in; the package needs no other of this program.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libpos-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_MULTIARCH same)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "libboost-dev (>= 1.74), libboost-filesystem-dev, liberfa-dev, libexpat1-dev (>= 2.4), qtbase5-dev (>= 5.15)")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_RECOMMENDS "pkg-config")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
    "fibre plates and the sky above them, for C++ programs
Turns catalogue positions into millimetres on the plates of a multi-object
fibre spectrograph and back, and reads and writes its field definitions.
.
Headers, the static library and its files for CMake and pkg-config.")

if(POS_BUILD_PYTHON)
  list(APPEND CPACK_COMPONENTS_ALL python)
endif()
set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-veko)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SHLIBDEPS ON)
# The module is compiled for one version of Python.
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "python3 (>= 3.11), python3 (<< 3.12), python3-numpy")
set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS "python3-astropy, veko-configure, veko-tools")
# Compile the modules when they are installed, and remove what that made.
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/packaging/python3-veko/postinst"
                                              "${PROJECT_SOURCE_DIR}/packaging/python3-veko/prerm")
set(CPACK_DEBIAN_PYTHON_DESCRIPTION
    "fields for a 603-fibre integral-field unit, in Python
Leads from the sky to the plate of the VEKO, the integral-field unit of a
multi-object fibre spectrograph, and back, for numpy arrays; reads, checks and
configures field definitions, tells when fields can be observed, and makes
pages to see them on: the numbers of veko_configure and veko.
.
The instrument is compiled in; the package needs no other of this program.")

include(CPack)
