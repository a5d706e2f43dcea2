# What all our targets share: warnings as errors, sanitizers, and moc.

add_library(TorvaneOptions INTERFACE)
target_compile_features(TorvaneOptions INTERFACE cxx_std_20)
target_compile_options(TorvaneOptions INTERFACE -Wall -Wextra -Wconversion -Wshadow -Werror)
target_compile_definitions(TorvaneOptions INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_FOREACH)
# What nothing refers to is left out.
target_link_options(TorvaneOptions INTERFACE $<$<CONFIG:Release>:LINKER:--gc-sections>)
# Where the linker can write relocations as a bit map (DT_RELR, which glibc reads since 2.36), they are 100 kB less.
include(CheckLinkerFlag)
check_linker_flag(CXX "LINKER:-z,pack-relative-relocs" TORVANE_PACKS_RELOCATIONS)
if(TORVANE_PACKS_RELOCATIONS)
    target_link_options(TorvaneOptions INTERFACE $<$<CONFIG:Release>:LINKER:-z,pack-relative-relocs>)
endif()
if(TORVANE_SANITIZE)
    target_compile_options(TorvaneOptions INTERFACE -fsanitize=${TORVANE_SANITIZE} -fno-omit-frame-pointer)
    target_link_options(TorvaneOptions INTERFACE -fsanitize=${TORVANE_SANITIZE})
    if(TORVANE_SANITIZE MATCHES "undefined")
        # A finding ends the program: a test that only prints it would pass.
        target_compile_options(TorvaneOptions INTERFACE -fno-sanitize-recover=all)
        if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
            target_compile_options(TorvaneOptions INTERFACE
                "-fsanitize-ignorelist=${CMAKE_CURRENT_LIST_DIR}/sanitizer-ignorelist.txt")
        endif()
    endif()
endif()

# torvane_library(NAME FOLDER...): one static library of all the sources in this folder. Files are found, not listed:
# a new unit is a new file; ONLY picks units by name. Include paths start at the kit's root, so that every #include names
# its layer.
function(torvane_library name)
    cmake_parse_arguments(arg "" "FOLDER" "LINK;ONLY" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS "${arg_FOLDER}/*.cpp" "${arg_FOLDER}/*.h")
    if(arg_ONLY)
        list(JOIN arg_ONLY "|" units)
        list(FILTER sources INCLUDE REGEX "/(${units})\\.(cpp|h)$")
    endif()
    add_library(${name} STATIC ${sources})
    set_target_properties(${name} PROPERTIES AUTOMOC ON LINKER_LANGUAGE CXX POSITION_INDEPENDENT_CODE ON)
    target_include_directories(${name} PUBLIC "${CMAKE_CURRENT_SOURCE_DIR}")
    target_link_libraries(${name} PUBLIC TorvaneOptions ${arg_LINK})
endfunction()

# torvane_small(NAME): this library waits for people, panels and windows, and Qt does its work. The kernel maps code in
# pieces of 64 kB around what runs, so that all of it is in memory: half the code is half the memory.
function(torvane_small name)
    target_compile_options(${name} PRIVATE $<$<CONFIG:Release>:-Os> $<$<CONFIG:Release>:-ffunction-sections>)
endfunction()
