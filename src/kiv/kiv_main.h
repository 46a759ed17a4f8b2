#pragma once

namespace kiv {

// Puts signals, time zone and the standard streams of this process into the state that a batch run
// wants. Once, before any output.
void set_up_process();

// The program: reads the options, then analyses the traces of a directory, a single trace, or both
// in this order. Returns the exit status: 1 for -E without a file, else 0, whatever the traces
// held.
int kiv_main(int argc, const char* const* argv);

}  // namespace kiv
