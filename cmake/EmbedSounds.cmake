# Writes a C++ source holding the shipped sounds' bytes, so the executable carries them and
# playing one reads no file. Run in script mode:
#   cmake -DSOURCE_DIR=<data/sounds> -DOUTPUT=<file.cpp> -P EmbedSounds.cmake
set(body "")
foreach(name tink pop)
  file(READ "${SOURCE_DIR}/${name}.wav" hex HEX)
  string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
  string(REGEX REPLACE "(0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,0x..,)" "\\1\n"
         bytes "${bytes}")
  string(APPEND body "constexpr std::uint8_t ${name}[] = {\n${bytes}\n};\n")
endforeach()
file(WRITE "${OUTPUT}.new" "// Generated from data/sounds by cmake/EmbedSounds.cmake.
#include \"platform/linux/sound/ShippedSounds.hpp\"

namespace lectorbell::platform::sound {

namespace {
${body}} // namespace

std::span<const std::uint8_t> shippedSoundFile(SystemSound sound) {
    return sound == SystemSound::tink ? std::span<const std::uint8_t>{tink}
                                      : std::span<const std::uint8_t>{pop};
}

} // namespace lectorbell::platform::sound
")
# Only a changed file is replaced, so an unchanged sound rebuilds nothing.
file(COPY_FILE "${OUTPUT}.new" "${OUTPUT}" ONLY_IF_DIFFERENT)
file(REMOVE "${OUTPUT}.new")
