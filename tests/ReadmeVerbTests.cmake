# Project READMEs as people keep them (badge rows, HTML headers, reference links, code blocks,
# tables) read through the real binary: no markup is spoken, and one is checked word for word.
foreach(name IN ITEMS driftwood parcel tessel)
  add_test(NAME cli.chunks-readme-${name}
           COMMAND ${CMAKE_COMMAND} -DEXE=$<TARGET_FILE:lectorbell>
                   "-DINPUT=${CMAKE_CURRENT_LIST_DIR}/readmes/${name}.md"
                   -P ${CMAKE_CURRENT_LIST_DIR}/CheckSpokenMarkup.cmake)
endforeach()
add_verb_check(cli.chunks-readme VERB chunks INPUT "${CMAKE_CURRENT_LIST_DIR}/readmes/driftwood.md"
               EXPECTED "${CMAKE_CURRENT_LIST_DIR}/golden/chunks-readme.expected")
verb_golden(shape-markdown INPUT shape-markdown COMMAND shape)
