#include "trace/entry.h"

#include <string_view>

#include "trace/diagnostics.h"

namespace kiv {

void entry::set_attrs(const char** attrs) {
  if (const char* value = attr_value(attrs, 0)) tag_ = static_cast<signed char>(value[0]);
  read_attr(attrs, 1, name_);
  read_attr(attrs, 2, desc_);
}

void entry::startElement(const char* tag, const char** attrs) {
  const std::string_view which = tag;
  if (which == "elem") {
    elem& field = elems_.emplace_back();
    read_attr(attrs, 0, field.name);
    read_attr(attrs, 1, field.size);
  } else if (which == "format") {
    read_attr(attrs, 0, format_);
  } else if (faults().tells_progress()) {
    faults().unknown_tag_in_entry(tag);
  }
}

void entry::endElement(const char* tag) {
  if (std::string_view(tag) == "entry") stack().pop(this);
}

void kivfile::startElement(const char* tag, const char** attrs) {
  const std::string_view which = tag;
  if (which == "file") {
    read_attr(attrs, 0, file_);
  } else if (which == "size") {
    read_attr(attrs, 0, size_);
  } else if (faults().tells_progress()) {
    faults().unknown_tag_in_kivfile(tag);
  }
}

void kivfile::endElement(const char* tag) {
  if (std::string_view(tag) == "kivfile") stack().pop(this);
}

}  // namespace kiv
