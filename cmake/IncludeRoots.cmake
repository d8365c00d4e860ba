# Each application library exposes its own headers and nothing else: its include root is a
# folder in the build tree holding one link, named after the library's include prefix, to the
# library's source folder. A file can then include another layer's header only when its target
# links that layer, so the compiler enforces the layering, not only the linker.

# `prefix` (e.g. "sources" or "platform/linux") names `directory` in includes.
function(lectorbell_include_root target prefix directory)
  set(root "${CMAKE_BINARY_DIR}/include-roots/${target}")
  set(link "${root}/${prefix}")
  get_filename_component(parent "${link}" DIRECTORY)
  file(MAKE_DIRECTORY "${parent}")
  if(NOT IS_SYMLINK "${link}")
    file(CREATE_LINK "${directory}" "${link}" SYMBOLIC)
  endif()
  target_include_directories(${target} PUBLIC "${root}")
endfunction()

# The same for a folder whose subfolders belong to other libraries (the platform interfaces,
# whose adapters live below them): one link per header of the folder itself.
function(lectorbell_include_headers target prefix directory)
  set(root "${CMAKE_BINARY_DIR}/include-roots/${target}")
  file(MAKE_DIRECTORY "${root}/${prefix}")
  file(GLOB headers CONFIGURE_DEPENDS RELATIVE "${directory}" "${directory}/*.hpp")
  foreach(header IN LISTS headers)
    if(NOT IS_SYMLINK "${root}/${prefix}/${header}")
      file(CREATE_LINK "${directory}/${header}" "${root}/${prefix}/${header}" SYMBOLIC)
    endif()
  endforeach()
  target_include_directories(${target} PUBLIC "${root}")
endfunction()
