# Compiler settings that every target of ours shares. Warnings are errors, with g++ 12 and clang 14 alike.
add_library(kesu_warnings INTERFACE)
target_compile_options(kesu_warnings INTERFACE -Wall -Wextra -Wpedantic -Werror -Wconversion -Wsign-conversion
  -Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-qual -Wformat=2 -Wimplicit-fallthrough -Wundef
  $<$<CXX_COMPILER_ID:Clang>:-Wshadow -Wthread-safety -Wextra-semi -Wunused-member-function>
  $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local -Wno-error=maybe-uninitialized>)
if(KESU_SANITIZE)
  add_compile_options(-fsanitize=${KESU_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${KESU_SANITIZE})
endif()
