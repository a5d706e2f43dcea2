include_guard(GLOBAL)

# A key pair for the tests' updates, made by openssl in the build tree: nothing secret is ever committed. Made when the
# tree is configured, since the programs are compiled with its public half. Sets
#   TORVANE_TEST_UPDATE_KEY         path of the private key
#   TORVANE_TEST_UPDATE_PUBLIC_KEY  base64 of the public key
find_program(OPENSSL_COMMAND openssl REQUIRED)
set(TORVANE_TEST_UPDATE_KEY "${CMAKE_BINARY_DIR}/update-key/private.pem")
if(NOT EXISTS "${TORVANE_TEST_UPDATE_KEY}")
    file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/update-key")
    execute_process(
        COMMAND "${OPENSSL_COMMAND}" genpkey -algorithm ed25519 -out "${TORVANE_TEST_UPDATE_KEY}"
        COMMAND_ERROR_IS_FATAL ANY)
    file(CHMOD "${TORVANE_TEST_UPDATE_KEY}" PERMISSIONS OWNER_READ OWNER_WRITE)
endif()
# The last 32 bytes of its SubjectPublicKeyInfo are the key itself (RFC 8410).
execute_process(
    COMMAND "${OPENSSL_COMMAND}" pkey -in "${TORVANE_TEST_UPDATE_KEY}" -pubout -outform DER
    COMMAND tail -c 32
    COMMAND base64
    OUTPUT_VARIABLE TORVANE_TEST_UPDATE_PUBLIC_KEY OUTPUT_STRIP_TRAILING_WHITESPACE
    COMMAND_ERROR_IS_FATAL ANY)
