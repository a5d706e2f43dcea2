include_guard(GLOBAL)

# The certificates of the tests' stand-in servers, made by openssl in the build tree: nothing secret is ever committed.
# Targets that need them link TorvaneTestCertificates and read TORVANE_TEST_CERTIFICATES, the directory.
find_program(OPENSSL_COMMAND openssl REQUIRED)
set(certificates_directory "${CMAKE_BINARY_DIR}/certificates")
set(certificates_script "${CMAKE_CURRENT_LIST_DIR}/../Tests/Support/make-certificates")
add_custom_command(
    OUTPUT "${certificates_directory}/stamp"
    COMMAND "${certificates_script}" "${certificates_directory}"
    COMMAND "${CMAKE_COMMAND}" -E touch "${certificates_directory}/stamp"
    DEPENDS "${certificates_script}"
    COMMENT "Making the certificates of the stand-in servers"
    VERBATIM)
add_custom_target(certificates DEPENDS "${certificates_directory}/stamp")
add_library(TorvaneTestCertificates INTERFACE)
add_dependencies(TorvaneTestCertificates certificates)
target_compile_definitions(TorvaneTestCertificates INTERFACE TORVANE_TEST_CERTIFICATES="${certificates_directory}")
