#include "worker/host_names.h"
#include <gtest/gtest.h>
#include "worker/worker_options.h"

namespace {

using Names = std::vector<std::string>;

const Names kNobody;

struct Row {
    const char* line;
    const char* masked;
};

void expectMasked(const std::vector<Row>& rows, const Names& names) {
    for (const auto& row : rows) EXPECT_EQ(maskHostNames(row.line, names), row.masked) << row.line;
}

}  // namespace

TEST(HostNames, AreFoundInTheSettingsAndInWhatTheWorkerSaysOfThem) {
    const struct {
        const char* line;
        Names names;
    } rows[] = {
        {"address=simpc:500", {"simpc"}},
        {"  address = \"SimPC.home.lan:500\" \r", {"SimPC.home.lan"}},
        {"; address=192.168.1.20:500", {"192.168.1.20"}},
        {"Address=[fe80::1%12]:500", {"fe80::1%12"}},
        {"link auto, simulator at simpc:500", {"simpc"}},
        {"data folder C:\\x, watching no process, link auto, simulator at [fe80::1]:500", {"fe80::1"}},
        {"unknown argument --address=simpc:500", {"simpc"}},
        {"address=simpc", {}},
        {"address=simpc:70000", {}},
        {"address=", {}},
        {"address", {}},
        {"address=LocalHost:500", {}},
        {"address=127.0.0.1:500", {}},
        {"address=[::1]:500", {}},
        {"address=7:500", {}},
        {"link auto, simulator on this computer", {}},
        {"", {}},
    };
    for (const auto& row : rows) EXPECT_EQ(findHostNames(row.line), row.names) << row.line;
}

// The words in front of an address are the worker's own: should they change, the mask must know.
TEST(HostNames, AreMaskedInWhatTheWorkerSaysOfItsOptions) {
    WorkerOptions options;
    std::string error;
    ASSERT_TRUE(parseArguments({"--data-dir", "x", "--address", "simpc:500"}, options, error));
    EXPECT_EQ(maskHostNames(describeLink(options), kNobody),
              "link auto, simulator at <host>:500 or X-Plane where it is heard");
    EXPECT_EQ(findHostNames(describeLink(options)), Names{"simpc"});
    ASSERT_FALSE(parseArguments({"--data-dir", "x", "--address", "my gaming pc"}, options, error));
    EXPECT_EQ(maskHostNames(error, kNobody), "--address needs an address as in simpc:500 or [fe80::1]:500, not <host>");
    WorkerOptions xplane;
    ASSERT_TRUE(parseArguments({"--data-dir", "x", "--link", "xplane", "--address", "simpc"}, xplane, error));
    EXPECT_EQ(maskHostNames(describeLink(xplane), kNobody), "link xplane, simulator at <host>:49000");
    EXPECT_EQ(findHostNames(describeLink(xplane)), Names{"simpc"});
    EXPECT_EQ(maskHostNames("X-Plane 12.2.0 found, simulator at 192.168.1.32:49000", kNobody),
              "X-Plane 12.2.0 found, simulator at <host>:49000");
}

TEST(HostNames, AreMaskedWhereAnAddressIsSet) {
    expectMasked(
        {
            {"address=simpc:500", "address=<host>:500"},
            {"address = \"simpc:500\"", "address = \"<host>:500\""},
            {"# address=[fe80::1]:500", "# address=<host>:500"},
            {"address=simpc", "address=<host>"},
            {"address=http://simpc:500/", "address=<host>"},
            {"address=sim pc:500", "address=<host>"},
            {"address=7:500", "address=<host>:500"},
            {"link auto, simulator at simpc:500 and more", "link auto, simulator at <host>:500 and more"},
        },
        kNobody);
}

TEST(HostNames, ThatAreKnownAreMaskedEverywhere) {
    expectMasked(
        {
            {"link down: no such computer: SIMPC", "link down: no such computer: <host>"},
            {"no answer from simpc.", "no answer from <host>."},
            {"{\"status\":\"no answer from simpc\"}", "{\"status\":\"no answer from <host>\"}"},
            {"simpc.home:500, simpc:500", "<host>:500, <host>:500"},
            {"192.168.1.2 (simpc)", "<host> (<host>)"},
            {"[fe80::1]:500", "[<host>]:500"},
            {"script=Z:\\simpc\\a.txt", "script=Z:\\<host>\\a.txt"},
        },
        {"", "simpc", "simpc.home", "192.168.1.2", "fe80::1"});
}

// Also of a name that nobody knows any more, or half a name.
TEST(HostNames, AreMaskedBehindWhatTheWorkerSaysOfTheLink) {
    expectMasked(
        {
            {"DISCONNECTED: no answer from johannes-flight-sim.frit", "DISCONNECTED: no answer from <host>"},
            {"link down: no such computer: my-pc.", "link down: no such computer: <host>."},
            {"link down: no answer from fe80::1", "link down: no answer from <host>"},
            {"link down: no thread to look simpc up", "link down: no thread to look <host> up"},
            {"\"status\":\"no answer from simpc\",\"ack_message\":\"not written: no answer from simpc, or\"",
             "\"status\":\"no answer from <host>\",\"ack_message\":\"not written: no answer from <host>, or\""},
            {"no such computer: a, no answer from b and 'no answer from c'",
             "no such computer: <host>, no answer from <host> and 'no answer from <host>'"},
            {"no answer from LocalHost", "no answer from LocalHost"},
            {"no answer from ::1", "no answer from ::1"},
            {"no answer from ", "no answer from "},
            {"no such computer: ,", "no such computer: ,"},
        },
        kNobody);
    EXPECT_EQ(findHostNames("no answer from simpc:500"), kNobody);  // no address: it may be cut
}

TEST(HostNames, AreMaskedInNetworkPaths) {
    expectMasked(
        {
            {"\\\\nas\\games\\x", "\\\\<host>\\games\\x"},
            {"script=\\\\nas-1.home\\a.txt", "script=\\\\<host>\\a.txt"},
            {"folder \\\\N\xC3\x84S\\Corvalis", "folder \\\\<host>\\Corvalis"},
            {"\"\\\\\\\\nas\\\\games\"", "\"\\\\\\\\<host>\\\\games\""},
            {"python=//nas/python.exe", "python=//<host>/python.exe"},
            {"\\\\?\\UNC\\nas\\games", "\\\\?\\UNC\\<host>\\games"},
            {"\\\\nas", "\\\\<host>"},
        },
        kNobody);
}

TEST(HostNames, LeaveOtherTextsAlone) {
    for (const std::string line :
         {"", "xsimpc simpcs simpc\xC3\xA9 7simpc", "address=localhost:500", "address=[::1]:500",
          "address=", "address of the simulator", "C:\\Users\\<user>\\AppData", "C:\\\\Games\\\\x", "\\\\?\\C:\\Games",
          "\\\\.\\pipe\\Microsoft Flight Simulator\\SimConnect", "https://example.com/x", "a // b", "\\\\", "\\\\..\\x",
          "2026-11-21 06:19:08.354 UTC  link up: flying"}) {
        EXPECT_EQ(maskHostNames(line, {"simpc", ""}), line);
    }
}

TEST(HostNames, MaskedTwiceAreAsMaskedOnce) {
    const Names names = {"simpc", "host", "user", "address"};
    for (const std::string line :
         {"address=simpc:500", "address=sim pc", "at <user> and simpc", "\\\\host\\x", "simulator at host:500",
          "simpc\\\\x", "as in simpc:500 or [fe80::1]:500, not my pc", "address=address:500", "<host> host",
          "no answer from simpc, no such computer: no"}) {
        const auto once = maskHostNames(line, names);
        EXPECT_EQ(maskHostNames(once, names), once) << line;
    }
}

TEST(HostNames, CutAndDamagedLinesDoNoHarm) {
    const std::string line = "address=simpc:500 \\\\nas\\x simulator at [fe80::1]:500, not simpc";
    for (std::size_t length = 0; length <= line.size(); length++) {
        const auto cut = line.substr(0, length);
        EXPECT_EQ(maskHostNames(cut, {"simpc"}).find("simpc"), std::string::npos) << cut;
        findHostNames(cut);
    }
    for (std::size_t at = 0; at < line.size(); at++) {
        for (const char bad : {'\xFF', '\0', '\xC3', '\\', '='}) {
            auto damaged = line;
            damaged[at] = bad;
            EXPECT_LE(maskHostNames(damaged, {"simpc", "\xC3", "\xFF"}).size(), 6 * line.size());
            findHostNames(damaged);
        }
    }
}
