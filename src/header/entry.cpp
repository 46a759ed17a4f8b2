#include "header/entry.h"

#include <iostream>
#include <string_view>

#include "settings.h"

namespace kiv {

void elem::set_attrs(const char* /*tag*/, const char** attrs) {
  read_attr(attrs, 0, name_);
  read_attr(attrs, 1, size_);
}

entry::entry() : element("entry") { EL_STACK_PUSH(this); }

void entry::set_attrs(const char* /*tag*/, const char** attrs) {
  if (const char* value = attr_value(attrs, 0)) tag_ = static_cast<signed char>(value[0]);
  read_attr(attrs, 1, name_);
  read_attr(attrs, 2, desc_);
}

void entry::startElement(const char* tag, const char** attrs) {
  const std::string_view which = tag;
  if (which == "elem") {
    elems_.push_back(std::make_unique<elem>());
    elems_.back()->set_attrs(tag, attrs);
  } else if (which == "format") {
    read_attr(attrs, 0, format_);
  } else if (debug_level > 0) {
    std::cerr << "entry::startElemen: >>>>> Unknown tag '" << tag << "' \n";
  }
}

void entry::endElement(const char* tag) {
  if (std::string_view(tag) == "entry") EL_STACK_POP(this);
}

kivfile::kivfile() : element("kivfile") { EL_STACK_PUSH(this); }

void kivfile::set_attrs(const char* tag, const char** attrs) {
  const std::string_view which = tag;
  if (which == "file") {
    read_attr(attrs, 0, file_);
  } else if (which == "size") {
    read_attr(attrs, 0, size_);
  } else if (debug_level > 0) {
    std::cerr << "kivfile::set_attrs >>>>>>>>>> Unknown tag '" << tag << "' \n";
  }
}

void kivfile::startElement(const char* tag, const char** attrs) { set_attrs(tag, attrs); }

void kivfile::endElement(const char* tag) {
  if (std::string_view(tag) == "kivfile") EL_STACK_POP(this);
}

}  // namespace kiv
