# nuv_options: how everything of the project is compiled. Linked privately; nothing of it is installed.
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

add_library(nuv_options INTERFACE)
target_compile_features(nuv_options INTERFACE cxx_std_20)
target_compile_options(nuv_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  $<$<BOOL:${NUV_WARNINGS_AS_ERRORS}>:-Werror>)
if(NUV_SANITIZE)
  target_compile_options(nuv_options INTERFACE
    -fsanitize=${NUV_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(nuv_options INTERFACE -fsanitize=${NUV_SANITIZE})
endif()
if(NUV_COVERAGE)
  target_compile_options(nuv_options INTERFACE --coverage -fprofile-update=atomic) # some tests start threads
  target_link_options(nuv_options INTERFACE --coverage)
endif()
