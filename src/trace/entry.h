#pragma once

#include <string>
#include <vector>

#include "trace/element.h"

namespace kiv {

// One field of a record type.
struct elem {
  std::string name;
  int size = 0;  // bytes, as the header gives them; may be negative
};

// The layout of one record type.
class entry final : public element {
 public:
  explicit entry(el_stack& stack) : element("entry", stack) {}

  void set_attrs(const char** attrs);
  void startElement(const char* tag, const char** attrs) override;
  void endElement(const char* tag) override;

  int tag() const { return tag_; }  // the record's tag byte as a signed char
  const std::string& name() const { return name_; }
  const std::string& desc() const { return desc_; }
  const std::string& format() const { return format_; }
  const std::vector<elem>& elems() const { return elems_; }

 private:
  int tag_ = 0;
  std::string name_;
  std::string desc_;
  std::string format_;
  std::vector<elem> elems_;
};

// One data file of the trace.
class kivfile final : public element {
 public:
  explicit kivfile(el_stack& stack) : element("kivfile", stack) {}

  void startElement(const char* tag, const char** attrs) override;
  void endElement(const char* tag) override;

  const std::string& file() const { return file_; }   // path, relative to the working directory
  int size() const { return size_ < 0 ? 0 : size_; }  // bytes the writer recorded

 private:
  std::string file_;
  int size_ = 0;
};

}  // namespace kiv
