CMakeFiles/ostrel_objects.dir/src/frame/platform_posix.cpp.o: \
 /work/main/src/frame/platform_posix.cpp /usr/include/stdc-predef.h \
 /work/main/src/frame/cpu_features.h /work/main/src/frame/platform.h
