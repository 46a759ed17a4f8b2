# The Debian package: cpack in the build directory writes package/kiv_VERSION_ARCHITECTURE.deb.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ${PROJECT_NAME})
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "the kiv authors")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "kiv replays memory-allocation traces and writes what it finds as tables.\nkivdb answers questions from them: leaks, peaks, growth between runs.\nkivconvert makes such traces of recordings of heaptrack, of any program.")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS heaptrack)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# kivdb loads libcurl by its name.
set(CPACK_DEBIAN_PACKAGE_DEPENDS libcurl4)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/package)
include(CPack)
