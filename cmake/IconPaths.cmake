include_guard(GLOBAL)

# Path data as artists' programs write it: two icon sets of npm, installed into the build tree. The lock file pins them
# by their checksums and names no registry: npm's own setting says where packages come from. Targets that read them link
# TorvaneIconPaths. What compares with Qt's own reader of such data needs its SVG module, which the program does not.
find_package(Qt6 6.4 REQUIRED COMPONENTS Svg)
set(icons_directory "${CMAKE_BINARY_DIR}/icons")
set(icons_source "${CMAKE_CURRENT_LIST_DIR}/../Tests/Icons")
set(icons_manifests "${icons_source}/package.json" "${icons_source}/package-lock.json")
add_custom_command(
    OUTPUT "${icons_directory}/stamp"
    COMMAND "${CMAKE_COMMAND}" -E make_directory "${icons_directory}"
    COMMAND "${CMAKE_COMMAND}" -E copy ${icons_manifests} "${icons_directory}"
    COMMAND npm ci --prefix "${icons_directory}" --ignore-scripts --no-audit --no-fund --loglevel=error
    COMMAND "${CMAKE_COMMAND}" -E touch "${icons_directory}/stamp"
    DEPENDS ${icons_manifests}
    COMMENT "Installing the icon sets of the tests"
    VERBATIM)
add_custom_target(icons DEPENDS "${icons_directory}/stamp")
add_library(TorvaneIconPaths STATIC "${icons_source}/IconPaths.cpp" "${icons_source}/QtSVGPath.cpp")
add_dependencies(TorvaneIconPaths icons)
target_include_directories(TorvaneIconPaths PUBLIC "${icons_source}/..")
target_link_libraries(TorvaneIconPaths PUBLIC TorvaneOptions Qt6::Svg)
target_compile_definitions(TorvaneIconPaths PRIVATE TORVANE_ICONS="${icons_directory}/node_modules")
