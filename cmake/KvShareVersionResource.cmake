# kvshare_version_resource(TARGET COMPANY name PRODUCT name VERSION a.b.c.d
#     [PRODUCT_VERSION a.b.c.d] [DESCRIPTION text] [COPYRIGHT text]
#     [LANGUAGE language codepage ...] [STRINGS name value ...])
#
# Gives a program or a library its version resource: who made it, what it is and which version it
# has, as `kvshare version` and the suite's programs read them from the file. Texts are UTF-8. A
# version has one to four numbers up to 65535; the text of ProductVersion stands as it is given, as it
# is part of the name of the program's settings. PRODUCT_VERSION is VERSION where it is not given,
# LANGUAGE is 1054 874 (Thai); with several pairs each has the same texts. STRINGS adds named texts.

function(kvshare_version_resource target)
  cmake_parse_arguments(PARSE_ARGV 1 arg ""
    "COMPANY;PRODUCT;VERSION;PRODUCT_VERSION;DESCRIPTION;COPYRIGHT" "LANGUAGE;STRINGS")
  _kvshare_check_version_target(${target})
  foreach(name IN LISTS arg_UNPARSED_ARGUMENTS arg_KEYWORDS_MISSING_VALUES)
    message(FATAL_ERROR "kvshare_version_resource(${target}): do not know what to do with ${name}")
  endforeach()
  foreach(name IN ITEMS COMPANY PRODUCT VERSION)
    if("${arg_${name}}" STREQUAL "")
      message(FATAL_ERROR "kvshare_version_resource(${target}): ${name} is missing")
    endif()
  endforeach()
  if(NOT DEFINED arg_PRODUCT_VERSION)
    set(arg_PRODUCT_VERSION "${arg_VERSION}")
  endif()
  if(NOT DEFINED arg_LANGUAGE)
    set(arg_LANGUAGE 1054 874)
  endif()

  _kvshare_version_number(file_version "${arg_VERSION}")
  _kvshare_version_number(product_version "${arg_PRODUCT_VERSION}")

  set(texts "")
  _kvshare_version_text("CompanyName" "${arg_COMPANY}")
  if(NOT "${arg_DESCRIPTION}" STREQUAL "")
    _kvshare_version_text("FileDescription" "${arg_DESCRIPTION}")
  endif()
  _kvshare_version_text("FileVersion" "${arg_VERSION}")
  if(NOT "${arg_COPYRIGHT}" STREQUAL "")
    _kvshare_version_text("LegalCopyright" "${arg_COPYRIGHT}")
  endif()
  _kvshare_version_text("ProductName" "${arg_PRODUCT}")
  _kvshare_version_text("ProductVersion" "${arg_PRODUCT_VERSION}")
  list(LENGTH arg_STRINGS left)
  while(left GREATER 0)
    if(left EQUAL 1)
      message(FATAL_ERROR "kvshare_version_resource(${target}): STRINGS are pairs of name and value")
    endif()
    list(POP_FRONT arg_STRINGS name value)
    _kvshare_version_text("${name}" "${value}")
    list(LENGTH arg_STRINGS left)
  endwhile()

  set(tables "")
  list(LENGTH arg_LANGUAGE left)
  while(left GREATER 0)
    list(POP_FRONT arg_LANGUAGE language code_page)
    if(NOT "${language},${code_page}" MATCHES "^[0-9]+,[0-9]+$")
      message(FATAL_ERROR "kvshare_version_resource(${target}): LANGUAGE are pairs of numbers")
    endif()
    string(APPEND tables "    {${language}, ${code_page}, kTexts},\n")
    list(LENGTH arg_LANGUAGE left)
  endwhile()

  set(source "${CMAKE_CURRENT_BINARY_DIR}/${target}_version_resource.cpp")
  configure_file("${CMAKE_CURRENT_FUNCTION_LIST_DIR}/KvShareVersionResource.cpp.in" "${source}"
    @ONLY)

  # By itself, so that it needs neither the language level nor the include folders of the program. A
  # sanitizer would put its own bytes between the notes.
  set(object ${target}_version_resource)
  add_library(${object} OBJECT "${source}")
  target_link_libraries(${object} PRIVATE KvShare::kvshare)
  target_compile_options(${object} PRIVATE -fno-sanitize=all)
  set_target_properties(${object} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  target_sources(${target} PRIVATE $<TARGET_OBJECTS:${object}>)
endfunction()

function(_kvshare_check_version_target target)
  get_target_property(kind ${target} TYPE)
  if(NOT kind MATCHES "^(EXECUTABLE|SHARED_LIBRARY|MODULE_LIBRARY)$")
    message(FATAL_ERROR
      "kvshare_version_resource(${target}): only a program or a shared library has a file of its own")
  endif()
  if(WIN32 OR APPLE)
    message(FATAL_ERROR "kvshare_version_resource: for ELF files only")
  endif()
endfunction()

# `5.1` as the list of C++ numbers `5, 1, 0, 0`.
function(_kvshare_version_number variable version)
  if(NOT version MATCHES "^[0-9]+(\\.[0-9]+(\\.[0-9]+(\\.[0-9]+)?)?)?$")
    message(FATAL_ERROR "kvshare_version_resource: '${version}' is no version of one to four numbers")
  endif()
  string(REPLACE "." ";" numbers "${version}.0.0.0")
  list(SUBLIST numbers 0 4 numbers)
  foreach(number IN LISTS numbers)
    if(number GREATER 65535)
      message(FATAL_ERROR "kvshare_version_resource: ${number} in ${version} is more than 65535")
    endif()
  endforeach()
  string(REGEX REPLACE "(^|;)0+([0-9])" "\\1\\2" numbers "${numbers}")  # no octal numbers
  list(JOIN numbers ", " numbers)
  set(${variable} "${numbers}" PARENT_SCOPE)
endfunction()

# Appends a name and its value to `texts` of the caller, as C++ literals.
function(_kvshare_version_text name value)
  _kvshare_literal(name "${name}")
  _kvshare_literal(value "${value}")
  set(texts "${texts}    {${name}, ${value}},\n" PARENT_SCOPE)
endfunction()

function(_kvshare_literal variable text)
  string(REPLACE "\\" "\\\\" text "${text}")
  string(REPLACE "\"" "\\\"" text "${text}")
  string(REPLACE "\r" "\\r" text "${text}")
  string(REPLACE "\n" "\\n" text "${text}")
  set(${variable} "u\"${text}\"" PARENT_SCOPE)
endfunction()
