#include "events/id_events.h"

#include "events/event_fields.h"

namespace kiv {

void KivReserveIdColors::setelems() {
  readelem(color);
  readelem(colorname);
}

void KivFreeOrReset::setelems() {
  readelem(id);
  readloc(location_text, location);
  readelems(tot_size_wf, tot_size_nf);
}

}  // namespace kiv
