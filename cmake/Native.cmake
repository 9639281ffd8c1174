# Native build: sanitizers for the test preset, libFuzzer for fuzz targets,
# Google Benchmark for benchmarks.
option(RAIDCFG_SANITIZE "Build with AddressSanitizer and UBSan" OFF)
option(RAIDCFG_FUZZ "Build libFuzzer targets" OFF)
option(RAIDCFG_BENCH "Build benchmarks" OFF)

add_compile_options(-Wall -Wextra -Werror -Wno-unused-parameter)

if(RAIDCFG_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
if(RAIDCFG_FUZZ)
  # Optimised as libFuzzer advises: at -O0 every input pays several times
  # over for unoptimised code and its coverage hooks. The sanitizers stay.
  add_compile_options(-fsanitize=fuzzer-no-link -O2 -gline-tables-only)
endif()

# add_fuzz_target(<name> <sources...> [LIBRARIES <libraries...>])
# A libFuzzer executable, built only in the fuzz preset. Its path is listed
# in <build>/fuzz-targets.txt, which scripts/test.sh runs. A seed corpus in
# tests/fuzz/corpus/<name>/ is used when present.
function(add_fuzz_target name)
  if(NOT RAIDCFG_FUZZ)
    return()
  endif()
  cmake_parse_arguments(PARSE_ARGV 1 FUZZ "" "" "LIBRARIES")
  add_executable(${name} ${FUZZ_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE ${FUZZ_LIBRARIES})
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
endfunction()

# add_benchmark_target(<name> <sources...> [LIBRARIES <libraries...>])
# A Google Benchmark executable, built only in the release preset.
function(add_benchmark_target name)
  if(NOT RAIDCFG_BENCH)
    return()
  endif()
  cmake_parse_arguments(PARSE_ARGV 1 BENCH "" "" "LIBRARIES")
  find_package(benchmark REQUIRED)
  add_executable(${name} ${BENCH_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE ${BENCH_LIBRARIES} benchmark::benchmark_main)
endfunction()

# Writes <build>/fuzz-targets.txt: one line per fuzz target, its name, a
# tab, and its executable's path. A fuzz target is any executable linked
# with -fsanitize=fuzzer, whether add_fuzz_target() made it or not. Called
# once all directories are added.
function(write_fuzz_target_list)
  set(lines "")
  set(directories ${PROJECT_SOURCE_DIR})
  while(directories)
    list(POP_FRONT directories directory)
    get_property(subdirectories DIRECTORY ${directory} PROPERTY SUBDIRECTORIES)
    list(APPEND directories ${subdirectories})
    get_property(targets DIRECTORY ${directory} PROPERTY BUILDSYSTEM_TARGETS)
    foreach(target IN LISTS targets)
      get_target_property(type ${target} TYPE)
      get_target_property(options ${target} LINK_OPTIONS)
      if(type STREQUAL "EXECUTABLE" AND "-fsanitize=fuzzer" IN_LIST options)
        string(APPEND lines "${target}\t$<TARGET_FILE:${target}>\n")
      endif()
    endforeach()
  endwhile()
  file(GENERATE OUTPUT ${CMAKE_BINARY_DIR}/fuzz-targets.txt CONTENT "${lines}")
endfunction()
