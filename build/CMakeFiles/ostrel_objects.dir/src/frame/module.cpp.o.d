CMakeFiles/ostrel_objects.dir/src/frame/module.cpp.o: \
 /work/main/src/frame/module.cpp /usr/include/stdc-predef.h \
 /work/main/src/frame/module.h /work/main/Defines/MfcUtilities.h \
 /usr/include/c++/12/cstdint \
 /usr/include/x86_64-linux-gnu/c++/12/bits/c++config.h \
 /usr/include/x86_64-linux-gnu/c++/12/bits/os_defines.h \
 /usr/include/features.h /usr/include/features-time64.h \
 /usr/include/x86_64-linux-gnu/bits/wordsize.h \
 /usr/include/x86_64-linux-gnu/bits/timesize.h \
 /usr/include/x86_64-linux-gnu/sys/cdefs.h \
 /usr/include/x86_64-linux-gnu/bits/long-double.h \
 /usr/include/x86_64-linux-gnu/gnu/stubs.h \
 /usr/include/x86_64-linux-gnu/gnu/stubs-64.h \
 /usr/include/x86_64-linux-gnu/c++/12/bits/cpu_defines.h \
 /usr/include/c++/12/pstl/pstl_config.h \
 /usr/lib/gcc/x86_64-linux-gnu/12/include/stdint.h /usr/include/stdint.h \
 /usr/include/x86_64-linux-gnu/bits/libc-header-start.h \
 /usr/include/x86_64-linux-gnu/bits/types.h \
 /usr/include/x86_64-linux-gnu/bits/typesizes.h \
 /usr/include/x86_64-linux-gnu/bits/time64.h \
 /usr/include/x86_64-linux-gnu/bits/wchar.h \
 /usr/include/x86_64-linux-gnu/bits/stdint-intn.h \
 /usr/include/x86_64-linux-gnu/bits/stdint-uintn.h \
 /usr/include/c++/12/exception /usr/include/c++/12/bits/exception.h \
 /usr/include/c++/12/bits/exception_ptr.h \
 /usr/include/c++/12/bits/exception_defines.h \
 /usr/include/c++/12/bits/cxxabi_init_exception.h \
 /usr/lib/gcc/x86_64-linux-gnu/12/include/stddef.h \
 /usr/include/c++/12/typeinfo /usr/include/c++/12/bits/hash_bytes.h \
 /usr/include/c++/12/new /usr/include/c++/12/bits/move.h \
 /usr/include/c++/12/type_traits \
 /usr/include/c++/12/bits/nested_exception.h \
 /work/main/src/frame/platform.h
