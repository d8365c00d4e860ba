# `lectorbell ocr` through the real binary on the rendered test pages (see pages/). The
# .expected files hold what the real recogniser reads and are reviewed by hand when they change.
#
# ocr_golden(<name> IMAGE <file in the rendered pages> [STATUS <n>] [STDERR_MATCH <regex>]
#            [NO_OUTPUT] COMMAND ocr <option>...)
function(ocr_golden name)
  cmake_parse_arguments(PARSE_ARGV 1 CASE "NO_OUTPUT" "IMAGE;STATUS;STDERR_MATCH" "COMMAND")
  # Empty values count as not given.
  set(extra STATUS "${CASE_STATUS}" STDERR_MATCH "${CASE_STDERR_MATCH}")
  if(NOT CASE_NO_OUTPUT)
    list(APPEND extra EXPECTED "${CMAKE_CURRENT_LIST_DIR}/golden/ocr-${name}.expected")
  endif()
  add_verb_check(cli.ocr-${name} VERB ${CASE_COMMAND}
                 INPUT "${CMAKE_BINARY_DIR}/test-pages/rendered/${CASE_IMAGE}" ${extra})
  set_tests_properties(cli.ocr-${name} PROPERTIES FIXTURES_REQUIRED test-pages)
endfunction()

ocr_golden(one-column IMAGE one-column@1x.png COMMAND ocr)
ocr_golden(two-columns IMAGE two-columns@2x.png COMMAND ocr --scale 2)
ocr_golden(table-fast IMAGE table@1x.png COMMAND ocr --fast)
ocr_golden(lists IMAGE lists@1x.png COMMAND ocr)
ocr_golden(at-word IMAGE two-columns@1x.png COMMAND ocr --at 600,135)
ocr_golden(at-margin-json IMAGE two-columns@1x.png COMMAND ocr --at 530,135 --json)
ocr_golden(at-navigation IMAGE sidebar@1x.png COMMAND ocr --at 60,110)
ocr_golden(whole-page-json IMAGE table@1x.png COMMAND ocr --json)
ocr_golden(between-columns IMAGE two-columns@1x.png STATUS 3 COMMAND ocr --at 494,112 --json)
ocr_golden(selection IMAGE selection@2x.png COMMAND ocr --scale 2 --selection)
ocr_golden(no-selection IMAGE one-column@1x.png STATUS 4 COMMAND ocr --selection)
ocr_golden(blank IMAGE blank.png STATUS 3 COMMAND ocr --json)
ocr_golden(blank-text IMAGE blank.png STATUS 3 NO_OUTPUT STDERR_MATCH "No readable text found" COMMAND ocr)
ocr_golden(empty IMAGE empty.png STATUS 1 NO_OUTPUT STDERR_MATCH "is empty" COMMAND ocr)
ocr_golden(truncated IMAGE truncated.png STATUS 1 NO_OUTPUT STDERR_MATCH "not a readable image"
           COMMAND ocr)
ocr_golden(bad-point IMAGE one-column@1x.png STATUS 1 NO_OUTPUT STDERR_MATCH "--at takes"
           COMMAND ocr --at 12)
ocr_golden(two-columns-fast IMAGE two-columns@1x.png COMMAND ocr --fast)

# Without its language data the recogniser cannot start: the message names the package.
set(no_tessdata "${CMAKE_BINARY_DIR}/empty-tessdata")
file(MAKE_DIRECTORY "${no_tessdata}")
ocr_golden(no-language-data IMAGE one-column@1x.png STATUS 1 NO_OUTPUT
           STDERR_MATCH "Install tesseract-ocr-eng to read text on screen" COMMAND ocr)
ocr_golden(no-language-data-json IMAGE one-column@1x.png STATUS 1 COMMAND ocr --json --at 100,100)
set_tests_properties(cli.ocr-no-language-data cli.ocr-no-language-data-json
                     PROPERTIES ENVIRONMENT "TESSDATA_PREFIX=${no_tessdata}")
