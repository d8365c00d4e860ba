# Real speech played to a private PulseAudio null sink and recorded from its monitor.
add_executable(AudioPlaybackTests AudioPlaybackTests.cpp)
target_link_libraries(AudioPlaybackTests
  PRIVATE LectorbellSpeech LectorbellPlatformLinux GTest::gtest Qt6::Core
)
target_include_directories(AudioPlaybackTests PRIVATE ${PROJECT_SOURCE_DIR}/tests/support)
add_test(NAME audio.nullSinkPlayback
  COMMAND ${PROJECT_SOURCE_DIR}/scripts/with-null-sink $<TARGET_FILE:AudioPlaybackTests>
          --gtest_filter=AudioPlayback.TwoQueuedChunks*)
add_test(NAME audio.noSoundServer
  COMMAND AudioPlaybackTests --gtest_filter=AudioPlayback.NoSoundServer*)
set_tests_properties(audio.nullSinkPlayback PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 60)
set_tests_properties(audio.noSoundServer PROPERTIES TIMEOUT 30
  ENVIRONMENT "PULSE_SERVER=unix:/nonexistent/lectorbell/native;LECTORBELL_EXPECT_NO_AUDIO=1")

# The speech verbs through the real binary. WAV output and the error paths need no sound server;
# playing to a device runs under the private PulseAudio.
function(speech_verb name)
  cmake_parse_arguments(PARSE_ARGV 1 CASE "" "STATUS;STDOUT_MATCH;STDERR_MATCH;WAV;MIN_WAV_BYTES"
                        "COMMAND")
  list(JOIN CASE_COMMAND "$<SEMICOLON>" verb)
  set(args "-DCOMMAND=$<TARGET_FILE:lectorbell>$<SEMICOLON>${verb}")
  foreach(key STATUS STDOUT_MATCH STDERR_MATCH WAV MIN_WAV_BYTES)
    if(DEFINED CASE_${key})
      list(APPEND args "-D${key}=${CASE_${key}}")
    endif()
  endforeach()
  add_test(NAME cli.${name} COMMAND ${CMAKE_COMMAND} ${args}
                                    -P ${CMAKE_CURRENT_LIST_DIR}/CheckSpeechVerb.cmake)
endfunction()

set(speech_inputs ${CMAKE_CURRENT_LIST_DIR}/speech)
set(golden_inputs ${CMAKE_CURRENT_LIST_DIR}/golden)
set(wav ${CMAKE_CURRENT_BINARY_DIR}/read.wav)
# About 4 s of 16-bit speech at 22,050 Hz.
speech_verb(read-wav COMMAND read --verbose --wav ${wav} ${speech_inputs}/read-short.txt
  STDOUT_MATCH "state: preparing.*state: speaking.*chunk 0: \"Hello there.\".*chunk 2: .*state: completed \\(Finished available document\\)\nlistened: 13 words"
  WAV ${wav} MIN_WAV_BYTES 100000)
speech_verb(read-wav-fast COMMAND read --pace maximum --wav ${wav}-fast ${speech_inputs}/read-short.txt
  STDOUT_MATCH "state: completed" WAV ${wav}-fast MIN_WAV_BYTES 50000)
speech_verb(read-empty COMMAND read --wav ${wav}-empty ${golden_inputs}/chunks-empty.txt
  STATUS 3 STDERR_MATCH "No readable text near cursor")
speech_verb(read-invalid COMMAND read --wav ${wav}-invalid ${golden_inputs}/chunks-invalid.txt
  STDOUT_MATCH "state: completed" STDERR_MATCH "not valid UTF-8")
speech_verb(read-unknown-voice
  COMMAND read --voice no/such-voice --wav ${wav}-voice ${speech_inputs}/read-short.txt
  STDOUT_MATCH "state: completed" STDERR_MATCH "unknown voice, the default voice speaks")
speech_verb(read-bad-pace COMMAND read --pace warp ${speech_inputs}/read-short.txt STATUS 2)
speech_verb(read-no-device COMMAND read ${speech_inputs}/read-short.txt
  STATUS 5 STDERR_MATCH "No audio output device")
set_tests_properties(cli.read-no-device PROPERTIES
  ENVIRONMENT "PULSE_SERVER=unix:/nonexistent/lectorbell/native")
speech_verb(voices COMMAND voices
  STDOUT_MATCH "^gmw/en-US\tEnglish \\(America\\)\ten-US\tAmerican\tDefault\tdefault\n")
set_tests_properties(cli.voices PROPERTIES ENVIRONMENT "LANG=C.UTF-8;LANGUAGE=;LC_ALL=")
speech_verb(voices-json COMMAND voices --json
  STDOUT_MATCH "{\"id\": \"gmw/en-GB-x-rp\", \"name\": \"English \\(Received Pronunciation\\)\", \"language\": \"en-GB-x-rp\", \"accent\": \"United Kingdom\", \"quality\": \"Default\", \"default\": false}")
speech_verb(pace COMMAND pace
  STDOUT_MATCH "slow +rate 0.30 +[0-9]+ words per minute\nnormal +rate 0.50 +[0-9]+ words per minute\n.*maximum +rate 0.72")

# Reading aloud to a device, and Ctrl-C in the middle of a reading.
add_test(NAME cli.read-device
  COMMAND ${PROJECT_SOURCE_DIR}/scripts/with-null-sink ${CMAKE_COMMAND}
          "-DCOMMAND=$<TARGET_FILE:lectorbell>$<SEMICOLON>read$<SEMICOLON>--pace$<SEMICOLON>maximum$<SEMICOLON>${speech_inputs}/read-short.txt"
          "-DSTDOUT_MATCH=state: speaking.*state: completed"
          -P ${CMAKE_CURRENT_LIST_DIR}/CheckSpeechVerb.cmake)
add_test(NAME cli.read-interrupted
  COMMAND ${PROJECT_SOURCE_DIR}/scripts/with-null-sink ${speech_inputs}/interrupt-read.sh
          $<TARGET_FILE:lectorbell> ${PROJECT_SOURCE_DIR}/README.md)
set_tests_properties(cli.read-device cli.read-interrupted PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 60)
set_tests_properties(cli.read-interrupted PROPERTIES
  PASS_REGULAR_EXPRESSION "state: stopped \\(Stopped\\)\nlistened: [0-9]+ words in [0-9.]+ s\nexit 130")
