# Called by CPack when the files of all packages lie in its folder, before it packs them: compresses the manual pages
# and adds what Debian expects of a package, /usr/share/doc/PACKAGE and the explained exceptions for lintian.

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(complete_package component package)
  set(share "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX}/share")
  set(doc "${share}/doc/${package}")
  file(MAKE_DIRECTORY "${doc}" "${share}/lintian/overrides")
  run(awk -v "package=${package}" -v "maintainer=${CPACK_DEBIAN_PACKAGE_MAINTAINER}" -f
      "${CPACK_POS_SOURCE}/packaging/debian_changelog.awk" "${CPACK_POS_SOURCE}/CHANGELOG.md" OUTPUT_FILE
      "${doc}/changelog.Debian")
  configure_file("${CPACK_POS_SOURCE}/packaging/copyright" "${doc}/copyright" COPYONLY)
  configure_file("${CPACK_POS_SOURCE}/packaging/${package}.lintian-overrides" "${share}/lintian/overrides/${package}"
                 COPYONLY)

  file(GLOB pages "${share}/man/man?/*.?")
  # Without name and time of the file, so that the same sources give the same package.
  run(gzip -9n ${pages} "${doc}/changelog.Debian")

  # Whatever the umask of the one who builds.
  set(root "${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component}")
  run(find "${root}" -type d -exec chmod 755 {} +)
  run(find "${share}" -type f -not -name "night.sh" -exec chmod 644 {} +)
endfunction()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER "${component}" upper)
  complete_package("${component}" "${CPACK_DEBIAN_${upper}_PACKAGE_NAME}")
endforeach()

# The files in the packages carry the day of the release.
if(NOT DEFINED ENV{SOURCE_DATE_EPOCH})
  execute_process(COMMAND date --utc --date "${CPACK_POS_DAY}" +%s OUTPUT_VARIABLE seconds OUTPUT_STRIP_TRAILING_WHITESPACE
                  COMMAND_ERROR_IS_FATAL ANY)
  set(ENV{SOURCE_DATE_EPOCH} "${seconds}")
endif()

# CMake's lists of what was installed would name the files of the packages, as if they had been installed from here.
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  file(REMOVE "${CPACK_POS_BUILD}/install_manifest_${component}.txt")
endforeach()
