# One static library per room of the house, one test program per tested room.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}")

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  # Without these ccache never hits a file that uses a precompiled header, nor a second build folder of the same checkout.
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
      CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
      CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${CCACHE_PROGRAM})
  if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    add_compile_options("SHELL:-Xclang -fno-pch-timestamp")
  else()
    add_compile_options(-fpch-preprocess)
  endif()
endif()

# One precompiled header for all of the window part: it takes ten seconds and 170 MB, so the rooms share it.
function(quillmark_precompiled_header)
  add_library(quillmark_pch OBJECT "${CMAKE_SOURCE_DIR}/cmake/QtPrecompiled.cpp")
  quillmark_options(quillmark_pch)
  target_link_libraries(quillmark_pch PUBLIC Qt6::Widgets)
  target_compile_definitions(quillmark_pch PUBLIC QT_NO_KEYWORDS)
  target_precompile_headers(quillmark_pch PRIVATE "${CMAKE_SOURCE_DIR}/cmake/QtPrecompiled.h")
endfunction()

function(quillmark_options target)
  target_include_directories(${target} PUBLIC "${CMAKE_SOURCE_DIR}")
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor)
  target_compile_definitions(${target} PUBLIC $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
  if(QUILLMARK_SANITIZE)
    target_compile_options(${target} PUBLIC -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
    target_link_options(${target} PUBLIC -fsanitize=address,undefined)
  endif()
  if(QUILLMARK_FUZZ)
    target_compile_options(${target} PUBLIC -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined)
    target_link_options(${target} PUBLIC -fsanitize=address,undefined)
  endif()
endfunction()

# moc, the shared precompiled header, and no "signals", "slots" and "emit" macros.
function(quillmark_uses_qt target)
  set_target_properties(${target} PROPERTIES AUTOMOC ON)
  target_compile_definitions(${target} PUBLIC QT_NO_KEYWORDS)
  if(QUILLMARK_PCH)
    target_precompile_headers(${target} REUSE_FROM quillmark_pch)
  endif()
endfunction()

# For everything that is started: a sanitized program knows the sanitizers' options by itself.
function(quillmark_program_options target)
  quillmark_options(${target})
  if(QUILLMARK_SANITIZE OR QUILLMARK_FUZZ)
    target_sources(${target} PRIVATE "${CMAKE_SOURCE_DIR}/cmake/SanitizerDefaults.cpp")
    set_source_files_properties("${CMAKE_SOURCE_DIR}/cmake/SanitizerDefaults.cpp" TARGET_DIRECTORY ${target}
                                PROPERTIES SKIP_PRECOMPILE_HEADERS ON SKIP_AUTOGEN ON)
  endif()
endfunction()

# A test never sees the developer's own settings, trash or desktop.
set(QUILLMARK_TEST_HOME "${CMAKE_BINARY_DIR}/test-home")
file(MAKE_DIRECTORY "${QUILLMARK_TEST_HOME}/runtime")
file(CHMOD "${QUILLMARK_TEST_HOME}/runtime" PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
set(QUILLMARK_TEST_ENVIRONMENT
    QT_QPA_PLATFORM=offscreen
    HOME=${QUILLMARK_TEST_HOME}
    XDG_CONFIG_HOME=${QUILLMARK_TEST_HOME}/config
    XDG_DATA_HOME=${QUILLMARK_TEST_HOME}/data
    XDG_STATE_HOME=${QUILLMARK_TEST_HOME}/state
    XDG_CACHE_HOME=${QUILLMARK_TEST_HOME}/cache
    XDG_RUNTIME_DIR=${QUILLMARK_TEST_HOME}/runtime
    QUILLMARK_SOURCE_DIR=${CMAKE_SOURCE_DIR}
    QUILLMARK_BINARY_DIR=${CMAKE_BINARY_DIR})

# The random tests of the engine and their naive models are slow enough under the sanitizers; all the rest compiles three
# times as fast without optimisation, and is quick anyway.
function(quillmark_optimise_when_sanitized target)
  if(QUILLMARK_SANITIZE)
    target_compile_options(${target} PRIVATE -O1)
  endif()
endfunction()

# quillmark_library(text SOURCES a.cpp ... LINK lib ... [QT])
function(quillmark_library name)
  cmake_parse_arguments(ARG "QT" "" "SOURCES;LINK" ${ARGN})
  set(target quillmark_${name})
  add_library(${target} STATIC ${ARG_SOURCES})
  quillmark_options(${target})
  target_link_libraries(${target} PUBLIC ${ARG_LINK})
  if(ARG_QT)
    quillmark_uses_qt(${target})
  else()
    quillmark_optimise_when_sanitized(${target})
  endif()
endfunction()

# quillmark_test(text SOURCES a.cpp ... LINK lib ... [QT]): the program test_<name>, one ctest entry for each test in it.
function(quillmark_test name)
  cmake_parse_arguments(ARG "QT" "" "SOURCES;LINK" ${ARGN})
  set(target test_${name})
  add_executable(${target} ${ARG_SOURCES})
  quillmark_program_options(${target})
  # What a test itself does is quickly done; compiling it is what takes time.
  target_compile_options(${target} PRIVATE $<$<CONFIG:RelWithDebInfo>:-O1>)
  target_link_libraries(${target} PRIVATE ${ARG_LINK} GTest::gtest GTest::gmock)
  if(ARG_QT)
    quillmark_uses_qt(${target})
    target_link_libraries(${target} PRIVATE quillmark_qt_test_main)
  else()
    quillmark_optimise_when_sanitized(${target})
    target_link_libraries(${target} PRIVATE GTest::gtest_main)
  endif()
  gtest_discover_tests(${target} TEST_PREFIX "${name}." NO_PRETTY_VALUES DISCOVERY_TIMEOUT 60 PROPERTIES TIMEOUT 300)
  # In a file of its own, because gtest_discover_tests loses all but the first variable of a list.
  file(GENERATE OUTPUT "${CMAKE_CURRENT_BINARY_DIR}/${target}_environment.cmake" CONTENT
"foreach(test IN LISTS ${target}_TESTS)
  set_tests_properties(\"\${test}\" PROPERTIES ENVIRONMENT \"${QUILLMARK_TEST_ENVIRONMENT}\")
endforeach()
")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${CMAKE_CURRENT_BINARY_DIR}/${target}_environment.cmake")
endfunction()
