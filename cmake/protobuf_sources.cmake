# Makes the messages of a .proto file part of a target, which includes them as "FOLDER/NAME.pb.h".
# They are of protobuf's lite runtime, and not held to our warnings.
function(protobuf_sources target file)
  cmake_path(REPLACE_EXTENSION file LAST_ONLY .pb OUTPUT_VARIABLE stem)
  set(generated ${CMAKE_CURRENT_BINARY_DIR}/${stem}.cc ${CMAKE_CURRENT_BINARY_DIR}/${stem}.h)
  add_custom_command(
    OUTPUT ${generated}
    COMMAND protobuf::protoc --proto_path=${CMAKE_CURRENT_SOURCE_DIR}
            --cpp_out=${CMAKE_CURRENT_BINARY_DIR} ${file}
    DEPENDS ${file}
    WORKING_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR}
    VERBATIM)
  set_source_files_properties(${generated} PROPERTIES COMPILE_OPTIONS -w)
  target_sources(${target} PRIVATE ${generated})
  target_include_directories(${target} SYSTEM PRIVATE ${CMAKE_CURRENT_BINARY_DIR})
  target_link_libraries(${target} PRIVATE protobuf::libprotobuf-lite)
endfunction()
