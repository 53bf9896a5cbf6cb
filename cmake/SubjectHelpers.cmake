# Small helpers shared by every component, so that each folder's
# CMakeLists.txt stays a list of its own sources.

# Adds every sub-folder of the current source folder that has a
# CMakeLists.txt, in a stable order. Components grow folder by folder, and
# this keeps the parent lists from becoming a place where every change meets.
function(subject_add_subdirectories)
    file(GLOB children LIST_DIRECTORIES true RELATIVE ${CMAKE_CURRENT_SOURCE_DIR}
         CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*)
    list(SORT children)
    foreach(child IN LISTS children)
        if(IS_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR}/${child}
           AND EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${child}/CMakeLists.txt)
            add_subdirectory(${child})
        endif()
    endforeach()
endfunction()

# subject_add_qtest(tst_name SOURCES ... [LIBRARIES ...] [WEBENGINE] [TIMEOUT s] [LABELS ...])
#
# A Qt Test suite registered with CTest. Suites that make no web view run on
# the offscreen platform; WEBENGINE suites need X and run under xvfb-run with
# the sandbox off (we run as root in CI).
#
# Labels: a suite that starts a server or a web engine is "e2e" (WEBENGINE
# implies it; others say LABELS e2e); every other suite is "unit", so that
# `ctest -L unit` is the quick loop. Each suite runs with a home and a
# temporary folder of its own (cmake/run-isolated.sh).
function(subject_add_qtest name)
    cmake_parse_arguments(T "WEBENGINE" "TIMEOUT" "SOURCES;LIBRARIES;LABELS" ${ARGN})
    add_executable(${name} ${T_SOURCES})
    target_link_libraries(${name} PRIVATE Qt5::Test ${T_LIBRARIES})
    target_compile_definitions(${name} PRIVATE
        SUBJECT_TEST_DATA_DIR="${CMAKE_SOURCE_DIR}/tests/data"
        SUBJECT_BIN_DIR="${CMAKE_BINARY_DIR}/bin")
    if(NOT T_TIMEOUT)
        set(T_TIMEOUT 300)
    endif()
    set(isolated ${CMAKE_SOURCE_DIR}/cmake/run-isolated.sh)
    if(T_WEBENGINE)
        target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests/auto/shared)
        find_program(XVFB_RUN xvfb-run REQUIRED)
        add_test(NAME ${name} COMMAND ${isolated} ${XVFB_RUN} -a $<TARGET_FILE:${name}>)
        set_tests_properties(${name} PROPERTIES ENVIRONMENT
            "QTWEBENGINE_DISABLE_SANDBOX=1;QTWEBENGINE_CHROMIUM_FLAGS=--no-sandbox --disable-gpu;ASAN_OPTIONS=detect_leaks=0:new_delete_type_mismatch=0")
    else()
        add_test(NAME ${name} COMMAND ${isolated} $<TARGET_FILE:${name}>)
        set_tests_properties(${name} PROPERTIES ENVIRONMENT
            "QT_QPA_PLATFORM=offscreen;ASAN_OPTIONS=detect_leaks=0;UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1")
    endif()
    if(T_WEBENGINE)
        list(APPEND T_LABELS e2e)
    endif()
    if(NOT T_LABELS)
        set(T_LABELS unit)
    endif()
    list(REMOVE_DUPLICATES T_LABELS)
    set_tests_properties(${name} PROPERTIES TIMEOUT ${T_TIMEOUT} LABELS "${T_LABELS}")
endfunction()

# subject_add_fuzzer(name SOURCES ... [LIBRARIES ...])
# A libFuzzer target; its corpus lives in fuzz/corpus/<name>/.
function(subject_add_fuzzer name)
    cmake_parse_arguments(F "" "" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${F_SOURCES})
    target_compile_options(${name} PRIVATE -fsanitize=fuzzer,address,undefined)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer,address,undefined)
    target_link_libraries(${name} PRIVATE ${F_LIBRARIES})
endfunction()

# subject_add_module(name SOURCES ... [LIBRARIES ...])
#
# One folder of the plug-in (net/, jsonparser/, expression/, ...) builds the
# static library subjectpage_<name>. Tests link the modules they exercise; the
# plug-in takes all of their objects (src/subjectpage/CMakeLists.txt).
function(subject_add_module name)
    cmake_parse_arguments(M "" "" "SOURCES;LIBRARIES" ${ARGN})
    set(target subjectpage_${name})
    add_library(${target} STATIC ${M_SOURCES})
    target_include_directories(${target} PUBLIC
        ${CMAKE_SOURCE_DIR}/src/subjectpage
        ${CMAKE_SOURCE_DIR}/src/subjectpage/common/include)
    target_link_libraries(${target} PUBLIC tfhost Qt5::Core Qt5::Gui Qt5::Widgets ${M_LIBRARIES})
    set_property(GLOBAL APPEND PROPERTY SUBJECTPAGE_MODULES ${target})
endfunction()
