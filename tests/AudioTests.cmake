# Real speech played to a private PulseAudio null sink and recorded from its monitor.
add_executable(AudioPlaybackTests AudioPlaybackTests.cpp)
target_link_libraries(AudioPlaybackTests
  PRIVATE LectorbellSpeech LectorbellPlatformLinux GTest::gtest Qt6::Core
)
target_include_directories(AudioPlaybackTests PRIVATE ${PROJECT_SOURCE_DIR}/tests/support)
add_test(NAME audio.nullSinkPlayback
  COMMAND ${PROJECT_SOURCE_DIR}/scripts/with-null-sink $<TARGET_FILE:AudioPlaybackTests>
          --gtest_filter=AudioPlayback.TwoQueuedChunks*)
add_test(NAME audio.deviceLost
  COMMAND ${PROJECT_SOURCE_DIR}/scripts/with-null-sink $<TARGET_FILE:AudioPlaybackTests>
          --gtest_filter=AudioPlayback.ALostDevice*)
add_test(NAME audio.noSoundServer
  COMMAND AudioPlaybackTests --gtest_filter=AudioPlayback.NoSoundServer*)
set_tests_properties(audio.nullSinkPlayback audio.deviceLost PROPERTIES
  SKIP_RETURN_CODE 77 TIMEOUT 60)
set_tests_properties(audio.noSoundServer PROPERTIES TIMEOUT 30
  ENVIRONMENT "PULSE_SERVER=unix:/nonexistent/lectorbell/native;LECTORBELL_EXPECT_NO_AUDIO=1")

# The speech verbs through the real binary. WAV output and the error paths need no sound server;
# playing to a device runs under the private PulseAudio.
# PREFIX runs the executable through another command.
function(speech_verb name)
  cmake_parse_arguments(PARSE_ARGV 1 CASE "" "STATUS;STDOUT_MATCH;STDERR_MATCH;WAV;MIN_WAV_BYTES"
                        "COMMAND;PREFIX")
  list(JOIN CASE_COMMAND "$<SEMICOLON>" verb)
  list(JOIN CASE_PREFIX "$<SEMICOLON>" prefix)
  if(prefix)
    string(APPEND prefix "$<SEMICOLON>")
  endif()
  set(args "-DCOMMAND=${prefix}$<TARGET_FILE:lectorbell>$<SEMICOLON>${verb}")
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
# A disk with no room at all, and one that fills up part-way through the reading.
speech_verb(read-wav-no-room COMMAND read --wav /dev/full ${speech_inputs}/read-short.txt
  STATUS 1 STDOUT_MATCH "^$" STDERR_MATCH "^lectorbell: cannot write /dev/full: No space left on device\n$")
speech_verb(read-wav-disk-fills
  PREFIX ${speech_inputs}/with-file-size-limit.sh 64
  COMMAND read --wav ${wav}-full ${PROJECT_SOURCE_DIR}/README.md
  STATUS 1
  STDOUT_MATCH "state: speaking \\(Reading\\)\nstate: failed \\(No audio output device\\)\nlistened: [0-9]+ words in [0-9.]+ s\n$"
  STDERR_MATCH "lectorbell: cannot write [^\n]*read.wav-full: File too large\n$"
  WAV ${wav}-full MIN_WAV_BYTES 20000)
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

# The sound server dies in the middle of a reading: it fails, and counts only the words heard
# (a handful, of the hundreds in the file).
add_test(NAME cli.read-device-lost
  COMMAND ${PROJECT_SOURCE_DIR}/scripts/with-null-sink ${speech_inputs}/lose-device-read.sh
          $<TARGET_FILE:lectorbell> ${PROJECT_SOURCE_DIR}/README.md)
set_tests_properties(cli.read-device-lost PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 60
  PASS_REGULAR_EXPRESSION "state: failed \\(No audio output device\\)\nlistened: [0-9][0-9]? words in [0-9.]+ s\nlectorbell: No audio output device\nexit 5\n")

# A voice that espeak-ng lists but cannot load fails the reading instead of reading silence.
find_package(PkgConfig REQUIRED)
pkg_get_variable(espeak_libdir espeak-ng libdir)
find_path(LECTORBELL_ESPEAK_NG_DATA phontab
  PATHS ${espeak_libdir}/espeak-ng-data /usr/share/espeak-ng-data /usr/local/share/espeak-ng-data
  NO_DEFAULT_PATH)
add_test(NAME cli.read-voice-unloadable
  COMMAND ${speech_inputs}/unloadable-voice-read.sh $<TARGET_FILE:lectorbell>
          ${LECTORBELL_ESPEAK_NG_DATA} ${speech_inputs}/read-short.txt)
set_tests_properties(cli.read-voice-unloadable PROPERTIES TIMEOUT 60
  PASS_REGULAR_EXPRESSION "state: failed \\(Selected voice is unavailable\\)\nlistened: 0 words in 0.0 s\nlectorbell: Selected voice is unavailable\nexit 4\n")
