# add_verb_check(<test name> VERB <verb>... INPUT <file> [STDIN] [EXPECTED <file>]
#                [STATUS <n>] [STDERR_MATCH <regex>])
# Registers one CheckVerb.cmake run of the real executable (see CheckVerb.cmake). An option
# given with an empty value counts as not given.
function(add_verb_check name)
  cmake_parse_arguments(PARSE_ARGV 1 CHECK "STDIN" "INPUT;EXPECTED;STATUS;STDERR_MATCH" "VERB")
  list(JOIN CHECK_VERB "$<SEMICOLON>" verb)
  set(status 0)
  if(DEFINED CHECK_STATUS)
    set(status ${CHECK_STATUS})
  endif()
  set(extra "")
  if(DEFINED CHECK_STDERR_MATCH)
    list(APPEND extra "-DSTDERR_MATCH=${CHECK_STDERR_MATCH}")
  endif()
  if(DEFINED CHECK_EXPECTED)
    list(APPEND extra "-DEXPECTED=${CHECK_EXPECTED}")
  endif()
  add_test(NAME ${name}
           COMMAND ${CMAKE_COMMAND} -DEXE=$<TARGET_FILE:lectorbell> "-DVERB=${verb}"
                   "-DINPUT=${CHECK_INPUT}" -DSTDIN=${CHECK_STDIN} -DSTATUS=${status} ${extra}
                   -P ${CMAKE_CURRENT_FUNCTION_LIST_DIR}/CheckVerb.cmake)
endfunction()
