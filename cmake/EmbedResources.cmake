# embed_resources(<target> <collection> <collection>.qrc <rcc option>...)
#
# Compiles a collection of data files into a target. The resource tables are of format version 2, and the times of the
# files, which that version stores, are set to a constant: the same sources give the same program.
function(embed_resources target collection qrc)
  get_filename_component(folder "${qrc}" DIRECTORY)
  file(STRINGS "${qrc}" lines REGEX "<file")
  set(files)
  foreach(line IN LISTS lines)
    string(REGEX REPLACE ".*>([^<>]+)</file>.*" "${folder}/\\1" file "${line}")
    list(APPEND files "${file}")
  endforeach()
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${qrc}")
  set(source "${CMAKE_CURRENT_BINARY_DIR}/qrc_${collection}.cpp")
  add_custom_command(
    OUTPUT "${source}"
    COMMAND ${CMAKE_COMMAND} -E env QT_RCC_SOURCE_DATE_OVERRIDE=1577836800 $<TARGET_FILE:Qt5::rcc> --format-version 2
            --name ${collection} ${ARGN} --output "${source}" "${qrc}"
    DEPENDS "${qrc}" ${files}
    COMMENT "Embedding ${collection}"
    VERBATIM)
  # Generated code is not held to the project's warnings.
  set_source_files_properties("${source}" PROPERTIES COMPILE_OPTIONS "-w" SKIP_LINTING ON)
  target_sources(${target} PRIVATE "${source}")
endfunction()
