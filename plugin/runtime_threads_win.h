// runtime_threads_win.h - the threads, locks and per-thread values below the C++ library of mingw-w64, for this DLL
// alone. The library that comes with the compiler for them, winpthreads, is made for programs: of every thread that it
// meets it keeps a handle, an event and a record, and it takes one of the process's 1088 slots for values of threads.
// A DLL that is unloaded while the host's threads live on would leave all that behind with each load.
// What is here keeps nothing that closeRuntimeThreads does not give back. The linker takes it before the library; a
// function that is missing here brings the library's in, and the linker then reports those that are there twice.
#pragma once

// At the DLL's unload, under the loader lock, once none of our threads runs: frees what threads that live on still
// hold, the C++ library's record of exceptions above all. Nothing may throw afterwards.
void closeRuntimeThreads();
