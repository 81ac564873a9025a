# Writes a C++ source that holds the bytes of a file: cmake -DINPUT=... -DOUTPUT=... -P embed.cmake
file(READ ${INPUT} bytes HEX)
string(REGEX REPLACE "(................................)" "\\1\n" bytes "${bytes}")
string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1, " bytes "${bytes}")
file(WRITE ${OUTPUT}.new "#include \"tools/kesu-dev/collector/WebPage.h\"

namespace kesu::dev {
namespace {

constexpr unsigned char kBytes[] = {
${bytes}
};

}  // namespace

std::string_view webPage() {
  return {reinterpret_cast<const char*>(kBytes), sizeof kBytes};
}

}  // namespace kesu::dev
")
file(RENAME ${OUTPUT}.new ${OUTPUT})
