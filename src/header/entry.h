#pragma once

#include <memory>
#include <string>
#include <vector>

#include "header/element.h"

namespace kiv {

// One field of a record type.
class elem final : public element {
 public:
  elem() : element("elem") {}

  void set_attrs(const char* tag, const char** attrs) override;
  const char* class_name() const override { return "elem"; }

  const std::string& name() const { return name_; }
  int size() const { return size_; }  // bytes, as the header gives them; may be negative

 private:
  std::string name_;
  int size_ = 0;
};

// The layout of one record type. Constructed on top of el_stack.
class entry final : public element {
 public:
  entry();

  void set_attrs(const char* tag, const char** attrs) override;
  void startElement(const char* tag, const char** attrs) override;
  void endElement(const char* tag) override;
  const char* class_name() const override { return "entry"; }

  int tag() const { return tag_; }  // the record's tag byte as a signed char
  const std::string& name() const { return name_; }
  const std::string& desc() const { return desc_; }
  const std::string& format() const { return format_; }
  const std::vector<std::unique_ptr<elem>>& elems() const { return elems_; }

 private:
  int tag_ = 0;
  std::string name_;
  std::string desc_;
  std::string format_;
  std::vector<std::unique_ptr<elem>> elems_;
};

// One data file of the trace. Constructed on top of el_stack.
class kivfile final : public element {
 public:
  kivfile();

  void set_attrs(const char* tag, const char** attrs) override;
  void startElement(const char* tag, const char** attrs) override;
  void endElement(const char* tag) override;
  const char* class_name() const override { return "kivfile"; }

  const std::string& file() const { return file_; }   // path, relative to the working directory
  int size() const { return size_ < 0 ? 0 : size_; }  // bytes the writer recorded

 private:
  std::string file_;
  int size_ = 0;
};

}  // namespace kiv
