# Black-box checks of `lectorbell gesture`: every gesture of the default and instant modes,
# with the boundary times, and the script's error handling.
#
# gesture_case(<name> [STDIN] [STATUS <n>] [STDERR_MATCH <regex>] EVENTS <line>... [EXPECT <line>...])
function(gesture_case name)
  cmake_parse_arguments(PARSE_ARGV 1 CASE "STDIN" "STATUS;STDERR_MATCH" "EVENTS;EXPECT")
  set(dir "${CMAKE_CURRENT_BINARY_DIR}/gesture")
  list(JOIN CASE_EVENTS "\n" events)
  file(WRITE "${dir}/${name}.events" "${events}\n")
  set(expected "")
  if(CASE_EXPECT)
    list(JOIN CASE_EXPECT "\n" expected)
    string(APPEND expected "\n")
  endif()
  file(WRITE "${dir}/${name}.expected" "${expected}")
  # Empty values count as not given.
  set(extra STATUS "${CASE_STATUS}" STDERR_MATCH "${CASE_STDERR_MATCH}")
  if(CASE_STDIN)
    list(APPEND extra STDIN)
  endif()
  add_verb_check(cli.gesture.${name} VERB gesture INPUT "${dir}/${name}.events"
                 EXPECTED "${dir}/${name}.expected" ${extra})
endfunction()

# Default mode: speech waits until the press has lasted 0.15 s.
gesture_case(hold
  EVENTS "down 0" "hold 0.15" "up 1.0"
  EXPECT "0 begin(gated: true)" "0.15 openGate" "1.0 stop")
gesture_case(holdTimerEarlyWithinTolerance
  EVENTS "down 0.00" "hold 0.149" "up 0.5"
  EXPECT "0.00 begin(gated: true)" "0.149 openGate" "0.5 stop")
gesture_case(holdTimerTooEarly
  EVENTS "down 0" "hold 0.14" "up 0.5"
  EXPECT "0 begin(gated: true)" "0.5 stop")
gesture_case(singleQuickTap
  EVENTS "down 0" "up 0.1" "hold 0.15"
  EXPECT "0 begin(gated: true)" "0.1 stop")
gesture_case(releaseAtThresholdIsHold
  EVENTS "down 0" "up 0.15" "down 0.30"
  EXPECT "0 begin(gated: true)" "0.15 stop" "0.30 begin(gated: true)")
gesture_case(doubleTapThenTapWhileLatched
  EVENTS "down 0" "up 0.1" "down 0.2" "hold 0.35" "up 0.3" "down 1" "hold 1.15" "up 1.1"
         "down 2"
  EXPECT "0 begin(gated: true)" "0.1 stop" "0.2 begin(gated: false)" "1 stop"
         "2 begin(gated: true)")
gesture_case(gapEqualToWindowIsDoubleTap
  EVENTS "down 0" "up 0.1" "down 0.45" "up 0.5"
  EXPECT "0 begin(gated: true)" "0.1 stop" "0.45 begin(gated: false)")
gesture_case(gapOf036IsNewPress
  EVENTS "down 0" "up 0.1" "down 0.46" "up 0.5"
  EXPECT "0 begin(gated: true)" "0.1 stop" "0.46 begin(gated: true)" "0.5 stop")
gesture_case(autoRepeatKeepsPressTime
  EVENTS "down 0" "down 0.1" "down 0.15" "up 0.2" "down 0.3"
  EXPECT "0 begin(gated: true)" "0.2 stop" "0.3 begin(gated: true)")
gesture_case(releaseWithoutPress
  EVENTS "up 0.5" "hold 0.6" "window 0.7")
gesture_case(quickThirdTap
  EVENTS "triple" "down 0" "up 0.1" "down 0.2" "up 0.3" "down 0.5" "up 0.6" "down 1"
  EXPECT "0 begin(gated: true)" "0.1 stop" "0.2 begin(gated: false)" "0.5 tripleTap"
         "1 begin(gated: true)")
gesture_case(slowThirdTap
  EVENTS "triple" "down 0" "up 0.1" "down 0.2" "up 0.3" "down 0.7"
  EXPECT "0 begin(gated: true)" "0.1 stop" "0.2 begin(gated: false)" "0.7 stop")
gesture_case(thirdTapWithoutTriple
  EVENTS "down 0" "up 0.1" "down 0.2" "up 0.3" "down 0.5"
  EXPECT "0 begin(gated: true)" "0.1 stop" "0.2 begin(gated: false)" "0.5 stop")

# Instant mode: speech starts at the press.
gesture_case(instantHold
  EVENTS "instant" "down 0" "up 0.3"
  EXPECT "0 begin(gated: false)" "0.3 stop")
gesture_case(instantQuickTap
  EVENTS "instant" "down 0" "up 0.29" "window 0.64" "window 0.7"
  EXPECT "0 begin(gated: false)" "0.29 holdForSecondTap" "0.64 stop")
gesture_case(instantWindowTimerEarly
  EVENTS "instant" "down 0" "up 0.1" "window 0.44" "window 0.446"
  EXPECT "0 begin(gated: false)" "0.1 holdForSecondTap" "0.446 stop")
gesture_case(instantDoubleTapThenTapWhileLatched
  EVENTS "instant" "down 0" "up 0.1" "down 0.45" "window 0.45" "up 0.5" "down 1" "up 1.1"
         "down 2"
  EXPECT "0 begin(gated: false)" "0.1 holdForSecondTap" "0.45 continueLatched" "1 stop"
         "2 begin(gated: false)")
gesture_case(instantGapOf036
  EVENTS "instant" "down 0" "up 0.1" "down 0.46" "window 0.46" "up 1"
  EXPECT "0 begin(gated: false)" "0.1 holdForSecondTap" "0.46 begin(gated: false)" "1 stop")
gesture_case(instantQuickThirdTap
  EVENTS "triple" "instant" "down 0" "up 0.1" "down 0.2" "up 0.3" "down 0.6" "up 0.7"
  EXPECT "0 begin(gated: false)" "0.1 holdForSecondTap" "0.2 continueLatched" "0.6 tripleTap")

# The script itself.
gesture_case(plusSignIsNotATime STDIN
  EVENTS "down 0" "" "up +1"
  STATUS 2 STDERR_MATCH "line 3: \"[+]1\" is not a time in seconds")
gesture_case(timesKeepTheirText STDIN
  EVENTS "" "# a hold, written oddly" "  down\t1e-1  " "hold 0.250 # timer" "" "up 1.500"
  EXPECT "1e-1 begin(gated: true)" "0.250 openGate" "1.500 stop")
gesture_case(optionAfterEvent
  EVENTS "down 0" "instant" "up 1"
  STATUS 2 STDERR_MATCH "line 2: \"instant\" must come before the first event")
gesture_case(unknownLine
  EVENTS "down 0" "press 1" "up" "up 1 2" "up nan"
  STATUS 2 STDERR_MATCH "line 2: .*\n.*line 3: .*\n.*line 4: .*\n.*line 5: ")

add_test(NAME cli.gesture.unreadableFile COMMAND lectorbell gesture no-such-file.events)
set_tests_properties(cli.gesture.unreadableFile PROPERTIES WILL_FAIL TRUE)
