#include "analysis/kiv_oip.h"

#include <fmt/format.h>

#include <iostream>

#include "analysis/kiv_object.h"
#include "analysis/kiv_object_db.h"
#include "reader/kiv_reader.h"

namespace kiv {

KivOip::KivOip(std::uint32_t object_id, kiv_reader* reader) {
  const KivObjectLoad* object = reader->objects().get_object(object_id);
  functions_.functions = &object->functions;
  globals_.functions = &object->globals;
}

void KivOip::fill_func_tables() {
  for (table* one : {&functions_, &globals_}) {
    one->size = one->functions->size();
    one->announcements = one->functions->announcements();
  }
  filled_ = true;
}

Func_rel* KivOip::find_function(std::int32_t number, bool global) {
  if (!filled_) fill_func_tables();
  table& wanted = global ? globals_ : functions_;
  const auto place = static_cast<std::uint32_t>(number);
  if (Func_rel* known = wanted.relations.find(place)) return known;
  if (number < 0) {
    std::cerr << fmt::format("ERROR find_function funnr <= 0 {}\n", number);
    return nullptr;
  }
  if (static_cast<std::size_t>(number) >= wanted.size) {
    std::cerr << fmt::format("ERROR find_function funnr {} not found\n", number);
    return nullptr;
  }
  const Func_loc* location = wanted.functions->find(number, wanted.announcements);
  return &wanted.relations.assign(place, std::make_unique<Func_rel>(location));
}

}  // namespace kiv
