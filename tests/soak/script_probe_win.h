// script_probe_win.h - whether this system can be soaked with every script: Wine 10 keeps memory for each text of a
// complex script that its GDI+ lays out, of whatever program, and a plugin's leak could not be told from that.
#pragma once

// Lays out such texts with GDI+, without the plugin. Returns the bytes of the heap kept for each, 0 on a good system.
// [host] Before the plugin runs; takes a second.
double bytesKeptForAComplexText();
