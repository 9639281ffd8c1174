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
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
