#pragma once

namespace kiv {

class kiv_reader;
struct KivFree;
struct KivFreeRealloc;
struct KivMallocNF;
struct KivMallocWF;

// The rules by which a memory record changes the statistics and the live blocks. Each function
// applies one record and tells the reader's observer what it did.
void update_stats(kiv_reader& reader, const KivMallocWF& event);
void update_stats(kiv_reader& reader, const KivMallocNF& event);
void update_stats(kiv_reader& reader, const KivFree& event);
void update_stats(kiv_reader& reader, const KivFreeRealloc& event);

}  // namespace kiv
