#include "trace/record_types.h"

namespace kiv {

std::vector<record_definition> record_definitions(int address_width) {
  std::vector<record_definition> all;
  for (const record_type& type : record_types) {
    record_definition& made = all.emplace_back();
    made.tag = static_cast<char>(type.type);
    made.name = type.name;
    made.description = type.description;
    for_each_field(type.fields, [&](std::string_view name, char kind) {
      made.fields.push_back(
          {std::string(name), kind, kind == 's' ? 0 : (kind == 'p' ? address_width : 4)});
    });
  }
  return all;
}

}  // namespace kiv
