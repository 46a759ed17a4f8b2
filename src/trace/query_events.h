#pragma once

#include <cstdint>
#include <string_view>
#include <tuple>

#include "trace/kiv_type.h"

namespace kiv {

struct KivQueryIn {
  static constexpr kiv_type type = kiv_e_query_in;
  auto numbers() { return std::tie(qid, operation); }
  auto& text() { return query; }

  std::uint32_t qid = 0;
  std::uint32_t operation = 0;  // a character code
  std::string_view query;
};

struct KivQueryOut {
  static constexpr kiv_type type = kiv_e_query_out;
  auto numbers() { return std::tie(qid, linked_qid); }

  std::uint32_t qid = 0;
  std::uint32_t linked_qid = 0;
};

}  // namespace kiv
