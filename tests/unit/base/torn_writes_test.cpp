// torn_writes_test.cpp - the machine or the process ends in the midst of a write: at every byte of it, and between the
// write and its rename. Whoever reads the file next finds the old text or the new one, never a part.
#include <gtest/gtest.h>
#include <functional>
#include "audio/tones.h"
#include "bridge/telemetry_file.h"
#include "settings/settings_store.h"
#include "settings/settings_text.h"
#include "tests/unit/bridge/rig.h"
#include "tests/unit/worker/worker_fakes.h"
#include "worker/worker_loop.h"

namespace {

struct PowerCut {};

// Ends everything at a chosen point of the next replacement of a file.
class CutFiles : public MemoryFiles {
  public:
    // After so many bytes of the write.
    void cutWriteAfter(std::size_t bytes) { writeLeft_ = bytes; }
    // With everything written, before the rename.
    void cutBeforeMove() { isMoveCut_ = true; }

  protected:
    FileResult writeOnce(const std::string& path, std::string_view bytes, bool isFlushed) override {
        if (!writeLeft_) return MemoryFiles::writeOnce(path, bytes, isFlushed);
        const std::size_t left = *std::exchange(writeLeft_, std::nullopt);
        EXPECT_LE(left, bytes.size());
        MemoryFiles::writeOnce(path, bytes.substr(0, left), isFlushed);
        throw PowerCut();
    }
    FileResult moveOnce(const std::string& from, const std::string& to, bool isReplacing) override {
        if (std::exchange(isMoveCut_, false)) throw PowerCut();
        return MemoryFiles::moveOnce(from, to, isReplacing);
    }

  private:
    std::optional<std::size_t> writeLeft_;
    bool isMoveCut_ = false;
};

// What is written where, in a way that the next text is another.
struct Written {
    const char* name;
    std::function<void(CutFiles&)> write;
};

// Each row's work is the product's own.
std::vector<Written> everythingWritten() {
    return {
        {kSettingsFile,
         [](CutFiles& files) {
             SettingsStore store(files);
             setSettingsFolders(store, kFolder, "");
             loadSettings(store);
             updateSettings(store, [](Settings& live) { live.panel_x++; });
         }},
        {kCommandFile,
         [](CutFiles& files) {
             ManualClock clock;
             clock.advance(files.text(pathOf(kCommandFile)).empty() ? 0 : 1000);
             SettingsStore store(files);
             SimRadios radios;
             setState(radios.sim, connectedState());
             enqueue(radios, 1, kSlotSwap, 0.0, -1.0f, clock.tickMs());
             processCommands(radios, store,
                             {.files = files, .clock = clock, .processId = kHostProcess, .dataFolder = kFolder});
         }},
        {kTelemetryFile,
         [](CutFiles& files) {
             ManualClock clock;
             clock.advance(files.text(pathOf(kTelemetryFile)).empty() ? 0 : 1000);
             MemoryFolder folder{files};
             MemoryLogFile logFile;
             WorkerLog log{logFile, clock};
             ManualLink link;
             WorkerLoop(kFolder, files, folder, link, log).pass(clock.tickMs(), clock.unixSeconds());
         }},
        {kTailFile,
         [](CutFiles& files) {
             const bool isFirst = files.text(pathOf(kTailFile)).empty();
             files.replace(pathOf(kTailFile), isFirst ? "an old sound" : wavFileOf(synthesizeTail()).substr(0, 2000));
         }},
    };
}

// The files after an old text was written and a new one cut off; `cut` says where.
class TornWrites : public testing::TestWithParam<Written> {
  protected:
    TornWrites() {
        GetParam().write(files);
        old = files.text(path);
        CutFiles whole;
        GetParam().write(whole);
        GetParam().write(whole);
        next = whole.text(path);
    }
    void writeUntilCut() { EXPECT_THROW(GetParam().write(files), PowerCut); }

    const std::string path = pathOf(GetParam().name);
    CutFiles files;
    std::string old;
    std::string next;
};

void PrintTo(const Written& written, std::ostream* stream) {
    *stream << written.name;
}

}  // namespace

TEST_P(TornWrites, AtAnyByteLeaveTheOldText) {
    ASSERT_NE(old, "");
    ASSERT_NE(next, old);
    for (std::size_t bytes = 0; bytes <= next.size(); bytes++) {
        files.cutWriteAfter(bytes);
        writeUntilCut();
        ASSERT_EQ(files.text(path), old) << bytes << " bytes";
        ASSERT_EQ(files.names().size(), 2u) << bytes;  // and the temporary file
    }
}

TEST_P(TornWrites, BeforeTheRenameLeaveTheOldTextAndTheNextWriteIsWhole) {
    files.cutBeforeMove();
    writeUntilCut();
    EXPECT_EQ(files.text(path), old);
    EXPECT_EQ(files.text(files.temporaryOf(path)), next);
    GetParam().write(files);
    EXPECT_EQ(files.text(path), next);
    EXPECT_EQ(files.names().size(), 1u);
}

INSTANTIATE_TEST_SUITE_P(Of, TornWrites, testing::ValuesIn(everythingWritten()), [](const auto& row) {
    std::string name(row.param.name);
    std::erase_if(name, [](char c) { return c == '.' || c == '_'; });
    return name;
});

// A power cut may leave a renamed file whose bytes never reached the disk: zeros from some byte on.
TEST(TornFiles, ACommandThatEndsInZerosIsNone) {
    const std::string whole = commandText("4242-1000000", 1, "standby", "118005", 1'790'000'000.0);
    ASSERT_TRUE(parseCommandText(whole));
    for (std::size_t kept = 0; kept < whole.size(); kept++) {
        std::string torn = whole;
        std::fill(torn.begin() + static_cast<std::ptrdiff_t>(kept), torn.end(), '\0');
        EXPECT_FALSE(parseCommandText(torn)) << kept;
        EXPECT_FALSE(parseCommandText(whole.substr(0, kept))) << kept;
    }
}

TEST(TornFiles, ATelemetryThatEndsInZerosNamesNoFrequencyOutsideTheWholeOnes) {
    const std::string whole = TelemetryFile().text();
    const Telemetry right = parseTelemetry(whole);
    for (std::size_t kept = 0; kept < whole.size(); kept++) {
        std::string torn = whole;
        std::fill(torn.begin() + static_cast<std::ptrdiff_t>(kept), torn.end(), '\0');
        const Telemetry read = parseTelemetry(torn);
        const std::int32_t active = read.radios[0].active;
        EXPECT_TRUE(active == 0 || active == right.radios[0].active || active < 118000) << kept << ": " << active;
        EXPECT_FALSE(isFresh(read, right.updated + 3600.0)) << kept;  // as late as the machine is up again
    }
}

TEST(TornFiles, SettingsThatEndInZerosKeepTheirWholeLines) {
    Settings mine;
    mine.theme = 2;
    mine.receive_volume = 55;
    const std::string whole = writeSettingsText(mine);
    const std::size_t themeEnd = whole.find("\r\n", whole.find("\r\ntheme=") + 2);
    const std::size_t volumeEnd = whole.find("\r\n", whole.find("receive_volume="));
    for (std::size_t kept = 0; kept < whole.size(); kept++) {
        std::string torn = whole;
        std::fill(torn.begin() + static_cast<std::ptrdiff_t>(kept), torn.end(), '\0');
        const Settings read = readSettingsText(torn);
        if (kept >= themeEnd) {
            EXPECT_EQ(read.theme, 2) << kept;
        }
        if (kept >= volumeEnd) {
            EXPECT_EQ(read.receive_volume, 55) << kept;
        }
    }
}
