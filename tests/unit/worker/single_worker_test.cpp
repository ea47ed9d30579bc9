#include "worker/single_worker.h"
#include <gtest/gtest.h>

TEST(WorkerMutexName, IsTheSameForTheSameFolderAndLegal) {
    const auto name = workerMutexName("C:\\Users\\A\\Corvalis");
    EXPECT_EQ(name, workerMutexName("c:\\users\\a\\corvalis"));
    EXPECT_EQ(name, workerMutexName("C:\\Users\\A\\Corvalis\\"));
    EXPECT_EQ(name.size(), std::string("Local\\CorvalisWorker-").size() + 16);
    EXPECT_EQ(name.find('\\', 6), std::string::npos);
}

TEST(WorkerMutexName, DiffersBetweenFolders) {
    EXPECT_NE(workerMutexName("C:\\a"), workerMutexName("C:\\b"));
    EXPECT_NE(workerMutexName("C:\\ab"), workerMutexName("C:\\ba"));
}
