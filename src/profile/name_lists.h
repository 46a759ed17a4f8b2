#pragma once

#include <absl/container/flat_hash_map.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "profile/profile.h"

namespace kiv {

class kiv_reader;

// Numbers of a trace -> places in the profile's lists of names, as the books name them when the
// replay is over. Numbers with one name share a place.
class name_lists {
 public:
  explicit name_lists(const kiv_reader& reader);

  std::uint32_t id(std::uint32_t number);
  std::uint32_t color(std::uint32_t id_number, std::uint32_t number);
  std::uint32_t line(std::int64_t location);
  std::uint32_t query(std::uint32_t qid);
  // The line of groups that were too many to be kept apart.
  std::uint32_t line_left_out() { return line_named("(lines left out)"); }

  std::size_t id_count() const { return lists_.ids.size(); }
  // Whether two numbers got one place so far.
  bool shared_places() const { return shared_; }

  void finish(profile& into);

 private:
  template <class Number>
  using places = absl::flat_hash_map<Number, std::uint32_t>;

  std::uint32_t line_named(const std::string& text);
  // The place of a name: a new one, for which `add` is called, or that of an equal name before.
  template <class Name, class Add>
  std::uint32_t place_of(places<Name>& names, const Name& name, Add add);

  const kiv_reader& reader_;
  profile lists_;  // those four that are built here
  places<std::uint32_t> ids_;
  places<std::pair<std::uint32_t, std::uint32_t>> colors_;
  places<std::int64_t> lines_;
  places<std::uint32_t> queries_;
  places<std::string> id_names_;
  places<std::pair<std::uint32_t, std::string>> color_names_;
  places<std::string> line_names_;
  places<std::string> query_names_;
  bool shared_ = false;
};

}  // namespace kiv
