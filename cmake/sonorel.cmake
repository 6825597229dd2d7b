# One interface target carries the flags of every target, and two functions make the libraries and the tests:
# every source of a folder belongs to its target, so that no file can be left out.

add_library(sonorel_flags INTERFACE)
target_compile_options(sonorel_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
  -Woverloaded-virtual -Wcast-align -Wnull-dereference -Wimplicit-fallthrough)
if(SONOREL_WERROR)
  target_compile_options(sonorel_flags INTERFACE -Werror)
endif()
target_compile_definitions(sonorel_flags INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING
  QT_NO_CAST_FROM_BYTEARRAY QT_NO_KEYWORDS QT_NO_FOREACH)
target_include_directories(sonorel_flags INTERFACE ${CMAKE_SOURCE_DIR}/src)
if(SONOREL_SANITIZE)
  target_compile_options(sonorel_flags INTERFACE -fsanitize=${SONOREL_SANITIZE} -fno-omit-frame-pointer
    -fno-sanitize-recover=all)
  # With the sanitizers' checks in between, the optimiser takes values in the standard library for uninitialised and
  # its pointers for null. The plain build keeps both warnings.
  target_compile_options(sonorel_flags INTERFACE -Wno-maybe-uninitialized -Wno-null-dereference)
  target_link_options(sonorel_flags INTERFACE -fsanitize=${SONOREL_SANITIZE})
endif()

# sonorel_library(NAME LINK...): a static library of all .cpp files of the current folder.
function(sonorel_library name)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  if(NOT sources)
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE sonorel_flags ${ARGN})
    return()
  endif()
  add_library(${name} STATIC ${sources})
  target_link_libraries(${name} PUBLIC sonorel_flags ${ARGN})
endfunction()

# sonorel_paths(NAME=PATH... FILES FILE...): defines these paths in these files, and only there: the compiler's cache knows
# no file of another clone whose flags name a path of this one.
function(sonorel_paths)
  cmake_parse_arguments(PARSE_ARGV 0 argument "" "" FILES)
  list(TRANSFORM argument_UNPARSED_ARGUMENTS REPLACE "^([^=]+)=(.*)$" "\\1=\"\\2\"")
  set_property(SOURCE ${argument_FILES} APPEND PROPERTY COMPILE_DEFINITIONS ${argument_UNPARSED_ARGUMENTS})
endfunction()

# sonorel_tests(NAME LINK...): one executable of all *_test.cpp files of the current folder, registered with ctest.
function(sonorel_tests name)
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  add_executable(${name} ${sources})
  target_link_libraries(${name} PRIVATE sonorel_test_support ${ARGN} GTest::gtest GTest::gtest_main)
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  add_test(NAME ${name} COMMAND ${name})
  set_tests_properties(${name} PROPERTIES LABELS unit TIMEOUT 600)
endfunction()
