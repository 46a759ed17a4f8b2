# Run by embed_sql: writes OUTPUT from the list FILES.
set(entries "")
foreach(file IN LISTS FILES)
  get_filename_component(stem ${file} NAME_WE)
  file(READ ${file} text)
  string(APPEND entries "    {\"${stem}\", R\"embedded_sql(${text})embedded_sql\"},\n")
endforeach()
file(WRITE ${OUTPUT}
"// Generated from SQL files.
#include \"util/embedded_text.h\"

namespace kiv {

std::span<const embedded_text> ${NAME}();

std::span<const embedded_text> ${NAME}() {
  static constexpr embedded_text all[] = {
${entries}  };
  return all;
}

}  // namespace kiv
")
