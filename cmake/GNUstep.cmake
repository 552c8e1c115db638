# Foundation as GNUstep has it.

# Code that reaches classes by name only names no symbol of their library. A linker that drops what looks unneeded
# would lose it, and every class would be nil without a word.
add_link_options(LINKER:--no-as-needed)

find_program(GNUSTEP_CONFIG gnustep-config REQUIRED)
execute_process(COMMAND ${GNUSTEP_CONFIG} --variable=GNUSTEP_SYSTEM_HEADERS
    OUTPUT_VARIABLE gnustep_headers OUTPUT_STRIP_TRAILING_WHITESPACE)
find_library(GNUSTEP_BASE gnustep-base REQUIRED)
# The compiler knows the folder of its own runtime; its name is not that of the machine everywhere.
execute_process(COMMAND ${CMAKE_OBJC_COMPILER} -print-file-name=libobjc.so
    OUTPUT_VARIABLE objc_runtime OUTPUT_STRIP_TRAILING_WHITESPACE)
get_filename_component(objc_folder ${objc_runtime} DIRECTORY)
find_library(OBJC_RUNTIME objc REQUIRED PATHS ${objc_folder})

# What every Objective-C file of the platform is compiled with.
add_library(gnustep_flags INTERFACE)
target_compile_options(gnustep_flags INTERFACE
    $<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:-fobjc-exceptions -fexceptions -fconstant-string-class=NSConstantString>)
target_compile_definitions(gnustep_flags INTERFACE
    $<$<COMPILE_LANGUAGE:OBJC,OBJCXX>:_NATIVE_OBJC_EXCEPTIONS GNUSTEP GNUSTEP_BASE_LIBRARY=1 GNU_RUNTIME=1>)

add_library(gnustep_base INTERFACE)
add_library(gnustep::base ALIAS gnustep_base)
target_link_libraries(gnustep_base INTERFACE gnustep_flags ${GNUSTEP_BASE} ${OBJC_RUNTIME})
