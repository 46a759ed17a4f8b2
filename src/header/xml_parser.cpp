#include "header/xml_parser.h"

#include <iostream>
#include <new>
#include <string_view>

#include "header/element.h"
#include "settings.h"

namespace kiv {
namespace {

element* top_element() { return el_stack.empty() ? nullptr : el_stack.back(); }

void trace_tag(const char* callback, const char* name, const element* top) {
  std::cerr << callback << ":  '" << name << "' from '"
            << (top ? std::string_view(top->element_name()) : std::string_view()) << "'\n";
}

}  // namespace

XmlParser::XmlParser(XML_StartElementHandler start, XML_EndElementHandler end,
                     XML_CharacterDataHandler data, void* user)
    : parser_(XML_ParserCreate(nullptr)) {
  if (!parser_) throw std::bad_alloc();
  XML_SetUserData(parser_.get(), user);
  XML_SetElementHandler(parser_.get(), start, end);
  XML_SetCharacterDataHandler(parser_.get(), data);
}

void startElement(void* /*user*/, const char* name, const char** attrs) {
  element* top = top_element();
  if (debug_level > 0) trace_tag("startElement", name, top);
  if (top) top->startElement(name, attrs);
}

void endElement(void* /*user*/, const char* name) {
  element* top = top_element();
  if (debug_level > 0) trace_tag("endElement", name, top);
  if (top) top->endElement(name);
}

void dataElement(void* /*user*/, const char* text, int len) {
  if (debug_level > 0) {
    std::cerr << "userdata: " << std::string_view(text, static_cast<std::size_t>(len)) << '\n';
  }
  if (element* top = top_element()) top->dataElement(text, len);
}

}  // namespace kiv
