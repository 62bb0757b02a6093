# A fuzzing build instruments every target for libFuzzer's coverage with ASan and UBSan, so
# that the library code the harnesses reach is both guided and checked. Only clang has it.
if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
  message(FATAL_ERROR "TAVCLIENT_BUILD_FUZZERS needs clang (CXX=clang++-14)")
endif()
if(NOT TAVCLIENT_SANITIZER STREQUAL "")
  message(FATAL_ERROR "TAVCLIENT_BUILD_FUZZERS brings its own sanitizers; leave TAVCLIENT_SANITIZER empty")
endif()
add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined
  -fno-omit-frame-pointer)
add_link_options(-fsanitize=address,undefined)

# A harness: one source defining LLVMFuzzerTestOneInput, linked with libFuzzer's main.
function(tav_add_fuzzer name source)
  add_executable(${name} ${source})
  target_link_libraries(${name} PRIVATE ${ARGN})
  target_link_options(${name} PRIVATE -fsanitize=fuzzer)
  tav_enable_warnings(${name})
endfunction()
