#include "trace/xml_parser.h"

#include <new>

#include "trace/diagnostics.h"

namespace kiv {
namespace {

el_stack& elements_of(void* parser) { return static_cast<XmlParser*>(parser)->elements(); }

std::string_view name_of(const element* top) {
  return top == nullptr ? std::string_view() : top->class_name();
}

}  // namespace

XmlParser::XmlParser(diagnostics& progress)
    : elements_(progress), parser_(XML_ParserCreate(nullptr)) {
  if (!parser_) throw std::bad_alloc();
  XML_SetUserData(parser_.get(), this);
  XML_SetElementHandler(parser_.get(), startElement, endElement);
  // Text between tags means nothing; only the debug lines show it.
  if (progress.tells_progress()) XML_SetCharacterDataHandler(parser_.get(), dataElement);
}

bool XmlParser::parse(std::string_view part) {
  const int is_final = 0;
  return XML_Parse(parser_.get(), part.data(), static_cast<int>(part.size()), is_final) !=
         XML_STATUS_ERROR;
}

void XmlParser::startElement(void* parser, const char* name, const char** attrs) {
  el_stack& elements = elements_of(parser);
  element* top = elements.top();
  diagnostics& progress = elements.faults();
  if (progress.tells_progress()) progress.xml_started(name, name_of(top));
  if (top != nullptr) top->startElement(name, attrs);
}

void XmlParser::endElement(void* parser, const char* name) {
  el_stack& elements = elements_of(parser);
  element* top = elements.top();
  diagnostics& progress = elements.faults();
  if (progress.tells_progress()) progress.xml_ended(name, name_of(top));
  if (top != nullptr) top->endElement(name);
}

void XmlParser::dataElement(void* parser, const char* text, int length) {
  elements_of(parser).faults().xml_text({text, static_cast<std::size_t>(length)});
}

}  // namespace kiv
