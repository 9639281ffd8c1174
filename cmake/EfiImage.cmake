# add_efi_image(<target>
#               OUTPUT_NAME <file.efi>
#               SUBSYSTEM efi_boot_service_driver|efi_application
#               ENTRY <symbol>
#               LIBRARIES <freestanding libraries...>
#               [HII_PACKAGE_LIST <hii.bin>])
#
# Links a PE32+ image with lld-link from the given libraries and every
# freestanding library they link, transitively. Each library's objects go
# into the image in full, as if by /wholearchive: code that is not
# freestanding, or that needs a symbol the image does not define, fails the
# link even when nothing calls it yet. The image is relocatable (/dynamicbase,
# never /fixed): firmware loads it wherever it finds room.
#
# HII_PACKAGE_LIST links the package list in as a resource of type "HII",
# which the firmware's image loader publishes as the image's HII package
# list protocol.
function(add_efi_image target)
  cmake_parse_arguments(PARSE_ARGV 1 IMG "" "OUTPUT_NAME;SUBSYSTEM;ENTRY;HII_PACKAGE_LIST"
                        "LIBRARIES")
  _efi_image_collect_libraries(libraries ${IMG_LIBRARIES})

  set(objects)
  foreach(library IN LISTS libraries)
    list(APPEND objects $<TARGET_OBJECTS:${library}>)
  endforeach()

  if(IMG_HII_PACKAGE_LIST)
    _efi_image_hii_resource(${target} ${IMG_HII_PACKAGE_LIST} resource)
    list(APPEND objects ${resource})
  endif()

  add_executable(${target} ${objects})
  set_target_properties(${target} PROPERTIES
    OUTPUT_NAME ${IMG_OUTPUT_NAME}
    LINKER_LANGUAGE CXX)
  # lld-link 14 writes an import library for every /dll and has no
  # /noimplib: send it to a scratch file next to the object files.
  target_link_options(${target} PRIVATE
    /dll
    /implib:${CMAKE_CURRENT_BINARY_DIR}/${target}.scratch.lib
    /subsystem:${IMG_SUBSYSTEM}
    /entry:${IMG_ENTRY})
endfunction()

# Collects into <out> the given libraries and every library they link that
# is marked freestanding, in link order without duplicates.
function(_efi_image_collect_libraries out)
  set(pending ${ARGN})
  set(found)
  while(pending)
    list(POP_FRONT pending library)
    if(NOT TARGET ${library} OR library IN_LIST found)
      continue()
    endif()
    get_target_property(type ${library} TYPE)
    if(type STREQUAL "INTERFACE_LIBRARY")
      continue()
    endif()
    get_target_property(freestanding ${library} RAIDCFG_FREESTANDING)
    if(NOT freestanding)
      message(FATAL_ERROR "${library} is linked into an EFI image but is not "
                          "a freestanding library (add_freestanding_library)")
    endif()
    list(APPEND found ${library})
    get_target_property(linked ${library} LINK_LIBRARIES)
    if(linked)
      list(APPEND pending ${linked})
    endif()
  endwhile()
  set(${out} ${found} PARENT_SCOPE)
endfunction()

# Compiles a resource script that carries <package_list> as resource
# HII/1 into <target>-hii.res and returns that file's path in <out>.
function(_efi_image_hii_resource target package_list out)
  get_filename_component(package_list ${package_list} ABSOLUTE)
  get_filename_component(package_dir ${package_list} DIRECTORY)
  get_filename_component(package_name ${package_list} NAME)
  set(rc ${CMAKE_CURRENT_BINARY_DIR}/${target}-hii.rc)
  set(res ${CMAKE_CURRENT_BINARY_DIR}/${target}-hii.res)
  file(WRITE ${rc} "LANGUAGE 0x09, 0x01\n1 HII \"${package_name}\"\n")
  # llvm-rc reads any argument that starts with '/' as a switch, so an
  # absolute path such as /check/... becomes "/C heck/...". It is given
  # paths relative to the directory it runs in instead.
  file(RELATIVE_PATH include_dir ${CMAKE_CURRENT_BINARY_DIR} ${package_dir})
  add_custom_command(
    OUTPUT ${res}
    COMMAND ${CMAKE_RC_COMPILER} /FO ./${target}-hii.res /I ./${include_dir}
            ./${target}-hii.rc
    WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR}
    DEPENDS ${rc} ${package_list}
    COMMENT "Packing ${package_name} as resource HII of ${target}"
    VERBATIM)
  set_source_files_properties(${res} PROPERTIES EXTERNAL_OBJECT TRUE GENERATED TRUE)
  set(${out} ${res} PARENT_SCOPE)
endfunction()

# clang with the Windows target simulates MSVC, for which CMake writes no
# dependency files: a changed header would not rebuild the objects that
# include it. clang writes make-style dependency files as usual.
set(CMAKE_DEPFILE_FLAGS_CXX "-MD -MT <DEP_TARGET> -MF <DEP_FILE>")
set(CMAKE_CXX_DEPFILE_FORMAT gcc)
set(CMAKE_DEPFILE_FLAGS_C "-MD -MT <DEP_TARGET> -MF <DEP_FILE>")
set(CMAKE_C_DEPFILE_FORMAT gcc)
