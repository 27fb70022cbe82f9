# A suite of tests that runs against each real server, which is started for it.
set(servers_folder ${CMAKE_CURRENT_LIST_DIR})

# What compiles into the programs of such suites.
add_library(kvshare_server_process STATIC
  ${servers_folder}/relay.cpp
  ${servers_folder}/serverprocess.cpp)
target_include_directories(kvshare_server_process PRIVATE ${PROJECT_SOURCE_DIR})
target_link_libraries(kvshare_server_process PRIVATE kvshare_warnings)

# The server, its driver, and the package that the driver's build needs.
set(server_rows
  "mariadb mysql libmariadb-dev"
  "postgres postgres libpq-dev"
  "firebird firebird firebird-dev"
  "odbc-mariadb odbc unixodbc-dev"
  "odbc-postgres odbc unixodbc-dev")

# SQLite through ODBC: of the suites what is computed, found and written, which is also what differs there.
set(odbc_sqlite_filter "--gtest_filter=*AmountsSuite*:*UpdatesSuite*")

# kvshare_server_suite(NAME PROGRAM): the tests NAME.SERVER.
function(kvshare_server_suite name program)
  target_link_libraries(${program} PRIVATE kvshare_server_process)
  foreach(row IN LISTS server_rows)
    separate_arguments(row)
    list(GET row 0 server)
    list(GET row 1 driver)
    list(GET row 2 package)
    if(TARGET kvshare-${driver})
      add_dependencies(${program} kvshare-${driver})
      add_test(NAME ${name}.${server}
        COMMAND ${servers_folder}/with-server ${server} $<TARGET_FILE:${program}>)
    else()
      add_test(NAME ${name}.${server} COMMAND ${servers_folder}/not-built ${server} ${package})
    endif()
    set_tests_properties(${name}.${server} PROPERTIES
      SKIP_RETURN_CODE 77 TIMEOUT 600
      ENVIRONMENT "KVSHARE_HOME=${PROJECT_BINARY_DIR}/home")
  endforeach()
  if(name STREQUAL "company" AND TARGET kvshare-odbc)
    add_test(NAME company.odbc-sqlite COMMAND ${servers_folder}/with-server odbc-sqlite
      $<TARGET_FILE:${program}> ${odbc_sqlite_filter})
    set_tests_properties(company.odbc-sqlite PROPERTIES
      SKIP_RETURN_CODE 77 TIMEOUT 600
      ENVIRONMENT "KVSHARE_HOME=${PROJECT_BINARY_DIR}/home")
  endif()
endfunction()
