# Cross build of PE32+ images for UEFI on x86-64 with clang and lld-link.
# Used by the efi preset; every compiled file is freestanding here.
set(CMAKE_SYSTEM_NAME Generic)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET x86_64-unknown-windows)
set(CMAKE_CXX_COMPILER_TARGET x86_64-unknown-windows)
set(CMAKE_AR llvm-ar CACHE FILEPATH "" FORCE)
set(CMAKE_RANLIB llvm-ranlib CACHE FILEPATH "" FORCE)
set(CMAKE_LINKER lld-link CACHE FILEPATH "" FORCE)
set(CMAKE_RC_COMPILER llvm-rc CACHE FILEPATH "" FORCE)
# Compiler checks cannot link an image without an entry point.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(RAIDCFG_EFI ON CACHE BOOL "" FORCE)

# Optimised for size: the image is read from the boot medium at every boot,
# and the module's time goes to the vendor tools it runs, not to its own
# code. No C or C++ library of the build machine.
set(CMAKE_C_FLAGS_RELEASE_INIT "-Os -DNDEBUG")
set(CMAKE_CXX_FLAGS_RELEASE_INIT "-Os -DNDEBUG")
# CMake passes CMAKE_<LANG>_COMPILER_TARGET only while detecting the compiler
# when clang simulates MSVC, so the target goes into the flags as well.
# Every function and object in its own section, so the link below drops
# what nothing calls or reads: about 25 KiB of raidcfg.efi.
set(CMAKE_C_FLAGS_INIT
    "--target=x86_64-unknown-windows -nostdlibinc -ffunction-sections -fdata-sections")
set(CMAKE_CXX_FLAGS_INIT
    "--target=x86_64-unknown-windows -nostdlibinc -nostdinc++ -ffunction-sections -fdata-sections")

# Images are linked by lld-link directly (see cmake/EfiImage.cmake); the
# image adds its subsystem, entry point and import-library path. /opt:ref
# drops unreferenced sections; identical functions are not folded, so two
# functions never share an address (folding would save only 0.5 KiB).
set(CMAKE_CXX_LINK_EXECUTABLE
    "<CMAKE_LINKER> /nologo /nodefaultlib /dynamicbase /machine:x64 /opt:ref /opt:noicf <LINK_FLAGS> <OBJECTS> <LINK_LIBRARIES> /out:<TARGET>")
set(CMAKE_EXECUTABLE_SUFFIX "")
