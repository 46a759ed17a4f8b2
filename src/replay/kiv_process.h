#pragma once

#include <absl/container/btree_map.h>
#include <absl/container/flat_hash_map.h>
#include <absl/container/inlined_vector.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "replay/call_graph.h"
#include "replay/event_context.h"
#include "replay/kiv_malid_stat.h"
#include "replay/kiv_oip.h"
#include "replay/kiv_symbol.h"
#include "util/moment.h"
#include "util/number_table.h"
#include "util/object_pool.h"

namespace kiv {

class KivObject;
class KivReserveId_db;
class diagnostics;
struct KivProcessStart;

// One traced process: who it is, its memory statistics, and while it lives its linked objects,
// call stack, arcs and symbols.
class KivProcess {
 public:
  // `main_pid`: of the trace. `ids` has the books of allocation ids made.
  KivProcess(const KivProcessStart& event, std::uint32_t main_pid, KivReserveId_db& ids,
             diagnostics& faults);
  // The default process, which takes what belongs to no known, living process.
  KivProcess(KivReserveId_db& ids, diagnostics& faults);

  std::uint32_t main_pid() const { return main_pid_; }
  std::uint32_t pid() const { return pid_; }
  std::uint32_t parent() const { return parent_; }
  const std::string& session_name() const { return session_name_; }
  bool alive() const { return alive_; }
  // The allocation ids that name the process in their reservations; 0 when none does.
  std::uint32_t mal_id() const { return mal_id_; }
  std::uint32_t xml_id() const { return xml_id_; }
  void set_mal_id(std::uint32_t id) { mal_id_ = id; }
  void set_xml_id(std::uint32_t id) { xml_id_ = id; }

  // When it began and ended: the time, and the record counter then.
  struct end_point {
    moment time;
    std::uint64_t record = 0;
  };
  const end_point& start() const { return start_; }
  const end_point& end() const { return end_; }
  void set_start(const end_point& at) { start_ = at; }
  void set_end(const end_point& at) { end_ = at; }

  // Memory statistics: of the process, and of one allocation id in it. The latter is made on first
  // use with as many colours as the id has then; never null.
  KivStat<std::int64_t>& statistics() { return statistics_; }
  process_malid_stat* get_mc_stat(std::uint32_t malid);
  // An allocation id gives back its with-free (no-free) memory as a whole.
  void release_wf(std::uint32_t malid, std::uint64_t size, std::uint64_t tot_size);
  void release_nf(std::uint32_t malid, std::uint64_t size, std::uint64_t tot_size);

  // Code.
  void add_special(std::int32_t number, std::string_view name);
  // Links an object under an id, whichever object stands for that id now.
  void link_oip(std::uint32_t object_id, const KivObject& object);
  KivOip* find_oip(std::uint32_t object_id) const {  // null when the object is not linked
    return oips_.find(object_id);
  }
  // A special for numbers up to 0, else a function of a linked object; null when there is none. The
  // first look-up puts the base entry on the call stack.
  Func_rel* find_function(std::uint32_t object_id, std::int32_t number);

  // find_function() for the caller of a flow, which mostly stands on top of the stack.
  Func_rel* find_caller(std::uint32_t object_id, std::int32_t number);
  // Enters a function that the one on top of the stack has called before. False, and nothing is
  // done, where that does not apply.
  bool enter_again(function_key caller, function_key callee);
  // A Hosk function of a linked object; null when there is none.
  Func_rel* find_hosk_function(std::uint32_t object_id, std::int32_t number);

  // Call flow.
  void s_push(const Func_context& entered) { stack_.push_back(entered); }
  void s_pop() {  // nothing when the stack is empty
    if (!stack_.empty()) stack_.pop_back();
  }
  const Func_context* top() const { return stack_.empty() ? nullptr : &stack_.back(); }
  const std::vector<Func_context>& stack() const { return stack_; }  // the outermost first
  std::uint32_t stack_depth() const { return static_cast<std::uint32_t>(stack_.size()); }
  std::uint32_t current_arc() const { return stack_.empty() ? 0 : stack_.back().arc; }
  std::uint32_t flow_counter() const { return flow_counter_; }
  void count_flows(std::uint32_t count) { flow_counter_ += count; }
  std::uint32_t add_arc(Func_rel* from, Func_rel* to);
  // A caller calls a function, as find_function() finds it; the first such call makes the arc. No
  // callee when either of them is null.
  struct found_call {
    Func_rel* callee = nullptr;
    std::uint32_t arc = 0;
  };
  found_call find_or_add_call(Func_rel* caller, std::uint32_t object_id, std::int32_t number);
  const auto& arcs() const { return arcs_; }
  const FuncArc* get_arc(std::uint32_t number) const {  // null beyond the arcs handed out
    return number < arcs_.size() ? &arcs_[number] : nullptr;
  }
  const hosk_call& current_hosk_call() const { return hosk_call_; }
  void set_hosk_call(hosk_call call) { hosk_call_ = std::move(call); }

  // Symbols.
  void symbol_new(const KivSymbolNew& event);
  void symbol_alloc(const KivSymbolAlloc& event);
  void symbol_dims(const KivSymbolDims& event);
  void symbol_dd_name(const KivSymbolDdName& event);

  // By their keys in the trace, in ascending order.
  const auto& symbols() const { return symbols_; }

  // Gives back what the process collected. It is dead from now on; its statistics stay.
  void free_process();

 private:
  // A function that belongs to the process itself.
  struct own_function {
    own_function(std::uint32_t pid, std::int32_t number, std::string_view name)
        : location{pid, number, name}, relation(&location) {}
    const Func_loc location;
    Func_rel relation;
  };
  struct special_function {
    special_function(std::uint32_t pid, std::int32_t number, std::string_view special_name)
        : name(special_name), function(pid, number, name) {}
    const std::string name;
    own_function function;
  };

  void start_stack();
  Func_rel* find_special(std::int32_t number);
  std::uint32_t find_in_object(std::uint32_t object_id, std::int32_t number, bool global);
  // Where one more callee can stand; null when the caller has all the lists that it may.
  callee_list* list_with_room(Func_rel& caller);
  std::uint32_t find_or_add_further_arc(Func_rel* caller, Func_rel* callee);
  // A call of a function that stands in the caller's lists.
  found_call find_call(const Func_rel& caller, function_key callee) const;
  KivSymbol* find_symbol(std::int64_t sym) const;

  const std::uint32_t main_pid_;
  const std::uint32_t pid_;
  const std::uint32_t parent_;
  std::uint32_t mal_id_ = 0;
  std::uint32_t xml_id_ = 0;
  const std::string session_name_;
  end_point start_;
  end_point end_;
  KivReserveId_db& ids_;
  diagnostics& diagnostics_;

  KivStat<std::int64_t> statistics_;
  absl::flat_hash_map<std::uint32_t, object_pool<process_malid_stat>::pointer> malid_stats_;
  // The book asked for last: records of one id often come in a row.
  std::uint32_t latest_malid_ = 0;
  process_malid_stat* latest_book_ = nullptr;

  bool stack_started_ = false;
  bool alive_ = true;
  number_table<std::unique_ptr<KivOip>, 256> oips_;  // by object id
  function_list functions_;                          // those of all oips_
  // By number, negative ones as unsigned. An overwritten special may still stand in the call
  // graph, so it stays until the process ends.
  absl::flat_hash_map<std::uint32_t, std::unique_ptr<special_function>> specials_;
  std::vector<std::unique_ptr<special_function>> former_specials_;
  std::optional<own_function> root_;  // calls itself through arc 0; the default process has none
  std::vector<Func_context> stack_;
  absl::InlinedVector<FuncArc, 1> arcs_;          // by arc number; most processes start with one
  std::vector<further_callees> further_callees_;  // by their numbers, from 1 on
  // The arcs of callers whose lists are long, by caller and callee.
  absl::flat_hash_map<std::pair<const Func_rel*, const Func_rel*>, std::uint32_t> further_arcs_;
  hosk_call hosk_call_;
  std::uint32_t flow_counter_ = 0;
  absl::btree_map<std::int64_t, std::unique_ptr<KivSymbol>> symbols_;  // by sym
};

inline KivProcess::found_call KivProcess::find_call(const Func_rel& caller,
                                                    function_key callee) const {
  const callee_list* list = &caller.callees;
  std::uint32_t further = caller.further;
  while (true) {
    for (std::size_t i = 0; i < callee_list::length; ++i) {
      if (list->callees[i] == callee) return {arcs_[list->arcs[i]].to, list->arcs[i]};
    }
    if (further == 0) return {};
    list = &further_callees_[further - 1].list;
    further = further_callees_[further - 1].further;
  }
}

// The number of a special may have become another's since; other numbers stay those of a function.
inline bool KivProcess::enter_again(function_key caller, function_key callee) {
  if (!names_function(caller) || !names_function(callee)) return false;
  if (stack_.empty() || stack_.back().key != caller) return false;
  const auto [entered, arc] = find_call(*stack_.back().function, callee);
  if (entered == nullptr) return false;
  s_push({entered, callee, arc});
  return true;
}

}  // namespace kiv
