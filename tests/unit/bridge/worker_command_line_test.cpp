#include "bridge/worker_command_line.h"
#include <gtest/gtest.h>

TEST(WorkerCommandLine, StartsTheProgramWhenItIsThere) {
    EXPECT_EQ(workerCommandLine({"C:\\Plugins", "C:\\Users\\A B\\Corvalis", "pythonw.exe", 4242, true}),
              "\"C:\\Plugins\\hopline_worker.exe\" --data-dir \"C:\\Users\\A B\\Corvalis\" --watch-pid 4242");
}

TEST(WorkerCommandLine, StartsTheScriptUnderTheInterpreterOtherwise) {
    EXPECT_EQ(workerCommandLine({"C:\\Plugins", "C:\\Data", "pythonw.exe", 1, false}),
              "\"pythonw.exe\" \"C:\\Plugins\\hopline_worker.py\" --data-dir \"C:\\Data\" --watch-pid 1");
}

TEST(WorkerCommandLine, QuotesAnInterpreterWithSpaces) {
    EXPECT_EQ(workerCommandLine({"C:\\Plugins", "C:\\Data", "C:\\Program Files\\Python 3\\pythonw.exe", 7, false}),
              "\"C:\\Program Files\\Python 3\\pythonw.exe\" \"C:\\Plugins\\hopline_worker.py\" "
              "--data-dir \"C:\\Data\" --watch-pid 7");
}

TEST(WorkerCommandLine, WritesTheLargestProcessIdWithoutASign) {
    const auto line = workerCommandLine({"C:\\P", "C:\\D", "py", 4294967295U, true});
    EXPECT_EQ(line, "\"C:\\P\\hopline_worker.exe\" --data-dir \"C:\\D\" --watch-pid 4294967295");
}

TEST(WorkerCommandLine, NamesTheBareFilesWithoutAPluginFolder) {
    EXPECT_EQ(workerCommandLine({"", "C:\\D", "py", 7, true}),
              "\"hopline_worker.exe\" --data-dir \"C:\\D\" --watch-pid 7");
}
