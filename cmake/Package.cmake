# The Debian package: desktop integration and the settings of CPack. The package contains both
# programs, so this file is included with the desktop program. See scripts/package.
set(packaging ${PROJECT_SOURCE_DIR}/packaging)
set(packaging_id example.zorvel.Zorvel)

# The type of project files, its icons, and the entry for software catalogues.
install(FILES ${packaging}/zorvel-mime.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages
        RENAME zorvel.xml)
set(hicolor ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
install(FILES ${packaging}/icons/application-x-zorvel.svg DESTINATION ${hicolor}/scalable/mimetypes)
foreach(size IN ITEMS 16 24 32 48 64 128 256)
  install(FILES ${packaging}/icons/application-x-zorvel-${size}.png
          DESTINATION ${hicolor}/${size}x${size}/mimetypes RENAME application-x-zorvel.png)
endforeach()
configure_file(${packaging}/zorvel.metainfo.xml.in
               ${PROJECT_BINARY_DIR}/${packaging_id}.metainfo.xml @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/${packaging_id}.metainfo.xml
        DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)

# Hardening, because the programs read untrusted files: relocation tables are read-only at run time.
foreach(program IN ITEMS zorvel zorvel-cli)
  target_link_options(${program} PRIVATE LINKER:-z,relro,-z,now)
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zorvel)
set(CPACK_PACKAGE_VENDOR "Zorvel developers")
set(CPACK_PACKAGE_CONTACT "Zorvel developers <${ZORVEL_SUPPORT_ADDRESS}>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "diversity of biological samples, from counts of specimens")
file(READ ${packaging}/debian/description CPACK_PACKAGE_DESCRIPTION)
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${packaging}/debian/description)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/PackageDebianFiles.cmake)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${ZORVEL_WEBSITE})
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# xdg-utils opens the help; qt6-wayland is needed on desktops without X11.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "xdg-utils, qt6-wayland")
# Read by PackageDebianFiles.cmake.
set(CPACK_ZORVEL_DEBIAN ${packaging}/debian)
include(CPack)
