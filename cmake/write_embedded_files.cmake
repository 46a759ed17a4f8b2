# Run by embed_files: writes OUTPUT from the list FILES. Bytes stand in arrays, since compilers need
# not take string literals beyond 64 KiB.
set(arrays "")
set(entries "")
set(count 0)
foreach(file IN LISTS FILES)
  get_filename_component(stem ${file} NAME_WE)
  file(READ ${file} bytes HEX)
  string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${bytes}")
  string(APPEND arrays "constexpr char file_${count}[] = {${bytes}'\\0'};\n")
  string(APPEND entries "    {\"${stem}\", {file_${count}, sizeof file_${count} - 1}},\n")
  math(EXPR count "${count} + 1")
endforeach()
file(WRITE ${OUTPUT}
"// Generated from files of the source tree.
#include \"util/embedded_text.h\"

namespace kiv {
namespace {

${arrays}
constexpr embedded_text all[] = {
${entries}};

}  // namespace

std::span<const embedded_text> ${NAME}();

std::span<const embedded_text> ${NAME}() { return all; }

}  // namespace kiv
")
