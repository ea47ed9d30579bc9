// soak_line.h - what is measured every few seconds of a soak, as a line to read, a row of a CSV file and the samples of
// the verdict: one table of columns for all of them. Values and pure functions. [any]
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>
#include "tests/soak/block_times.h"
#include "tests/soak/growth.h"

// What happened since the line before; the counts are of the moment, at which the windows are as the pilot leaves them
// when he comes to rest.
struct SoakLine {
    double atSeconds = 0.0;          // since the start of the run
    BlockTimes blocks;               // of 20 ms, through the playback and capture hooks
    std::uint64_t doneBlocks = 0;    // of any size
    std::uint64_t dueBlocks = 0;     // as real time asks for, done or not
    std::uint64_t lateBlocks = 0;    // done after the next were due already
    std::uint64_t shapedBlocks = 0;  // whole blocks that came back changed
    double uiLoad = 0.0;             // processor time of the plugin's thread by the time that passed; 1 is one core
    double pollLoad = 0.0;           // the same
    double processLoad = 0.0;        // of all threads, the stand-in's own too; of all cores together
    BlockTimes uiAnswers;            // to a message that asks for nothing
    BlockTimes hostCalls;            // the plugin's answers to events
    BlockTimes passGaps;             // between two passes of the poll thread, while connected
    std::uint64_t privateBytes = 0;  // of this process
    std::uint64_t heapBytes = 0;     // in use, by whomever
    std::int64_t ownBytes = 0;       // of the plugin itself
    std::int64_t ownBlocks = 0;      // in so many blocks
    std::uint64_t workerBytes = 0;   // private, of the worker's process
    int gdiObjects = 0;
    int userObjects = 0;
    int handles = 0;
    int threads = 0;
    bool isWithSimulator = false;  // samples are compared with others of the same kind only
    std::string phase;             // who wrote the telemetry
};

// The titles of the columns, and a line under them.
std::string lineTitles();
std::string lineText(const SoakLine& line);
std::string csvTitles();  // each ended by a line feed
std::string csvRow(const SoakLine& line);

// One quantity that may not grow, over the last half of the lines.
struct GrowthFinding {
    const char* name = "";
    const char* unit = "";
    GrowthLine line;         // in that unit
    bool isJudged = true;    // else it never grows
    double allowance = 0.0;  // of certain growth within the samples
    bool grows = false;
};
// The samples of all that may not grow: of a line only these few numbers are kept, or the soak itself would grow.
class GrowthRecord {
  public:
    explicit GrowthRecord(std::size_t lines);  // room for so many is taken at once
    void add(const SoakLine& line);
    // Heap and private bytes are not judged: the system leaks in them.
    void leaveOutSystemMemory() { isSystemTight_ = false; }
    std::vector<GrowthFinding> judge() const;

  private:
    std::vector<std::vector<GrowthSample>> samples_;  // one row per judged column
    bool isSystemTight_ = true;
};
// "handles  slope +0.1 /h, certain ...", one line.
std::string findingText(const GrowthFinding& finding);
