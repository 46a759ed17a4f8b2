#include "replay/reserve_type.h"

#include <array>

namespace kiv {

namespace {

constexpr auto npos = std::string_view::npos;

void describe(reserve_class& result, std::string_view description) {
  result.has_description = true;
  result.description = description;
}

void refer(reserve_class& result, std::string_view reference) {
  result.has_reference = true;
  result.reference = reference;
}

std::string_view before_colon(std::string_view text) { return text.substr(0, text.find(':')); }

std::string_view behind_colon(std::string_view text) {
  const std::size_t colon = text.find(':');
  return colon == npos ? text : text.substr(colon + 1);
}

void classify_proc(std::string_view text, reserve_class& result) {
  result.link = reserve_class::process_link::mal;
  if (text.size() <= 4) return;
  describe(result, behind_colon(text.substr(5)));
  refer(result, before_colon(text.substr(5)));
}

void classify_dlock(std::string_view text, reserve_class& result) {
  if (text.size() <= 5) return;
  describe(result, before_colon(text.substr(6)));
  refer(result, behind_colon(text.substr(6)));
}

void classify_xml(std::string_view text, reserve_class& result) {
  result.link = reserve_class::process_link::xml;
  if (text.size() <= 8) return;
  result.description_is_session = true;
  refer(result, before_colon(text.substr(9)));
}

void classify_oic(std::string_view text, reserve_class& result) {
  const std::string_view name = text_from(text, 4);
  describe(result, before_colon(name));
  refer(result, name.find(':') == npos ? std::string_view() : behind_colon(name));
}

void classify_qdb(std::string_view text, reserve_class& result) {
  describe(result, text_from(text, 4));
  refer(result, {});
}

void classify_sql(std::string_view text, reserve_class& result) {
  describe(result, text_from(text, 18));
  refer(result, {});
}

void classify_session(std::string_view text, reserve_class& result) {
  describe(result, {});
  refer(result, text_from(text, 12));
}

struct kind {
  std::string_view prefix;
  std::string_view category;
  void (*classify)(std::string_view text, reserve_class& result);
};

constexpr std::array kinds = {
    kind{"proc", "proc", classify_proc},
    kind{"dlock", "dlock", classify_dlock},
    kind{"xml", "xml", classify_xml},
    kind{"oic", "oic", classify_oic},
    kind{"qdb", "qdb", classify_qdb},
    kind{"make_new_sql_stmt", "sql stmt", classify_sql},
    kind{"dbs_session", "dbsession", classify_session},
};

}  // namespace

reserve_class classify_reserve_type(std::string_view text) {
  reserve_class result;
  for (const kind& known : kinds) {
    if (!text.starts_with(known.prefix.front()) || !text.starts_with(known.prefix)) continue;
    result.category = known.category;
    known.classify(text, result);
    break;
  }
  return result;
}

std::uint32_t process_of_reserve_type(std::string_view text) {
  const std::size_t colon = text.find(':');
  if (colon == npos) return 0;
  std::uint32_t number = 0;
  for (const char letter : text.substr(colon + 1)) {
    if (letter < '0' || letter > '9') break;
    number = number * 10 + static_cast<std::uint32_t>(letter - '0');
  }
  return number;
}

}  // namespace kiv
