# Functions that define targets. Each folder under src/ is one library with its own include root,
# which contains only that folder, so an include of a folder that is not linked does not compile.

# With sanitizers, targets are compiled without optimisation, which takes half the time, unless they
# are OPTIMISED: libraries whose work grows with the data, and tests with long computations.
function(zorvel_optimise name optimised)
  if(ZORVEL_SANITIZE AND NOT optimised)
    target_compile_options(${name} PRIVATE -O0)
  endif()
endfunction()

# With sanitizers, the headers of Qt Widgets and the largest of the standard library are compiled once
# for all targets with Qt, which saves a quarter of their time. Other builds do without, so that a
# missing include is noticed.
function(zorvel_precompile name)
  if(NOT ZORVEL_SANITIZE)
    return()
  endif()
  if(NOT TARGET zorvel_precompiled)
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/precompiled.cpp CONTENT "")
    add_library(zorvel_precompiled OBJECT ${PROJECT_BINARY_DIR}/precompiled.cpp)
    target_link_libraries(zorvel_precompiled PRIVATE Qt6::Widgets zorvel_warnings)
    target_precompile_headers(
      zorvel_precompiled PRIVATE <QtWidgets/QtWidgets> <algorithm> <filesystem> <functional> <map>
      <memory> <optional> <stop_token> <string> <thread> <variant> <vector>)
    zorvel_optimise(zorvel_precompiled FALSE)
  endif()
  target_precompile_headers(${name} REUSE_FROM zorvel_precompiled)
endfunction()

# zorvel_library(<name> <folder> SOURCES <file>... [LINKS <target>...] [PRIVATE_LINKS <target>...]
# [OPTIMISED])
function(zorvel_library name folder)
  cmake_parse_arguments(ARG "OPTIMISED" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
  add_library(zorvel_${name} STATIC ${ARG_SOURCES})
  zorvel_optimise(zorvel_${name} "${ARG_OPTIMISED}")
  if(folder MATCHES "^(ui/|app$)")
    zorvel_precompile(zorvel_${name})
  endif()
  set(root ${PROJECT_BINARY_DIR}/include/${name})
  cmake_path(GET folder PARENT_PATH parent)
  file(MAKE_DIRECTORY ${root}/${parent})
  if(NOT EXISTS ${root}/${folder})
    file(CREATE_LINK ${PROJECT_SOURCE_DIR}/src/${folder} ${root}/${folder} SYMBOLIC)
  endif()
  target_include_directories(zorvel_${name} PUBLIC ${root})
  target_link_libraries(zorvel_${name} PUBLIC ${ARG_LINKS} PRIVATE ${ARG_PRIVATE_LINKS} zorvel_warnings)
endfunction()

# zorvel_test(<name> SOURCES <file>... LINKS <target>... [LABELS <label>...] [NO_MAIN] [OPTIMISED])
# Defines a GoogleTest executable. NO_MAIN: one of the sources contains main(), for a Qt application.
# Tests with the label "thread" are also built by the target thread_tests, for the thread sanitizer.
function(zorvel_test name)
  cmake_parse_arguments(ARG "NO_MAIN;OPTIMISED" "" "SOURCES;LINKS;LABELS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LINKS} GTest::gtest GTest::gmock zorvel_warnings)
  zorvel_optimise(${name} "${ARG_OPTIMISED}")
  if(NOT ARG_NO_MAIN)
    target_link_libraries(${name} PRIVATE GTest::gtest_main)
  endif()
  if("zorvel_app" IN_LIST ARG_LINKS)
    zorvel_precompile(${name})
  endif()
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
  target_compile_definitions(${name} PRIVATE ZORVEL_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
  if("thread" IN_LIST ARG_LABELS)
    add_dependencies(thread_tests ${name})
  endif()
  set(properties TIMEOUT 600)
  if(ARG_LABELS)
    list(APPEND properties LABELS ${ARG_LABELS})
  endif()
  gtest_discover_tests(
    ${name}
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 60
    PROPERTIES ${properties})
endfunction()
