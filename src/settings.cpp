#include "settings.h"

namespace kiv {

int debug_level = 0;
char data_sep = ';';
char fun_sep = ';';
run_counters counters;

}  // namespace kiv
