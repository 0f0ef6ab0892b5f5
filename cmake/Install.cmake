# What `cmake --install` writes, in components: the program with what its user reads, veko for the people who write
# documents, the Python module, and the library for those who link it. Everything may be moved as a whole to another prefix afterwards.

# Debian's folder for libraries names the architecture, below /usr/local as well as below /usr. Everywhere the same
# folder is used, so that one build serves packages and installations alike.
if(EXISTS /etc/debian_version AND CMAKE_LIBRARY_ARCHITECTURE)
  set(CMAKE_INSTALL_LIBDIR "lib/${CMAKE_LIBRARY_ARCHITECTURE}" CACHE PATH "Libraries (lib)")
endif()
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# Installing, and packaging, needs the programs and the library, not the tests.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)

set(program_data "${CMAKE_INSTALL_DATADIR}/veko_configure")
install(TARGETS veko_configure RUNTIME COMPONENT program)
install(FILES man/veko_configure.1 DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT program)
install(FILES man/veko_configure.5 DESTINATION "${CMAKE_INSTALL_MANDIR}/man5" COMPONENT program)
install(FILES completions/veko_configure DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions"
        COMPONENT program)
install(
  FILES schemas/configuration.rng schemas/configured_field.rng schemas/field_definition.rng
        schemas/focal_plane_map.rng schemas/plate.rng schemas/values.rng
  DESTINATION "${program_data}/schemas"
  COMPONENT program)
install(
  FILES examples/README.md examples/m74_groups.xml examples/m81_north.xml examples/sombrero_south.xml
        examples/virgo_two_fields.xml
  DESTINATION "${program_data}/examples"
  COMPONENT program)
# Beside the examples and the schemas, as in the sources, so that links between them hold.
install(
  FILES docs/accuracy.md docs/checks.md docs/compare.md docs/documents.md docs/export.md
        docs/input-and-output.md docs/many-documents.md docs/messages.md docs/position.md docs/python.md docs/tutorial.md
        docs/window.md
  DESTINATION "${program_data}/docs"
  COMPONENT program)
install(FILES examples/python/drift.py examples/python/season.py DESTINATION "${program_data}/examples/python"
        COMPONENT program)
install(FILES docs/pictures/check.svg DESTINATION "${program_data}/docs/pictures" COMPONENT program)
install(PROGRAMS examples/many/night.sh DESTINATION "${program_data}/examples/many" COMPONENT program)

install(
  FILES pos/positioner/resources/PLATE_A.xml pos/positioner/resources/PLATE_B.xml pos/positioner/resources/VEKO.xml
        pos/positioner/resources/configure.xml pos/positioner/resources/focal_plane_map.xml
  DESTINATION "${program_data}/instrument"
  COMPONENT program)

install(TARGETS veko RUNTIME COMPONENT tools)
install(FILES man/veko.1 man/veko-check.1 man/veko-compare.1 man/veko-export.1 man/veko-report.1 man/veko-window.1
        DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT tools)
install(FILES completions/veko DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" COMPONENT tools)

if(POS_BUILD_PYTHON)
  # Where Debian's Python finds what belongs to packages; below another prefix it is told by PYTHONPATH.
  set(python_package "lib/python3/dist-packages/veko")
  install(TARGETS veko_python LIBRARY DESTINATION "${python_package}" COMPONENT python)
  install(DIRECTORY python/veko/ DESTINATION "${python_package}" COMPONENT python
          FILES_MATCHING PATTERN "*.py" PATTERN "*.pyi" PATTERN "py.typed" PATTERN "__pycache__" EXCLUDE)
endif()

# The headers lie in a folder of their own, which is on the consumer's include path: #include "FocalPlane.h".
set(cmake_folder "${CMAKE_INSTALL_LIBDIR}/cmake/pos")
install(
  TARGETS poslib
  EXPORT pos
  ARCHIVE COMPONENT development
  FILE_SET HEADERS
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/pos"
  COMPONENT development)
install(EXPORT pos NAMESPACE pos:: FILE pos-targets.cmake DESTINATION "${cmake_folder}" COMPONENT development)
configure_package_config_file(cmake/pos-config.cmake.in "${PROJECT_BINARY_DIR}/pos-config.cmake"
                              INSTALL_DESTINATION "${cmake_folder}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/pos-config-version.cmake" COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/pos-config.cmake" "${PROJECT_BINARY_DIR}/pos-config-version.cmake"
        DESTINATION "${cmake_folder}" COMPONENT development)

set(pkgconfig_folder "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig")
file(RELATIVE_PATH prefix_from_pkgconfig "${pkgconfig_folder}" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" prefix_from_pkgconfig "${prefix_from_pkgconfig}")
configure_file(cmake/pos.pc.in "${PROJECT_BINARY_DIR}/pos.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/pos.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig" COMPONENT development)
