#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kiv {

// Base of the header model: an XML element that receives the parse events while it is on top of
// el_stack. What a class does not override is ignored. Attributes are expat's array of names and
// values, ended by a null name.
class element {
 public:
  explicit element(std::string_view name) : element_name_(name) {}
  // Takes the element off el_stack if a document that broke off has left it there.
  virtual ~element();
  element(const element&) = delete;
  element& operator=(const element&) = delete;

  virtual void set_attrs(const char* tag, const char** attrs);
  virtual void startElement(const char* tag, const char** attrs);
  virtual void endElement(const char* tag);
  virtual void dataElement(const char* text, int len);

  // Shown by the debug lines of the stack.
  virtual const char* class_name() const { return "element"; }
  const std::string& element_name() const { return element_name_; }

 private:
  std::string element_name_;
};

// The elements whose end tags are still to come, innermost last. Looks only: the header model owns
// its elements.
extern std::vector<element*> el_stack;

void EL_STACK_PUSH(element* el);
// Takes the top off; `el` names it in the debug line.
void EL_STACK_POP(element* el);

// Value of attribute number `index`, counted from 0 in document order; null when there are fewer.
const char* attr_value(const char** attrs, int index);
// The same, read as a decimal number or text into `target`, which a missing value leaves alone.
// A number beyond the range of int becomes its nearest end, text without digits 0.
void read_attr(const char** attrs, int index, int& target);
void read_attr(const char** attrs, int index, std::string& target);

}  // namespace kiv
