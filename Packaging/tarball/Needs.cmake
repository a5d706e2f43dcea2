# Sets glibc, glibcxx, qt and libraries: what `program` needs of the system it runs on, read from the program itself.
# built_on is the system that this is.
execute_process(COMMAND "${objdump}" --dynamic-syms "${program}" OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
foreach(library IN ITEMS GLIBC GLIBCXX Qt)
    string(REGEX MATCHALL "\\(${library}_[0-9.]+\\)" versions "${symbols}")
    list(TRANSFORM versions REPLACE "[^0-9.]" "")
    list(SORT versions COMPARE NATURAL ORDER DESCENDING)
    list(GET versions 0 newest)
    string(TOLOWER ${library} name)
    set(${name} ${newest})
endforeach()
execute_process(COMMAND "${objdump}" --private-headers "${program}" OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
# Packed relocations are no symbol, but need a loader that reads them.
if(headers MATCHES "GLIBC_ABI_DT_RELR" AND glibc VERSION_LESS 2.36)
    set(glibc 2.36)
endif()
string(REGEX MATCHALL "NEEDED +[^\n]+" libraries "${headers}")
list(TRANSFORM libraries REPLACE "NEEDED +" "")
# Loaded while it runs.
list(APPEND libraries libcurl.so.4)
list(SORT libraries)
list(JOIN libraries "\n    " libraries)
cmake_host_system_information(RESULT built_on QUERY DISTRIB_PRETTY_NAME)
