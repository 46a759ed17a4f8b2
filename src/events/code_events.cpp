#include "events/code_events.h"

#include "events/event_fields.h"

namespace kiv {

void KivObjectLink::setelems() { readelems(pid, id_of_obj); }

void KivFunctionName::setelems() {
  readelems(id_of_obj, funnr);
  readelem(funcname);
}

void KivFlowIn::setelems() { readelems(parent_id, parent_funnr, child_id, child_funnr); }

void KivHoskFlowIn::setelems() {
  readelems(id_of_obj, fun3glnr, funnr, sym);
  readelem(args);
}

void KivHoskFlowOut::setelems() {
  readelems(id_of_obj, fun3glnr, funnr);
  readelem(args);
}

}  // namespace kiv
