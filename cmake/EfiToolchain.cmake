# Cross build of PE32+ images for UEFI on x86-64 with clang and lld-link.
set(CMAKE_SYSTEM_NAME Generic)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET x86_64-unknown-windows)
set(CMAKE_CXX_COMPILER_TARGET x86_64-unknown-windows)
set(CMAKE_AR llvm-ar CACHE FILEPATH "" FORCE)
set(CMAKE_RANLIB llvm-ranlib CACHE FILEPATH "" FORCE)
set(CMAKE_LINKER lld-link CACHE FILEPATH "" FORCE)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
set(RAIDCFG_EFI ON CACHE BOOL "" FORCE)

# Images are linked by lld-link directly; each target adds its subsystem
# and entry point.
set(CMAKE_CXX_LINK_EXECUTABLE
    "<CMAKE_LINKER> /nologo /nodefaultlib /dynamicbase /machine:x64 <LINK_FLAGS> <OBJECTS> <LINK_LIBRARIES> /out:<TARGET>")
set(CMAKE_EXECUTABLE_SUFFIX "")
