# The targets `format` and `check`.
find_program(CLANG_FORMAT clang-format)
find_program(CLANG_TIDY clang-tidy)
file(GLOB_RECURSE ovryn_code CONFIGURE_DEPENDS
    "${PROJECT_SOURCE_DIR}/src/*.h" "${PROJECT_SOURCE_DIR}/src/*.cpp"
    "${PROJECT_SOURCE_DIR}/drivers/*.h" "${PROJECT_SOURCE_DIR}/drivers/*.cpp"
    "${PROJECT_SOURCE_DIR}/tests/*.h" "${PROJECT_SOURCE_DIR}/tests/*.cpp"
    "${PROJECT_SOURCE_DIR}/benchmarks/*.cpp")
if(CLANG_FORMAT)
    add_custom_target(format COMMAND ${CLANG_FORMAT} -i ${ovryn_code} COMMENT "Formatting the sources" VERBATIM)
endif()
if(CLANG_TIDY)
    set(ovryn_tidied ${ovryn_code})
    list(FILTER ovryn_tidied INCLUDE REGEX "/src/.*\\.cpp$")
    list(FILTER ovryn_tidied EXCLUDE REGEX "Windows|_win\\.cpp$")
    add_custom_target(check COMMAND ${CLANG_TIDY} -p "${CMAKE_BINARY_DIR}" --quiet ${ovryn_tidied}
        COMMENT "Reading the sources with clang-tidy" VERBATIM)
endif()
