#pragma once

namespace kiv::convert {

// The program kivconvert; gives its exit status.
int kivconvert_main(int argc, char** argv);

}  // namespace kiv::convert
