# `lectorbell no-such-verb` must name the verb it does not know and exit with the usage status.
execute_process(COMMAND "${EXECUTABLE}" no-such-verb
                OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE status)
if(NOT status EQUAL 2)
  message(FATAL_ERROR "exit status ${status}, expected 2")
endif()
if(NOT err MATCHES "not expected: no-such-verb")
  message(FATAL_ERROR "standard error does not name the unknown verb:\n${err}")
endif()
