# Golden-file checks of `lectorbell chunks` and `lectorbell sentences` through the real binary.
# The .expected files are reviewed by hand when they change.
#
# verb_golden(<name> INPUT <file> [STATUS <n>] [STDERR_MATCH <regex>] COMMAND <verb> <arg>...)
function(verb_golden name)
  cmake_parse_arguments(PARSE_ARGV 1 CASE "" "INPUT;STATUS;STDERR_MATCH" "COMMAND")
  set(golden "${CMAKE_CURRENT_LIST_DIR}/golden")
  # Empty values count as not given.
  set(extra STATUS "${CASE_STATUS}" STDERR_MATCH "${CASE_STDERR_MATCH}")
  add_verb_check(cli.${name} VERB ${CASE_COMMAND} INPUT "${golden}/${CASE_INPUT}.txt"
                 EXPECTED "${golden}/${name}.expected" ${extra})
endfunction()

verb_golden(chunks-markup INPUT chunks-markup COMMAND chunks)
verb_golden(chunks-blocks INPUT chunks-blocks COMMAND chunks --blocks)
verb_golden(chunks-long INPUT chunks-long COMMAND chunks --max 60)
verb_golden(chunks-lead INPUT chunks-long COMMAND chunks --max 200 --lead 50)
verb_golden(chunks-empty INPUT chunks-empty STATUS 3 COMMAND chunks)
verb_golden(chunks-invalid INPUT chunks-invalid STDERR_MATCH "not valid UTF-8" COMMAND chunks)
verb_golden(sentences INPUT sentences COMMAND sentences)
verb_golden(sentences-ends INPUT sentence-ends COMMAND sentences)
verb_golden(chunks-ends INPUT sentence-ends COMMAND chunks)
