// system_leaks_win.h - what this system itself leaks at the work of the soak and of the loads, whatever program does
// it. Wine 10 keeps memory for each text of a complex script (Arabic, Hindi) that its GDI+ lays out, and for each
// thread that ended after its window was active; then nobody's growth can be told from it by the heap of the process.
#pragma once
#include <string>

struct SystemLeaks {
    double bytesForAText = 0.0;    // of the heap, kept for each such text
    double bytesForAThread = 0.0;  // and for each such thread

    bool areNone() const;
    std::string inWords() const;  // and what follows for the verdict
};

// Does both a thousand times, without the plugin. [host] Before it runs; takes a few seconds.
SystemLeaks findSystemLeaks();
