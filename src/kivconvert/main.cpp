#include "kivconvert/command_line.h"

int main(int argc, char** argv) { return kiv::convert::kivconvert_main(argc, argv); }
