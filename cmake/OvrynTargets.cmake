# What every target of the project is built with, and the functions that make its targets.

add_library(ovryn_options INTERFACE)
target_compile_definitions(ovryn_options INTERFACE QT_DEPRECATED_WARNINGS)
if(MSVC)
    target_compile_options(ovryn_options INTERFACE /W4 /utf-8)
    if(OVRYN_WARNINGS_AS_ERRORS)
        target_compile_options(ovryn_options INTERFACE /WX)
    endif()
else()
    target_compile_options(ovryn_options INTERFACE
        -Wall -Wextra -Wshadow -Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual)
    if(OVRYN_WARNINGS_AS_ERRORS)
        target_compile_options(ovryn_options INTERFACE -Werror)
    endif()
endif()
if(OVRYN_SANITIZE)
    target_compile_options(ovryn_options INTERFACE -fsanitize=${OVRYN_SANITIZE} -fno-omit-frame-pointer)
    target_link_options(ovryn_options INTERFACE -fsanitize=${OVRYN_SANITIZE})
    if(OVRYN_SANITIZE MATCHES "undefined")
        target_compile_options(ovryn_options INTERFACE -fno-sanitize-recover=undefined)
    endif()
endif()

# ovryn_library(<folder> SOURCES <files> LINKS <libraries>)
# The static library ovryn_<folder> of one folder of src; includes are written from src.
function(ovryn_library folder)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
    if(ARG_SOURCES)
        add_library(ovryn_${folder} STATIC ${ARG_SOURCES})
        set_target_properties(ovryn_${folder} PROPERTIES AUTOMOC ON POSITION_INDEPENDENT_CODE ON)
        target_include_directories(ovryn_${folder} PUBLIC "${PROJECT_SOURCE_DIR}/src")
        target_link_libraries(ovryn_${folder} PUBLIC ${ARG_LINKS} PRIVATE ovryn_options)
    else()
        add_library(ovryn_${folder} INTERFACE)
        target_include_directories(ovryn_${folder} INTERFACE "${PROJECT_SOURCE_DIR}/src")
        target_link_libraries(ovryn_${folder} INTERFACE ${ARG_LINKS})
    endif()
endfunction()

# Builds every test program with a worker thread.
add_custom_target(thread_tests)

# ovryn_test(<name> SOURCES <files> LINKS <libraries> [LABELS <labels>] [TIMEOUT <seconds>] [ENVIRONMENT <VAR=value>...])
# One test program, registered with CTest. The labels decide which tests run under which sanitizer: `thread` is for
# every program with a worker thread. The thread sanitizer's long history gives each report both stacks, which its
# suppressions need.
function(ovryn_test name)
    cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LINKS;LABELS;ENVIRONMENT" ${ARGN})
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 120)
    endif()
    add_executable(${name} ${ARG_SOURCES})
    set_target_properties(${name} PROPERTIES AUTOMOC ON RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests")
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/src" "${PROJECT_SOURCE_DIR}/tests")
    target_link_libraries(${name} PRIVATE ${ARG_LINKS} Qt5::Test ovryn_options)
    if(OVRYN_SANITIZE MATCHES "thread")
        target_link_libraries(${name} PRIVATE ovryn_thread_sanitizer_locks)
    endif()
    if("thread" IN_LIST ARG_LABELS)
        add_dependencies(thread_tests ${name})
    endif()
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES
        TIMEOUT ${ARG_TIMEOUT}
        LABELS "${ARG_LABELS}"
        ENVIRONMENT "QT_QPA_PLATFORM=offscreen;LC_ALL=C.UTF-8;QT_FONT_DPI=96;FONTCONFIG_FILE=${PROJECT_SOURCE_DIR}/tests/support/fonts.conf;LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/lsan.supp:print_suppressions=0;TSAN_OPTIONS=ignore_noninstrumented_modules=1:history_size=7:suppressions=${PROJECT_SOURCE_DIR}/tests/support/tsan.supp;UBSAN_OPTIONS=print_stacktrace=1;${ARG_ENVIRONMENT}")
endfunction()

# ovryn_windows_program(<target> <description>)
# Gives the executable icon, version and manifest, which only Windows knows.
function(ovryn_windows_program target description)
    if(NOT WIN32)
        return()
    endif()
    enable_language(RC)
    string(REPLACE "." "," OVRYN_VERSION_NUMBERS "${PROJECT_VERSION}")
    set(OVRYN_FILE_DESCRIPTION "${description}")
    set(OVRYN_FILE_NAME ${target})
    configure_file("${PROJECT_SOURCE_DIR}/resources/windows/program.rc.in" ${target}.rc @ONLY)
    target_sources(${target} PRIVATE "${CMAKE_CURRENT_BINARY_DIR}/${target}.rc")
    set_source_files_properties("${CMAKE_CURRENT_BINARY_DIR}/${target}.rc" PROPERTIES
        OBJECT_DEPENDS "${PROJECT_SOURCE_DIR}/resources/images/icon.ico;${PROJECT_SOURCE_DIR}/resources/windows/program.manifest")
endfunction()
