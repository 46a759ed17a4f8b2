#include "replay/kiv_oip.h"

#include "replay/kiv_object.h"
#include "trace/diagnostics.h"

namespace kiv {

KivOip::KivOip(const KivObject& object) {
  functions_.functions = &object.functions;
  globals_.functions = &object.globals;
}

void KivOip::fill_func_tables() {
  for (table* one : {&functions_, &globals_}) {
    one->size = one->functions->size();
    one->announcements = one->functions->announcements();
  }
  filled_ = true;
}

std::uint32_t KivOip::add_function(table& wanted, std::int32_t number, function_list& all,
                                   diagnostics& faults) {
  if (!filled_) fill_func_tables();
  if (number < 0) {
    faults.function_number_negative(number);
    return 0;
  }
  if (static_cast<std::size_t>(number) >= wanted.size) {
    faults.function_number_unknown(number);
    return 0;
  }
  const Func_loc* location = wanted.functions->find(number, wanted.announcements);
  return wanted.relations.assign(static_cast<std::uint32_t>(number), {all.add(location)});
}

}  // namespace kiv
