# Shared build settings and the two helpers every folder uses: qv_library and qv_test.
include_guard(GLOBAL)

add_library(qv_build_flags INTERFACE)
target_compile_options(qv_build_flags INTERFACE -Wall -Wextra)
target_compile_definitions(qv_build_flags INTERFACE
  QV_VERSION_MAJOR=${PROJECT_VERSION_MAJOR}
  QV_VERSION_MINOR=${PROJECT_VERSION_MINOR}
  QV_VERSION_PATCH=${PROJECT_VERSION_PATCH}
  QV_VERSION_BUILD=${PROJECT_VERSION_TWEAK})
if(QV_SANITIZE)
  set(qv_san -fsanitize=address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer)
  target_compile_options(qv_build_flags INTERFACE ${qv_san})
  target_link_options(qv_build_flags INTERFACE ${qv_san})
  target_compile_definitions(qv_build_flags INTERFACE QV_SANITIZE=1)
  # GCC's uninitialised-use analysis misreads the sanitizers' instrumentation at -O1 and reports
  # libstdc++'s own std::regex state as maybe uninitialised; the normal build keeps the warning.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(qv_build_flags INTERFACE -Wno-maybe-uninitialized)
  endif()
endif()
if(QV_TSAN)
  # The ASP runtime runs pages on several threads; this build checks that they share nothing
  # unguarded.
  target_compile_options(qv_build_flags INTERFACE -fsanitize=thread -fno-omit-frame-pointer)
  target_link_options(qv_build_flags INTERFACE -fsanitize=thread)
endif()
if(QV_FUZZ)
  target_compile_options(qv_build_flags INTERFACE -fsanitize=fuzzer-no-link,address,undefined)
  target_link_options(qv_build_flags INTERFACE -fsanitize=address,undefined)
endif()

# qv_library(<name> SOURCES ... [DEPS public-deps...] [PRIVATE_DEPS ...])
# One static library per source folder; headers are included as "folder/file.h".
function(qv_library name)
  cmake_parse_arguments(A "" "" "SOURCES;DEPS;PRIVATE_DEPS" ${ARGN})
  if(NOT A_SOURCES)
    # A subsystem without sources yet: its headers and dependencies still pass through.
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${name} INTERFACE qv_build_flags ${A_DEPS})
    return()
  endif()
  add_library(${name} STATIC ${A_SOURCES})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC qv_build_flags ${A_DEPS} PRIVATE ${A_PRIVATE_DEPS})
endfunction()

# qv_test(<name> SOURCES ... DEPS ... [LABEL unit|db|e2e])
# A GoogleTest executable registered with CTest, its cases discovered when the tests run.
function(qv_test name)
  cmake_parse_arguments(A "" "LABEL" "SOURCES;DEPS" ${ARGN})
  if(NOT A_LABEL)
    set(A_LABEL unit)
  endif()
  add_executable(${name} ${A_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${A_DEPS} GTest::gtest GTest::gmock GTest::gtest_main qv_build_flags)
  target_compile_definitions(${name} PRIVATE
    QV_SHARED_DATA="${QV_SHARED_DATA}"
    QV_SOURCE_DIR="${PROJECT_SOURCE_DIR}"
    QV_BINARY_DIR="${PROJECT_BINARY_DIR}")
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES LABELS ${A_LABEL}
    ENVIRONMENT "QV_TEST_SCRATCH=${PROJECT_BINARY_DIR}/test-scratch")
endfunction()
