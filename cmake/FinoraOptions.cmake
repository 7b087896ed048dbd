# One interface target carries the language level, the warnings and the Qt hygiene
# definitions; every target of ours links it so the rules live in one place.
add_library(finora_options INTERFACE)
target_compile_features(finora_options INTERFACE cxx_std_20)
# Warnings are fatal only where the code is developed and checked (the presets turn this on): a
# packager's compiler or flags may warn about things we never saw, and that must not break a build.
option(FINORA_WERROR "Treat compiler warnings as errors" OFF)
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
  target_compile_options(finora_options INTERFACE -Wall -Wextra -Wpedantic)
  if(FINORA_WERROR)
    target_compile_options(finora_options INTERFACE -Werror)
  endif()
endif()
target_compile_definitions(finora_options INTERFACE
  QT_NO_CAST_FROM_ASCII QT_NO_CONTEXTLESS_CONNECT QT_NO_KEYWORDS)

set(FINORA_SANITIZE "" CACHE STRING "Sanitizers to build with: address,undefined or thread")
if(FINORA_SANITIZE)
  add_compile_options(-fsanitize=${FINORA_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${FINORA_SANITIZE})
endif()
