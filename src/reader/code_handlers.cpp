// Records about processes and the code they run: objects, functions, source locations, call flow.

#include <fmt/format.h>

#include <iostream>

#include "analysis/kiv_hashloc.h"
#include "analysis/kiv_object_db.h"
#include "analysis/kiv_process_db.h"
#include "events/code_events.h"
#include "events/process_events.h"
#include "reader/event_loop.h"

namespace kiv {

namespace {

std::string_view name_of(const Func_rel* function) {
  return function == nullptr ? std::string_view() : function->name();
}

const Func_rel* top_function(const KivProcess& process) {
  return process.top() == nullptr ? nullptr : process.top()->function;
}

void list_function(std::uint32_t id, std::int32_t number, const std::string& name) {
  if (debug_level > 1) std::cerr << fmt::format("  {} {} {}\n", id, number, name);
}

}  // namespace

void event_loop::on_hashloc() {
  auto event = reader_.hash_locations().make_hashloc(&reader_);
  decode(*event);
  reader_.hash_locations().add_hashloc(std::move(event));
}

void event_loop::on_object_load() {
  auto object = reader_.objects().make_object();
  decode(*object);
  std::string line;
  if (debug_level > 0) {
    line = fmt::format("---------------------------------\n Load object: {} {}\n",
                       object->id_of_obj, object->name);
  }
  reader_.objects().add_object(std::move(object));
  if (debug_level > 0) std::cerr << line;
}

void event_loop::on_object_function_load() {
  KivObjectFunctionLoad event(&reader_);
  decode(event);
  reader_.objects().get_object(event.id_of_obj)->object_function_load(event.funnr, event.funcname);
  list_function(event.id_of_obj, event.funnr, event.funcname);
}

void event_loop::on_object_global_load() {
  KivObjectGlobalLoad event(&reader_);
  decode(event);
  reader_.objects().get_object(event.id_of_obj)->object_global_load(event.funnr, event.funcname);
  list_function(event.id_of_obj, event.funnr, event.funcname);
}

void event_loop::on_object_link() {
  KivObjectLink event(&reader_);
  decode(event);
  reader_.processes().get_process(event.pid)->link_oip(event.id_of_obj);
  if (debug_level > 1) {
    std::cerr << fmt::format(" OIP process id {} links object id {}\n", event.pid, event.id_of_obj);
  }
}

void event_loop::on_process_start() {
  KivProcessStart event(&reader_);
  decode(event);
  auto process = reader_.processes().make_process(&reader_, event);
  process->write_flow_row(2, 0, '>');
  process->set_start(reader_.now(), counters.record_count);
  reader_.processes().add_process(std::move(process));
  reader_.processes_changed();
  reader_.WriteMarker("Process", "Start", reader_.now(),
                      marker_text("Start: ", event.session_name, " ", event.pid));
}

void event_loop::on_process_end() {
  KivProcessEnd event(&reader_);
  decode(event);
  KivProcess& process = *reader_.processes().get_process(event.pid);
  process.set_end(reader_.now(), counters.record_count);
  const std::string& text = marker_text("End: ", process.session_name(), " ", process.pid());
  reader_.WriteMarker("Process", "End", reader_.now(), text);
  if (debug_level > 0) std::cerr << "End process: " + text + "\n";
  process.dump_arcs(reader_.table(replay_table::arcs).get_stream());
  process.dump_symbols(reader_.table(replay_table::symbols).get_stream());
  process.dump_flowdata(reader_.table(replay_table::flowdata).get_stream());
  process.free_process();
  if (&process == reader_.cc_curr_proc()) reader_.processes_changed();
}

void event_loop::on_process_special_load() {
  KivProcessSpecialLoad event(&reader_);
  decode(event);
  reader_.processes().get_process(event.pid)->add_special(event.funnr, event.funcname);
  list_function(event.pid, event.funnr, event.funcname);
}

void event_loop::on_schedule() {
  KivSchedule event(&reader_);
  decode(event);
  const KivProcess& current = *event.get_cur_proc();
  const KivProcess& next = *event.get_new_proc();
  reader_.set_current_pid(next.pid());
  if (debug_level > 1) {
    std::cerr << fmt::format("schedule from {} {} to {} {}\n", current.pid(),
                             current.session_name(), next.pid(), next.session_name());
  }
}

void event_loop::on_flow_in() {
  KivFlowIn event(&reader_);
  decode(event);
  KivProcess& process = *reader_.cc_curr_proc();
  Func_rel* caller = process.find_caller(event.parent_id, event.parent_funnr);
  FuncArc* known = caller == nullptr
                       ? nullptr
                       : process.find_repeated_call(*caller, event.child_id, event.child_funnr);
  Func_rel* callee = known != nullptr
                         ? known->to
                         : process.find_function(event.child_id, event.child_funnr, false);
  if (caller == nullptr || callee == nullptr) return;
  const std::uint32_t arc =
      known != nullptr ? process.repeat_call(*known) : caller->update_child(callee, process);
  process.s_push(callee, arc);
  if (debug_level > 1) {
    std::cerr << fmt::format("3>{} {}->{}\n", process.stack_depth(), caller->name(),
                             callee->name());
  }
  process.count_flow();
  process.write_flow_row(process.stack_depth(), arc, '>');
}

void event_loop::on_flow_out() {
  KivFlowOut event(&reader_);
  decode(event);
  KivProcess& process = *reader_.cc_curr_proc();
  const Func_rel* left = top_function(process);
  process.count_flow();
  process.write_flow_row(process.stack_depth(), process.current_arc(), '<');
  process.s_pop();
  if (debug_level > 1) {
    std::cerr << fmt::format("3<{} {}<-{}\n", process.stack_depth(), name_of(top_function(process)),
                             name_of(left));
  }
}

void event_loop::on_hosk_flow_in() {
  KivHoskFlowIn event(&reader_);
  decode(event);
  KivProcess& process = *reader_.cc_curr_proc();
  KivOip* object = process.find_oip(event.id_of_obj);
  const Func_rel* function = object == nullptr ? nullptr : object->find_function(event.funnr, true);
  if (function == nullptr) return;
  process.set_hosk_call({std::string(function->name()), event.sym, event.args});
  if (debug_level > 1) {
    std::cerr << fmt::format("b>{} {}\n", process.stack_depth(), function->name());
  }
}

void event_loop::on_hosk_flow_out() {
  KivHoskFlowOut event(&reader_);
  decode(event);
  KivProcess& process = *reader_.cc_curr_proc();
  if (debug_level > 1) {
    std::cerr << fmt::format("b<{} {}\n", process.stack_depth(), name_of(top_function(process)));
  }
  process.set_hosk_call({});
}

}  // namespace kiv
