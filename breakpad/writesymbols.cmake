# cmake -DDUMP_SYMS=... -DBINARY=... -DSYMBOLS=... -P writesymbols.cmake
# Writes BINARY's Breakpad symbols to SYMBOLS/<module>/<id>/<module>.sym,
# replacing those of earlier builds of the same module.
get_filename_component(name "${BINARY}" NAME)
set(partial "${SYMBOLS}/${name}.sym.partial")
file(MAKE_DIRECTORY "${SYMBOLS}")
execute_process(COMMAND "${DUMP_SYMS}" "${BINARY}"
    OUTPUT_FILE "${partial}" ERROR_VARIABLE errors RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    file(REMOVE "${partial}")
    message(FATAL_ERROR "dump_syms ${BINARY} failed: ${errors}")
endif()
# First line: MODULE <os> <cpu> <id> <module>
file(STRINGS "${partial}" header LIMIT_COUNT 1)
if(NOT header MATCHES "^MODULE [^ ]+ [^ ]+ ([0-9A-F]+) (.+)$")
    file(REMOVE "${partial}")
    message(FATAL_ERROR "dump_syms ${BINARY}: unexpected first line \"${header}\"")
endif()
set(id "${CMAKE_MATCH_1}")
set(module "${CMAKE_MATCH_2}")
file(REMOVE_RECURSE "${SYMBOLS}/${module}")
file(MAKE_DIRECTORY "${SYMBOLS}/${module}/${id}")
file(RENAME "${partial}" "${SYMBOLS}/${module}/${id}/${module}.sym")
