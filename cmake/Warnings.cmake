# Warnings and sanitizers for every target of the project: link disc::warnings.
add_library(disc_warnings INTERFACE)
add_library(disc::warnings ALIAS disc_warnings)
target_compile_options(disc_warnings INTERFACE -Wall -Wextra -Wpointer-arith
    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual -Wextra-semi -Wconversion -Wno-sign-conversion>)
if(DISC_WARNINGS_ARE_ERRORS)
    target_compile_options(disc_warnings INTERFACE -Werror)
endif()
if(DISC_SANITIZE)
    add_compile_options(-fsanitize=${DISC_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
    add_link_options(-fsanitize=${DISC_SANITIZE})
endif()
