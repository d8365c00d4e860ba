# Runs one verb of the real executable and checks what it prints:
#   cmake -DEXE=<lectorbell> -DVERB=<verb> -DINPUT=<file> [-DSTDIN=ON] [-DEXPECTED=<file>]
#         [-DSTATUS=<exit status, 0 by default>] [-DSTDERR_MATCH=<regex>] -P CheckVerb.cmake
# With STDIN the input goes to standard input and the verb is given "-"; otherwise its path is
# the verb's argument. Standard output must equal EXPECTED (empty without it).
if(NOT DEFINED STATUS)
  set(STATUS 0)
endif()
if(STDIN)
  execute_process(COMMAND "${EXE}" ${VERB} - INPUT_FILE "${INPUT}"
                  OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE status)
else()
  execute_process(COMMAND "${EXE}" ${VERB} "${INPUT}"
                  OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE status)
endif()

set(expected "")
if(EXPECTED)
  file(READ "${EXPECTED}" expected)
endif()
set(problems "")
if(NOT status STREQUAL STATUS)
  string(APPEND problems "exit status ${status}, expected ${STATUS}\n")
endif()
if(NOT out STREQUAL expected)
  string(APPEND problems "standard output differs.\n--- expected\n${expected}--- got\n${out}")
endif()
if(DEFINED STDERR_MATCH AND NOT err MATCHES "${STDERR_MATCH}")
  string(APPEND problems "standard error does not match \"${STDERR_MATCH}\":\n${err}")
endif()
if(problems)
  message(FATAL_ERROR "${VERB} ${INPUT}:\n${problems}")
endif()
