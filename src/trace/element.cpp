#include "trace/element.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "trace/diagnostics.h"

namespace kiv {

void el_stack::push(element* el) {
  elements_.push_back(el);
  if (diagnostics_.tells_progress()) diagnostics_.element_pushed(el->class_name());
}

void el_stack::pop(const element* el) {
  if (!elements_.empty()) elements_.pop_back();
  if (diagnostics_.tells_progress()) diagnostics_.element_popped(el->class_name());
}

const char* attr_value(const char** attrs, int index) {
  for (; attrs[0]; attrs += 2, --index) {
    if (index == 0) return attrs[1];
  }
  return nullptr;
}

void read_attr(const char** attrs, int index, int& target) {
  const char* value = attr_value(attrs, index);
  if (!value) return;
  const long long number = std::strtoll(value, nullptr, 10);
  target = static_cast<int>(std::clamp<long long>(number, std::numeric_limits<int>::min(),
                                                  std::numeric_limits<int>::max()));
}

void read_attr(const char** attrs, int index, std::string& target) {
  if (const char* value = attr_value(attrs, index)) target = value;
}

}  // namespace kiv
