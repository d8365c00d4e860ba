# Runs `lectorbell chunks` on a document and fails if any spoken text still holds markdown or
# HTML syntax: link and image brackets, tags, comments, fences, entities, escapes.
#   cmake -DEXE=<lectorbell> -DINPUT=<file> -P CheckSpokenMarkup.cmake
execute_process(COMMAND "${EXE}" chunks "${INPUT}"
                OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE status)
if(NOT status EQUAL 0)
  message(FATAL_ERROR "chunks ${INPUT}: exit status ${status}\n${err}")
endif()
# One list element per line: semicolons and square brackets, which would split or join list
# elements, are spelled out first (and in the marks).
string(REPLACE ";" "<semicolon>" out "${out}")
string(REPLACE "[" "<open>" out "${out}")
string(REPLACE "]" "<close>" out "${out}")
string(REPLACE "\n" ";" lines "${out}")
set(marks "<close>(" "<open>!" "!<open>" "<img" "<a " "</" "<br" "<!--" "-->" "```" "~~~" "&amp"
          "&nbsp" "&#" "\\\\<open>")
set(problems "")
set(count 0)
foreach(line IN LISTS lines)
  string(FIND "${line}" "\"spoken\": \"" at)
  if(at LESS 0)
    continue()
  endif()
  math(EXPR count "${count} + 1")
  string(SUBSTRING "${line}" ${at} -1 spoken)
  foreach(mark IN LISTS marks)
    string(FIND "${spoken}" "${mark}" found)
    if(found GREATER_EQUAL 0)
      string(APPEND problems "\"${mark}\" in ${spoken}\n")
    endif()
  endforeach()
endforeach()
if(count EQUAL 0)
  message(FATAL_ERROR "chunks ${INPUT}: nothing spoken")
endif()
if(problems)
  message(FATAL_ERROR "chunks ${INPUT} speaks markup:\n${problems}")
endif()
