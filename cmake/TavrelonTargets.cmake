# One static library for each folder of src/, one test program for each folder of tests/.

add_library(tavrelon_options INTERFACE)
target_compile_features(tavrelon_options INTERFACE cxx_std_23)
target_compile_options(tavrelon_options INTERFACE
  -Wall -Wextra -Wshadow -Wconversion -Wnon-virtual-dtor -Werror)
target_compile_definitions(tavrelon_options INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH QT_NO_URL_CAST_FROM_STRING)
target_include_directories(tavrelon_options INTERFACE ${CMAKE_SOURCE_DIR}/src)

# What makes a fault of memory hard to use, in every build: what is tested is what people run.
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
target_compile_options(tavrelon_options INTERFACE -fstack-protector-strong -fstack-clash-protection)
target_compile_definitions(tavrelon_options INTERFACE _GLIBCXX_ASSERTIONS)
target_link_options(tavrelon_options INTERFACE
  $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:-pie> -Wl,-z,relro,-z,now,-z,noexecstack,--as-needed)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64|i.86")
  target_compile_options(tavrelon_options INTERFACE -fcf-protection=full)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
  target_compile_options(tavrelon_options INTERFACE -mbranch-protection=standard)
endif()

option(TAVRELON_SANITIZE "Build with the address and undefined-behaviour sanitizers" OFF)
if(TAVRELON_SANITIZE)
  target_compile_options(tavrelon_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(tavrelon_options INTERFACE -fsanitize=address,undefined)
endif()

option(TAVRELON_SANITIZE_THREADS "Build with the thread sanitizer" OFF)
if(TAVRELON_SANITIZE_THREADS)
  target_compile_options(tavrelon_options INTERFACE -fsanitize=thread -fno-omit-frame-pointer)
  target_link_options(tavrelon_options INTERFACE -fsanitize=thread)
endif()

# The checked calls of the C library need an optimiser, and the sanitizers check more by themselves.
if(NOT TAVRELON_SANITIZE AND NOT TAVRELON_SANITIZE_THREADS)
  target_compile_options(tavrelon_options INTERFACE
    "$<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>")
endif()

option(TAVRELON_COVERAGE "Let the tests say what they reached" OFF)
if(TAVRELON_COVERAGE)
  target_compile_options(tavrelon_options INTERFACE -fprofile-instr-generate -fcoverage-mapping)
  target_link_options(tavrelon_options INTERFACE -fprofile-instr-generate)
endif()

option(TAVRELON_FUZZ "Build a fuzzer for each reader of foreign documents" OFF)
if(TAVRELON_FUZZ)
  target_compile_options(tavrelon_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# tavrelon_library(<folder> SOURCES <file>... [LINKS <target>...])
# The folder `a/b` becomes the target `tavrelon_a_b`.
function(tavrelon_library folder)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
  string(REPLACE "/" "_" name "tavrelon_${folder}")
  list(TRANSFORM ARG_SOURCES PREPEND "${CMAKE_SOURCE_DIR}/src/${folder}/")
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC tavrelon_options Qt6::Core ${ARG_LINKS})
endfunction()

# tavrelon_test(<name> SOURCES <file>... LINKS <target>... [DESKTOP])
# A DESKTOP test runs inside a private X server with a window manager, a session bus and an accessibility bus of its own,
# one at a time.
function(tavrelon_test name)
  cmake_parse_arguments(ARG "DESKTOP" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE tavrelon_options ${ARG_LINKS} GTest::gtest GTest::gmock)
  if(TAVRELON_SANITIZE_THREADS)
    target_link_libraries(${name} PRIVATE tavrelon_plain_clone)
  endif()
  if(ARG_DESKTOP)
    add_test(NAME ${name} COMMAND ${CMAKE_SOURCE_DIR}/scripts/on-desktop $<TARGET_FILE:${name}>)
    set_tests_properties(${name} PROPERTIES LABELS desktop TIMEOUT 600 RESOURCE_LOCK desktop)
  else()
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES LABELS logic TIMEOUT 120)
  endif()
endfunction()
