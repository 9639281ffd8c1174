# Flags for code that is linked into the UEFI images: uefi/, raidcfg/ and
# host/framework/. The same sources build natively for tests; the EFI build
# is what proves they need nothing but themselves.
set(RAIDCFG_FREESTANDING_FLAGS
  -fno-exceptions
  -fno-rtti
  -fno-threadsafe-statics
  -Wall -Wextra -Werror
  -Wno-unused-parameter)

if(RAIDCFG_EFI)
  list(APPEND RAIDCFG_FREESTANDING_FLAGS
    -ffreestanding
    -fno-stack-protector
    -mno-stack-arg-probe
    -mno-red-zone
    -Werror=global-constructors
    -Wexit-time-destructors)
endif()

# add_freestanding_library(<name> <sources...>): a static library of
# module-side code, built with the freestanding flags in either build. In
# the EFI build, add_efi_image() links every object of it into the image.
function(add_freestanding_library name)
  add_library(${name} STATIC ${ARGN})
  target_compile_options(${name} PRIVATE ${RAIDCFG_FREESTANDING_FLAGS})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/uefi/include)
  set_target_properties(${name} PROPERTIES RAIDCFG_FREESTANDING ON)
endfunction()
