# Golden-file checks of `lectorbell shape` through the real binary (verb_golden comes from
# SegmentationVerbTests.cmake). The .expected files are reviewed by hand when they change.
set(shape_rules "${CMAKE_CURRENT_LIST_DIR}/golden/shape-rules.json")
verb_golden(shape INPUT shape COMMAND shape)
verb_golden(shape-rules INPUT shape COMMAND shape --rules ${shape_rules})
verb_golden(shape-no-cleanup INPUT shape COMMAND shape --no-cleanup --rules ${shape_rules})
verb_golden(shape-crlf INPUT shape-crlf COMMAND shape)
verb_golden(shape-invalid INPUT shape-invalid STDERR_MATCH "not valid UTF-8" COMMAND shape)
verb_golden(shape-bad-rules INPUT shape STATUS 2 STDERR_MATCH "invalid rules file .*element 0"
            COMMAND shape --rules ${CMAKE_CURRENT_LIST_DIR}/golden/shape-bad-rules.json)
