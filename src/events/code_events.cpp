#include "events/code_events.h"

#include "events/event_fields.h"

namespace kiv {

void KivObjectLink::setelems() {
  readelem(pid);
  readelem(id_of_obj);
}

void KivFunctionName::setelems() {
  readelem(id_of_obj);
  readelem(funnr);
  readelem(funcname);
}

void KivFlowIn::setelems() {
  readelem(parent_id);
  readelem(parent_funnr);
  readelem(child_id);
  readelem(child_funnr);
}

void KivHoskFlowIn::setelems() {
  readelem(id_of_obj);
  readelem(fun3glnr);
  readelem(funnr);
  readelem(sym);
  readelem(args);
}

void KivHoskFlowOut::setelems() {
  readelem(id_of_obj);
  readelem(fun3glnr);
  readelem(funnr);
  readelem(args);
}

}  // namespace kiv
