include_guard(GLOBAL)

# torvane_install_named(TEMPLATE FOLDER COMPONENT): installs the template, TORVANE_BINARIES being the folder that the
# programs are installed into. That is known at installing only: one build is installed for a person, and packaged.
function(torvane_install_named template folder component)
    get_filename_component(name "${template}" NAME)
    string(REGEX REPLACE "\\.in$" "" name "${name}")
    set(named "${CMAKE_CURRENT_BINARY_DIR}/${name}")
    install(CODE "
        set(TORVANE_BINARIES \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}\")
        set(TORVANE_RELAY_HOST [==[${TORVANE_RELAY_HOST}]==])
        configure_file([==[${template}]==] [==[${named}]==] @ONLY)
        file(INSTALL [==[${named}]==] DESTINATION \"\${CMAKE_INSTALL_PREFIX}/${folder}\")"
        COMPONENT ${component})
endfunction()

# torvane_compressed(FILE RESULT): a rule for RESULT, FILE as gzip makes it, the same bytes in every build.
find_program(GZIP_COMMAND gzip REQUIRED)
function(torvane_compressed file result)
    add_custom_command(
        OUTPUT "${result}"
        COMMAND "${GZIP_COMMAND}" --best --no-name --stdout "${file}" > "${result}"
        DEPENDS "${file}"
        COMMENT "Compressing ${file}"
        VERBATIM)
endfunction()
