#include "profile/name_lists.h"

#include "replay/kiv_hashloc.h"
#include "replay/kiv_query_db.h"
#include "replay/kiv_reader.h"
#include "replay/kiv_reserve_id_db.h"

namespace kiv {

namespace {

// A name that means the same in every run: process numbers and the like play no part.
std::string name_of(const KivMalid& id) {
  if (id.description.empty()) return id.reserve_type;
  std::string name = std::string(id.category) + " " + id.description;
  const bool reference_is_a_name = id.category == "oic" || id.category == "dlock";
  if (reference_is_a_name && !id.reference.empty()) name += ":" + id.reference;
  return name;
}

}  // namespace

name_lists::name_lists(const kiv_reader& reader) : reader_(reader) {
  lists_.ids.push_back({0, "unknown id", ""});
  lists_.colors.push_back({0, 0, "unknown colour"});
  lists_.lines.emplace_back("unknown line");
  lists_.queries.emplace_back("(no finished SQL operation)");
}

template <class Name, class Add>
std::uint32_t name_lists::place_of(places<Name>& names, const Name& name, Add add) {
  const auto known = names.find(name);
  if (known != names.end()) {
    shared_ = true;
    return known->second;
  }
  const auto place = static_cast<std::uint32_t>(add());
  names.emplace(name, place);
  return place;
}

std::uint32_t name_lists::id(std::uint32_t number) {
  const auto [entry, is_new] = ids_.try_emplace(number, 0);
  if (!is_new) return entry->second;
  if (!reader_.reserve_ids().knows(number)) {
    shared_ = true;  // any number of unknown ids has place 0
    return 0;
  }
  const KivMalid& known = *reader_.reserve_ids().get_reserve_id(number);
  const std::string name = name_of(known);
  return entry->second = place_of(id_names_, name, [&] {
           lists_.ids.push_back({number, name, known.reserve_type});
           return lists_.ids.size() - 1;
         });
}

std::uint32_t name_lists::color(std::uint32_t id_number, std::uint32_t number) {
  const auto [entry, is_new] = colors_.try_emplace({id_number, number}, 0);
  if (!is_new) return entry->second;
  const KivMalid& owner = *reader_.reserve_ids().get_reserve_id(id_number);
  const std::uint32_t owner_place = id(id_number);
  const bool named = reader_.reserve_ids().knows(id_number) && number < owner.color_count();
  const std::string name = named ? owner.color_name(number) : "unknown colour";
  if (!named && owner_place == 0) {
    shared_ = true;
    return 0;
  }
  return entry->second = place_of(color_names_, std::pair(owner_place, name), [&] {
           lists_.colors.push_back({owner_place, number, name});
           return lists_.colors.size() - 1;
         });
}

std::uint32_t name_lists::line_named(const std::string& text) {
  return place_of(line_names_, text, [&] {
    lists_.lines.push_back(text);
    return lists_.lines.size() - 1;
  });
}

std::uint32_t name_lists::line(std::int64_t location) {
  const auto [entry, is_new] = lines_.try_emplace(location, 0);
  if (!is_new) return entry->second;
  if (!reader_.hash_locations().knows(location)) {
    shared_ = true;
    return 0;
  }
  return entry->second = line_named(reader_.hash_locations().get_hashloc(location));
}

std::uint32_t name_lists::query(std::uint32_t qid) {
  const auto [entry, is_new] = queries_.try_emplace(qid, 0);
  if (!is_new) return entry->second;
  const KivQuery* known = reader_.queries().find_query(qid);
  if (known == nullptr) {
    shared_ = true;
    return 0;
  }
  return entry->second = place_of(query_names_, known->query, [&] {
           lists_.queries.push_back(known->query);
           return lists_.queries.size() - 1;
         });
}

void name_lists::finish(profile& into) {
  into.ids = std::move(lists_.ids);
  into.colors = std::move(lists_.colors);
  into.lines = std::move(lists_.lines);
  into.queries = std::move(lists_.queries);
}

}  // namespace kiv
