# -DBELUN_SANITIZE=address,undefined (or thread) instruments every target of ours.
set(BELUN_SANITIZE "" CACHE STRING "Sanitizers to build with, separated by commas")

if(BELUN_SANITIZE)
  target_compile_options(project_options INTERFACE
    -fsanitize=${BELUN_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(project_options INTERFACE -fsanitize=${BELUN_SANITIZE})
endif()
