#include "header/element.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <limits>

#include "settings.h"

namespace kiv {

std::vector<element*> el_stack;

element::~element() { std::erase(el_stack, this); }

void element::set_attrs(const char* /*tag*/, const char** /*attrs*/) {}
void element::startElement(const char* /*tag*/, const char** /*attrs*/) {}
void element::endElement(const char* /*tag*/) {}
void element::dataElement(const char* /*text*/, int /*len*/) {}

void EL_STACK_PUSH(element* el) {
  el_stack.push_back(el);
  if (debug_level > 0) std::cerr << "\t\tpush " << el->class_name() << '\n';
}

void EL_STACK_POP(element* el) {
  if (!el_stack.empty()) el_stack.pop_back();
  if (debug_level > 0) std::cerr << "\t\tpop  " << el->class_name() << '\n';
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
