# kvshare_unity(TARGET): with KVSHARE_UNITY a target's sources are compiled eight at a time, so that
# headers are read once for all of them. A name in an unnamed namespace then has to be the only one of
# its kind among neighbours; the other builds compile each source by itself, with its own includes.
function(kvshare_unity target)
  if(KVSHARE_UNITY)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 8)
  endif()
endfunction()
