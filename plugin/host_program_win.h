// host_program_win.h - the program that has loaded us.
#pragma once
#include "plugin/host_interface.h"

// [host] Its file's name, and the version that its resources name. What cannot be found stays empty.
HostProgram findHostProgram();
