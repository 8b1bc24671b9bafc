# Functions that define targets. Each folder under src/ is one library with its own include root,
# which contains only that folder, so an include of a folder that is not linked does not compile.

# zorvel_library(<name> <folder> SOURCES <file>... [LINKS <target>...] [PRIVATE_LINKS <target>...])
function(zorvel_library name folder)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINKS;PRIVATE_LINKS" ${ARGN})
  add_library(zorvel_${name} STATIC ${ARG_SOURCES})
  # Sources that define their own tr() function cannot be in the same unity build file.
  foreach(source IN LISTS ARG_SOURCES)
    file(STRINGS ${source} own_tr REGEX "^QString tr\\(")
    if(own_tr)
      set_source_files_properties(${source} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
    endif()
  endforeach()
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
# OPTIMISED: optimise the tests themselves, for tests with long computations. With sanitizers, other
# tests are compiled without optimisation, which halves the compile time; the code under test is
# always optimised. Tests with the label "thread" are also built by the target thread_tests, for the
# thread sanitizer.
function(zorvel_test name)
  cmake_parse_arguments(ARG "NO_MAIN;OPTIMISED" "" "SOURCES;LINKS;LABELS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LINKS} GTest::gtest GTest::gmock zorvel_warnings)
  if(ZORVEL_SANITIZE AND NOT ARG_OPTIMISED)
    target_compile_options(${name} PRIVATE -O0)
  endif()
  if(NOT ARG_NO_MAIN)
    target_link_libraries(${name} PRIVATE GTest::gtest_main)
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
