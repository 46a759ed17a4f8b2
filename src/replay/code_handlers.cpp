// Records about processes and the code they run: objects, functions, source locations, call flow.

#include "replay/event_loop.h"
#include "replay/kiv_hashloc.h"
#include "replay/kiv_object_db.h"
#include "replay/kiv_process_db.h"
#include "replay/kiv_reserve_id_db.h"
#include "replay/observer.h"
#include "replay/reserve_type.h"

namespace kiv {

namespace {

std::string_view name_of(const Func_rel* function) {
  return function == nullptr ? std::string_view() : function->name();
}

const Func_rel* top_function(const KivProcess& process) {
  return process.top() == nullptr ? nullptr : process.top()->function;
}

}  // namespace

void event_loop::on_hashloc() {
  reader_.hash_locations().add_hashloc(read<KivHashLoc>(), diagnostics_);
}

void event_loop::on_object_load() {
  const auto event = decoded<KivObjectLoad>();
  // The allocation id's text opens with its four-letter kind, as in "oic:name".
  const std::string& text = reader_.reserve_ids().get_reserve_id(event.id_of_obj)->reserve_type;
  std::string_view name = text_from(text, 4);
  if (name == ":0:init") name = "init";
  if (diagnostics_.lists_records()) diagnostics_.listed(event, name);
  reader_.objects().add_object(event.id_of_obj, name, diagnostics_);
  if (diagnostics_.tells_progress()) diagnostics_.object_loaded(event.id_of_obj, name);
}

void event_loop::on_object_function_load() {
  const auto event = read<KivObjectFunctionLoad>();
  reader_.objects().get_object(event.id_of_obj)->object_function_load(event.funnr, event.funcname);
  if (diagnostics_.lists_records()) {
    diagnostics_.function_named(event.id_of_obj, event.funnr, event.funcname);
  }
}

void event_loop::on_object_global_load() {
  const auto event = read<KivObjectGlobalLoad>();
  reader_.objects().get_object(event.id_of_obj)->object_global_load(event.funnr, event.funcname);
  if (diagnostics_.lists_records()) {
    diagnostics_.function_named(event.id_of_obj, event.funnr, event.funcname);
  }
}

void event_loop::on_object_link() {
  const auto event = read<KivObjectLink>();
  const KivObject& object = *reader_.objects().get_object(event.id_of_obj);
  reader_.processes().get_process(event.pid)->link_oip(event.id_of_obj, object);
  if (diagnostics_.lists_records()) diagnostics_.object_linked(event.pid, event.id_of_obj);
}

void event_loop::on_process_start() {
  const auto event = read<KivProcessStart>();
  const KivProcess& process =
      reader_.processes().add_process(event, {reader_.now(), counters_.record_count});
  reader_.processes_changed();
  reader_.observer().process_started(process);
}

void event_loop::on_process_end() {
  const auto event = read<KivProcessEnd>();
  KivProcess& process = *reader_.processes().get_process(event.pid);
  process.set_end({reader_.now(), counters_.record_count});
  if (diagnostics_.tells_progress()) {
    diagnostics_.process_ended(process.session_name(), process.pid());
  }
  reader_.observer().process_ended(process);
  process.free_process();
  if (&process == reader_.cc_curr_proc()) reader_.processes_changed();
}

void event_loop::on_process_special_load() {
  const auto event = read<KivProcessSpecialLoad>();
  reader_.processes().get_process(event.pid)->add_special(event.funnr, event.funcname);
  if (diagnostics_.lists_records()) {
    diagnostics_.function_named(event.pid, event.funnr, event.funcname);
  }
}

void event_loop::on_schedule() {
  const auto event = read<KivSchedule>();
  const KivProcess& current = *reader_.processes().get_process(event.curr_pid);
  const KivProcess& next = *reader_.processes().get_process(event.new_pid);
  reader_.set_current_pid(next.pid());
  if (diagnostics_.lists_records()) {
    diagnostics_.scheduled(current.pid(), current.session_name(), next.pid(), next.session_name());
  }
}

namespace {

// The two numbers of four bytes that name a function.
template <bool LittleEndian>
function_key key_at(const unsigned char* bytes) {
  if constexpr (LittleEndian) return load<std::uint64_t>(bytes, true);
  return key_of_function(load<std::uint32_t>(bytes, false),
                         static_cast<std::int32_t>(load<std::uint32_t>(bytes + 4, false)));
}

template <bool LittleEndian>
std::size_t repeat_calls(KivProcess& process, std::span<const unsigned char> records,
                         std::uint32_t& count) {
  constexpr std::size_t start = record_cursor::record_start_size;
  constexpr std::size_t entry_size = 16;
  const unsigned char* at = records.data();
  const unsigned char* const end = at + records.size();
  const auto left = [&] { return static_cast<std::size_t>(end - at); };
  for (; left() >= start; ++count) {
    const std::uint32_t size = load<std::uint16_t>(at + 1, LittleEndian);
    if (*at == kiv_e_flow_out && size == 0) {
      process.s_pop();
      at += start;
    } else if (*at == kiv_e_flow_in && size == entry_size && left() >= start + entry_size &&
               process.enter_again(key_at<LittleEndian>(at + start),
                                   key_at<LittleEndian>(at + start + 8))) {
      at += start + entry_size;
    } else {
      break;
    }
  }
  return static_cast<std::size_t>(at - records.data());
}

}  // namespace

void event_loop::repeat_calls() {
  std::uint32_t count = 0;
  KivProcess& process = *reader_.cc_curr_proc();
  const auto records = cursor_.ahead();
  cursor_.pass(cursor_.little_endian() ? kiv::repeat_calls<true>(process, records, count)
                                       : kiv::repeat_calls<false>(process, records, count));
  if (count == 0) return;
  reader_.count_events(count);
  reader_.context_changed();
  process.count_flows(count);
}

void event_loop::on_flow_in() {
  const auto event = read<KivFlowIn>();
  reader_.context_changed();
  KivProcess& process = *reader_.cc_curr_proc();
  Func_rel* caller = process.find_caller(event.parent_id, event.parent_funnr);
  const auto [callee, arc] = process.find_or_add_call(caller, event.child_id, event.child_funnr);
  if (callee == nullptr) return;
  process.s_push({callee, key_of_function(event.child_id, event.child_funnr), arc});
  if (diagnostics_.lists_records()) {
    diagnostics_.function_entered(process.stack_depth(), caller->name(), callee->name());
  }
  process.count_flows(1);
  reader_.observer().function_entered(process, process.stack_depth(), arc);
}

void event_loop::on_flow_out() {
  read<KivFlowOut>();
  reader_.context_changed();
  KivProcess& process = *reader_.cc_curr_proc();
  const Func_rel* left = top_function(process);
  const std::uint32_t depth = process.stack_depth();
  const std::uint32_t arc = process.current_arc();
  process.count_flows(1);
  process.s_pop();
  if (diagnostics_.lists_records()) {
    diagnostics_.function_left(process.stack_depth(), name_of(top_function(process)),
                               name_of(left));
  }
  reader_.observer().function_left(process, depth, arc);
}

void event_loop::on_hosk_flow_in() {
  const auto event = read<KivHoskFlowIn>();
  reader_.context_changed();
  KivProcess& process = *reader_.cc_curr_proc();
  const Func_rel* function = process.find_hosk_function(event.id_of_obj, event.funnr);
  if (function == nullptr) return;
  process.set_hosk_call({std::string(function->name()), event.sym, std::string(event.args)});
  if (diagnostics_.lists_records()) {
    diagnostics_.hosk_entered(process.stack_depth(), function->name());
  }
}

void event_loop::on_hosk_flow_out() {
  read<KivHoskFlowOut>();
  reader_.context_changed();
  KivProcess& process = *reader_.cc_curr_proc();
  if (diagnostics_.lists_records()) {
    diagnostics_.hosk_left(process.stack_depth(), name_of(top_function(process)));
  }
  process.set_hosk_call({});
}

}  // namespace kiv
