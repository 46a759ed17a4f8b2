#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kiv {

class diagnostics;
class element;

// The elements of a document whose end tags are still to come, innermost last. Looks only: the
// header model owns its elements.
class el_stack {
 public:
  explicit el_stack(diagnostics& progress) : diagnostics_(progress) {}
  el_stack(const el_stack&) = delete;
  el_stack& operator=(const el_stack&) = delete;

  void push(element* el);
  // Takes the top off; `el` is the one that asks for it.
  void pop(const element* el);
  // Takes an element off wherever it stands.
  void remove(const element* el) { std::erase(elements_, el); }
  element* top() const {
    return elements_.empty() ? nullptr : elements_.back();
  }  // null when empty
  bool empty() const { return elements_.empty(); }

  diagnostics& faults() const { return diagnostics_; }

 private:
  diagnostics& diagnostics_;
  std::vector<element*> elements_;
};

// Base of the header model: an XML element that receives the parse events while it is on top of
// its stack. What a class does not override is ignored. Attributes are expat's array of names and
// values, ended by a null name.
class element {
 public:
  // `name`: of the tag, also what the debug lines call the class. Stands on top of the stack from
  // now on.
  element(const char* name, el_stack& stack) : name_(name), stack_(stack) { stack_.push(this); }
  // Takes the element off the stack if a document that broke off has left it there.
  virtual ~element() { stack_.remove(this); }
  element(const element&) = delete;
  element& operator=(const element&) = delete;

  virtual void startElement(const char* tag, const char** attrs) = 0;
  virtual void endElement(const char* tag) = 0;

  const char* class_name() const { return name_; }

 protected:
  el_stack& stack() const { return stack_; }
  diagnostics& faults() const { return stack_.faults(); }

 private:
  const char* name_;
  el_stack& stack_;
};

// Value of attribute number `index`, counted from 0 in document order; null when there are fewer.
const char* attr_value(const char** attrs, int index);
// The same, read as a decimal number or text into `target`, which a missing value leaves alone.
// A number beyond the range of int becomes its nearest end, text without digits 0.
void read_attr(const char** attrs, int index, int& target);
void read_attr(const char** attrs, int index, std::string& target);

}  // namespace kiv
