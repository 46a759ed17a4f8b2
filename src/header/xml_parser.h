#pragma once

#include <expat.h>

#include <memory>
#include <type_traits>

namespace kiv {

// Owns an expat parser with its three handlers set.
class XmlParser {
 public:
  XmlParser(XML_StartElementHandler start, XML_EndElementHandler end, XML_CharacterDataHandler data,
            void* user);

  XML_Parser get_parser() const { return parser_.get(); }

 private:
  struct free_parser {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
  };
  std::unique_ptr<std::remove_pointer_t<XML_Parser>, free_parser> parser_;
};

// The handlers for header files: each hands the event to the element on top of el_stack, or drops
// it when the stack is empty. `user` is not used.
void startElement(void* user, const char* name, const char** attrs);
void endElement(void* user, const char* name);
void dataElement(void* user, const char* text, int len);

}  // namespace kiv
