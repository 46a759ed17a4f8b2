#pragma once

#include <cstdint>
#include <string_view>
#include <tuple>

#include "trace/kiv_type.h"

namespace kiv {

// A source location: the number by which records name it, and its line of source.
struct KivHashLoc {
  static constexpr kiv_type type = kiv_e_hashloc;
  auto numbers() { return std::tie(location); }
  auto& text() { return source_line; }

  std::int64_t location = 0;
  std::string_view source_line;
};

struct KivObjectLoad {
  static constexpr kiv_type type = kiv_e_object_load;
  auto numbers() { return std::tie(id_of_obj); }

  std::uint32_t id_of_obj = 0;
};

// Links a loaded object to a process.
struct KivObjectLink {
  static constexpr kiv_type type = kiv_e_object_link;
  auto numbers() { return std::tie(pid, id_of_obj); }

  std::uint32_t pid = 0;
  std::uint32_t id_of_obj = 0;
};

// Names a function of an object by its number.
struct KivFunctionName {
  auto numbers() { return std::tie(id_of_obj, funnr); }
  auto& text() { return funcname; }

  std::uint32_t id_of_obj = 0;
  std::int32_t funnr = 0;
  std::string_view funcname;
};

struct KivObjectFunctionLoad : KivFunctionName {
  static constexpr kiv_type type = kiv_e_object_function_load;
};

// A function of the Hosk interpreter; such functions have numbers of their own.
struct KivObjectGlobalLoad : KivFunctionName {
  static constexpr kiv_type type = kiv_e_object_global_load;
};

struct KivFlowIn {
  static constexpr kiv_type type = kiv_e_flow_in;
  auto numbers() { return std::tie(parent_id, parent_funnr, child_id, child_funnr); }

  std::uint32_t parent_id = 0;
  std::int32_t parent_funnr = 0;
  std::uint32_t child_id = 0;
  std::int32_t child_funnr = 0;
};

struct KivFlowOut {
  static constexpr kiv_type type = kiv_e_flow_out;
  auto numbers() { return std::tie(); }
};

struct KivHoskFlowIn {
  static constexpr kiv_type type = kiv_e_hosk_flow_in;
  auto numbers() { return std::tie(id_of_obj, fun3glnr, funnr, sym); }
  auto& text() { return args; }

  std::uint32_t id_of_obj = 0;
  std::uint32_t fun3glnr = 0;
  std::int32_t funnr = 0;
  std::int64_t sym = 0;
  std::string_view args;
};

struct KivHoskFlowOut {
  static constexpr kiv_type type = kiv_e_hosk_flow_out;
  auto numbers() { return std::tie(id_of_obj, fun3glnr, funnr); }
  auto& text() { return args; }

  std::uint32_t id_of_obj = 0;
  std::uint32_t fun3glnr = 0;
  std::int32_t funnr = 0;
  std::string_view args;
};

}  // namespace kiv
