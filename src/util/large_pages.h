#pragma once

namespace kiv {

// Lets the heap lie in large pages where the system has them: the books of a trace are visited all
// over, and in small pages the processor spends as long on looking up pages as on the records. For
// the beginning of a program. Only advice: where it is not taken, nothing changes.
void prefer_large_pages_for_heap();

}  // namespace kiv
