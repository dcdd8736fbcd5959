# What all folders share: the build options, one function for each kind of target, and Qt.

# Lower case, as the name of the package.
set(CMAKE_INSTALL_DOCDIR "share/doc/tagwell" CACHE PATH "Where the manual and the other papers go.")
include(GNUInstallDirs)

add_library(tagwell_build_options INTERFACE)
target_compile_features(tagwell_build_options INTERFACE cxx_std_20)
target_include_directories(tagwell_build_options INTERFACE "${PROJECT_SOURCE_DIR}")
target_compile_options(tagwell_build_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wnon-virtual-dtor -Wold-style-cast
  $<$<BOOL:${TAGWELL_WARNINGS_AS_ERRORS}>:-Werror>)
# gcc 12 sees overlapping copies in every "text" + string at -O3, where there are none.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(tagwell_build_options INTERFACE -Wno-restrict)
endif()
if(TAGWELL_HARDEN)
  # Nothing of the folder or the time of the build gets into the program: two builds give the same bytes.
  target_compile_options(tagwell_build_options INTERFACE
    -fPIC -fstack-protector-strong -fstack-clash-protection -D_FORTIFY_SOURCE=2
    -Werror=date-time "-ffile-prefix-map=${PROJECT_SOURCE_DIR}=.")
  target_link_options(tagwell_build_options INTERFACE -pie -Wl,-z,relro -Wl,-z,now)
endif()
if(TAGWELL_SANITIZE)
  target_compile_options(tagwell_build_options INTERFACE
    -fsanitize=${TAGWELL_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(tagwell_build_options INTERFACE -fsanitize=${TAGWELL_SANITIZE})
endif()

if(TAGWELL_BUILD_APP)
  find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets PrintSupport)
endif()
if(TAGWELL_BUILD_TESTS OR TAGWELL_BUILD_BENCH)
  find_package(GTest REQUIRED)
  if(TAGWELL_BUILD_APP)
    find_package(Qt6 6.4 REQUIRED COMPONENTS Test)
  endif()
endif()
if(TAGWELL_BUILD_BENCH)
  find_package(benchmark REQUIRED)
endif()

# tagwell_library(tagwell_core SOURCES a.cpp ... LINK libs ... [QT])
# A static library with the shared options. With QT its classes go through moc.
function(tagwell_library name)
  cmake_parse_arguments(ARG "QT" "" "SOURCES;LINK" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_link_libraries(${name} PUBLIC tagwell_build_options ${ARG_LINK})
  # A library may become a part of a module that is loaded at run time; nobody puts functions of his own before it.
  set_target_properties(${name} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  target_compile_options(${name} PRIVATE -fno-semantic-interposition)
  if(ARG_QT)
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
  endif()
endfunction()

# tagwell_write_links(FILE folder...): a line for each target of these folders: its name, its folder and what it links.
# tools/check_layers.py compares them with its table.
function(tagwell_write_links file)
  set(lines "")
  foreach(folder IN LISTS ARGN)
    get_property(targets DIRECTORY "${PROJECT_SOURCE_DIR}/${folder}" PROPERTY BUILDSYSTEM_TARGETS)
    foreach(target IN LISTS targets)
      get_target_property(type ${target} TYPE)
      get_target_property(linked ${target} LINK_LIBRARIES)
      if(NOT type STREQUAL "UTILITY" AND linked)
        list(FILTER linked EXCLUDE REGEX "[$ ]")
        list(JOIN linked " " linked)
        string(APPEND lines "${target} ${folder} ${linked}\n")
      endif()
    endforeach()
  endforeach()
  file(WRITE "${file}" "${lines}")
endfunction()

# tagwell_test(core TimecodeTest LINK libs ... [QT] [DRIVEN] [SOURCES more.cpp ...])
# One executable out of <Name>.cpp, one CTest entry for each test in it, under the label given first.
# With QT the executable gets a QApplication on the offscreen platform, and any Qt warning fails the test.
# With DRIVEN it gets the audio output whose clock is the test, which whatever plays needs.
function(tagwell_test label name)
  cmake_parse_arguments(ARG "QT;DRIVEN" "" "LINK;SOURCES" ${ARGN})
  add_executable(${name} ${name}.cpp ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE tagwell_build_options tagwell_test_support ${ARG_LINK} GTest::gtest)
  # A test's own code runs once; compiling its many checks is what takes long.
  target_compile_options(${name} PRIVATE $<$<CONFIG:RelWithDebInfo>:-O0>)
  if(ARG_QT)
    target_link_libraries(${name} PRIVATE tagwell_qt_test_main Qt6::Test)
  else()
    target_link_libraries(${name} PRIVATE GTest::gtest_main)
  endif()
  if(ARG_DRIVEN)
    target_link_libraries(${name} PRIVATE tagwell_test_driven_output)
  endif()
  gtest_discover_tests(${name} TEST_PREFIX "${label}." DISCOVERY_TIMEOUT 120
    PROPERTIES LABELS ${label} TIMEOUT 600)
endfunction()

# tagwell_bench(readMetadata LINK libs ...): a Google Benchmark executable bench_<name> out of <name>.cpp.
function(tagwell_bench name)
  cmake_parse_arguments(ARG "" "" "LINK;SOURCES" ${ARGN})
  add_executable(bench_${name} ${name}.cpp ${ARG_SOURCES})
  target_link_libraries(bench_${name} PRIVATE
    tagwell_build_options tagwell_test_support ${ARG_LINK} benchmark::benchmark)
endfunction()

# tagwell_fuzz(IxmlText LINK libs ...): a libFuzzer executable fuzz_<Name> out of <Name>Fuzz.cpp.
# The libraries must be built with TAGWELL_SANITIZE=fuzzer-no-link,... so that coverage reaches into them.
function(tagwell_fuzz name)
  cmake_parse_arguments(ARG "" "" "LINK;SOURCES" ${ARGN})
  add_executable(fuzz_${name} ${name}Fuzz.cpp ${ARG_SOURCES})
  target_link_libraries(fuzz_${name} PRIVATE tagwell_build_options tagwell_test_support ${ARG_LINK})
  target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
endfunction()
