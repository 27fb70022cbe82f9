# One instrumented build runs the tests and the fuzz targets.
if(KVSHARE_SANITIZE)
  set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all)
  # A report needs lines, no variables: without them the build takes a quarter less time.
  add_compile_options(${sanitizers} -fno-omit-frame-pointer -O1 -gline-tables-only)
  add_link_options(${sanitizers})
endif()
if(KVSHARE_FUZZ)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()
