# veltra_resources(TARGET SCRIPT): the script's resources for that program. A Windows program carries them; a native one
# is told in VELTRA_RESOURCES where the same bytes are. The compiler hears that texts are UTF-8, or it would make rubbish
# of them without a word.
if(NOT WIN32)
  find_program(VELTRA_RESOURCE_COMPILER REQUIRED
    NAMES x86_64-w64-mingw32-windres llvm-rc llvm-rc-19 llvm-rc-18 llvm-rc-17 llvm-rc-16 llvm-rc-15 llvm-rc-14)
endif()

configure_file(resources/version.h.in ${CMAKE_BINARY_DIR}/resources/version.h @ONLY)
configure_file(resources/veltratool.manifest.in ${CMAKE_BINARY_DIR}/resources/veltratool.manifest @ONLY)

function(veltra_resources target script)
  cmake_path(ABSOLUTE_PATH script)
  cmake_path(GET script PARENT_PATH folder)
  # What a script includes or embeds: no compiler tells Ninja.
  file(GLOB used CONFIGURE_DEPENDS ${folder}/*.rc ${folder}/*.h ${folder}/*.txt ${CMAKE_BINARY_DIR}/resources/*
    ${PROJECT_SOURCE_DIR}/resources/version.rc ${PROJECT_SOURCE_DIR}/resources/icons/*.ico
    ${PROJECT_SOURCE_DIR}/resources/sounds/*.wav)
  target_include_directories(${target} PUBLIC ${CMAKE_BINARY_DIR})

  if(WIN32)
    target_sources(${target} PRIVATE ${script})
    set_source_files_properties(${script} PROPERTIES COMPILE_OPTIONS "-c;65001" OBJECT_DEPENDS "${used}")
    return()
  endif()

  # The host's preprocessor reads the layer's headers: those of Windows need not be here.
  set(text ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
  set(output ${CMAKE_CURRENT_BINARY_DIR}/${target}.res)
  if(VELTRA_RESOURCE_COMPILER MATCHES "windres")
    set(compile --preprocessor=cat -O res -c 65001 ${text} ${output})
  else()
    set(compile /no-preprocess /C 65001 /FO ${output} -- ${text})
  endif()
  add_custom_command(OUTPUT ${output}
    COMMAND ${CMAKE_CXX_COMPILER} -E -x c++ -DRC_INVOKED -I${PROJECT_SOURCE_DIR} -I${CMAKE_BINARY_DIR}
      -I${PROJECT_SOURCE_DIR}/pal/include -MD -MF ${output}.d -MT ${output} ${script} -o ${text}
    COMMAND ${VELTRA_RESOURCE_COMPILER} ${compile}
    DEPENDS ${script} ${used}
    DEPFILE ${output}.d
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
    COMMENT "Compiling the resources of ${target}"
    VERBATIM)
  target_sources(${target} PRIVATE ${output})
  target_compile_definitions(${target} PRIVATE VELTRA_RESOURCES="${output}")
endfunction()
