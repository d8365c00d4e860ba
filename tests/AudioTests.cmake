# Real speech played to a private PulseAudio null sink and recorded from its monitor.
add_executable(AudioPlaybackTests AudioPlaybackTests.cpp)
target_link_libraries(AudioPlaybackTests
  PRIVATE LectorbellSpeech LectorbellPlatformLinux GTest::gtest Qt6::Core
)
add_test(NAME audio.nullSinkPlayback
  COMMAND ${PROJECT_SOURCE_DIR}/scripts/with-null-sink $<TARGET_FILE:AudioPlaybackTests>
          --gtest_filter=AudioPlayback.TwoQueuedChunks*)
add_test(NAME audio.noSoundServer
  COMMAND AudioPlaybackTests --gtest_filter=AudioPlayback.NoSoundServer*)
set_tests_properties(audio.nullSinkPlayback PROPERTIES SKIP_RETURN_CODE 77 TIMEOUT 60)
set_tests_properties(audio.noSoundServer PROPERTIES TIMEOUT 30
  ENVIRONMENT "PULSE_SERVER=unix:/nonexistent/lectorbell/native;LECTORBELL_EXPECT_NO_AUDIO=1")
