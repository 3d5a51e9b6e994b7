# Compiler for the iPhone's library: Debian's clang, which can make code for iOS without anybody's SDK. Target, headers and
# linking are set per slice in device/CMakeLists.txt; for CMake the system has neither libraries nor a linker.
set(CMAKE_SYSTEM_NAME Generic)
set(CMAKE_SYSTEM_PROCESSOR arm64)
set(CMAKE_CXX_COMPILER clang++-22)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)
