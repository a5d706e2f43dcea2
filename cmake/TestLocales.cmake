# The locales whose number formats the tests try, compiled into the build tree: the machine itself may have none.
# Tests find them through LOCPATH.
find_program(LOCALEDEF_COMMAND localedef REQUIRED)
set(TORVANE_TEST_LOCALES "${CMAKE_BINARY_DIR}/locales")
set(compiled_locales)
foreach(locale de_DE hi_IN)
    set(compiled "${TORVANE_TEST_LOCALES}/${locale}")
    add_custom_command(
        OUTPUT "${compiled}/LC_NUMERIC"
        COMMAND "${CMAKE_COMMAND}" -E make_directory "${TORVANE_TEST_LOCALES}"
        COMMAND "${LOCALEDEF_COMMAND}" --no-archive -i ${locale} -f UTF-8 "${compiled}"
        COMMENT "Compiling the locale ${locale}"
        VERBATIM)
    list(APPEND compiled_locales "${compiled}/LC_NUMERIC")
endforeach()
add_custom_target(test-locales ALL DEPENDS ${compiled_locales})
