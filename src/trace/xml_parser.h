#pragma once

#include <expat.h>

#include <memory>
#include <string_view>
#include <type_traits>

#include "trace/element.h"

namespace kiv {

// Owns an expat parser and the stack of elements that it feeds: each start and end tag goes to the
// element on top, or nowhere when the stack is empty.
class XmlParser {
 public:
  explicit XmlParser(diagnostics& progress);

  el_stack& elements() { return elements_; }

  // Goes on with a further part of the document. False when it is not well-formed.
  bool parse(std::string_view part);
  // What was wrong, and where.
  const char* error() const { return XML_ErrorString(XML_GetErrorCode(parser_.get())); }
  std::uint64_t line() const { return XML_GetCurrentLineNumber(parser_.get()); }

 private:
  struct free_parser {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
  };

  static void startElement(void* parser, const char* name, const char** attrs);
  static void endElement(void* parser, const char* name);
  static void dataElement(void* parser, const char* text, int length);

  el_stack elements_;
  std::unique_ptr<std::remove_pointer_t<XML_Parser>, free_parser> parser_;
};

}  // namespace kiv
