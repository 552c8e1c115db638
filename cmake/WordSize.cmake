# What a 32-bit x86 build needs besides what every build has; a 64-bit one has all of it already (docs/32-bit.md).
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    # Times after 2038 and files over 2 GiB. For every target alike: they share structures that hold times.
    add_compile_definitions(_FILE_OFFSET_BITS=64 _TIME_BITS=64)
    # Floating-point numbers are computed in their own width, as on 64 bits and as the platform's own 32-bit programs
    # do. The old unit computes in 80 bits, and the same sum then compares unequal once it has been stored.
    add_compile_options(-msse2 -mfpmath=sse)
endif()
