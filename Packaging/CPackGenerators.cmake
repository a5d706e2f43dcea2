# Read by CPack for each kind of package.
if(CPACK_GENERATOR STREQUAL "DEB")
    set(CPACK_COMPONENTS_ALL program relay publish debian)
    # Files that name the programs' folder are made at installing: they name the folder that the package unpacks into.
    set(CPACK_SET_DESTDIR ON)
    set(CPACK_INSTALL_PREFIX /usr)
else()
    set(CPACK_COMPONENTS_ALL tarball)
    set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
endif()
