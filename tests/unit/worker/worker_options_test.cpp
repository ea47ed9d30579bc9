#include "worker/worker_options.h"
#include <gtest/gtest.h>

namespace {

const std::vector<std::string> kPluginArguments = {"--data-dir", "C:\\Users\\a b\\Corvalis", "--watch-pid", "4242"};

WorkerOptions parsed(const std::vector<std::string>& arguments) {
    WorkerOptions options;
    std::string error;
    EXPECT_TRUE(parseArguments(arguments, options, error)) << error;
    return options;
}

std::string errorOf(const std::vector<std::string>& arguments) {
    WorkerOptions options;
    std::string error;
    EXPECT_FALSE(parseArguments(arguments, options, error));
    return error;
}

}  // namespace

TEST(WorkerArguments, ReadsWhatThePluginPasses) {
    const auto options = parsed(kPluginArguments);
    EXPECT_EQ(options.dataDir, "C:\\Users\\a b\\Corvalis");
    EXPECT_EQ(options.watchPid, 4242u);
    EXPECT_FALSE(options.link);
    EXPECT_EQ(options.script, "");
}

TEST(WorkerArguments, ReadsSimulateWithAndWithoutAScript) {
    const auto bare = parsed({"--simulate", "--data-dir", "C:\\d"});
    EXPECT_EQ(bare.link, LinkKind::kSimulate);
    EXPECT_EQ(bare.script, "");
    EXPECT_EQ(bare.dataDir, "C:\\d");
    const auto last = parsed({"--data-dir", "C:\\d", "--simulate"});
    EXPECT_EQ(last.link, LinkKind::kSimulate);
    const auto scripted = parsed({"--data-dir", "C:\\d", "--simulate", "flight.txt"});
    EXPECT_EQ(scripted.script, "flight.txt");
}

TEST(WorkerArguments, ReadsTheAddressOfASimulatorElsewhere) {
    const auto options = parsed({"--data-dir", "d", "--address", "192.168.1.20:500"});
    EXPECT_EQ(options.address, (HostPort{"192.168.1.20", 500}));
    EXPECT_EQ(options.link, LinkKind::kAuto);  // overrides link=simulate in worker.ini
    EXPECT_EQ(errorOf({"--data-dir", "d", "--address"}), "--address needs a value");
    EXPECT_EQ(errorOf({"--data-dir", "d", "--address", "simpc"}),
              "--address needs an address as in simpc:500 or [fe80::1]:500, not simpc");
    const std::string both = "--simulate and --address exclude each other";
    EXPECT_EQ(errorOf({"--data-dir", "d", "--address", "simpc:500", "--simulate"}), both);
    EXPECT_EQ(errorOf({"--data-dir", "d", "--simulate", "a.txt", "--address", "simpc:500"}), both);
}

TEST(WorkerArguments, ReadTheKindOfSimulator) {
    EXPECT_EQ(parsed({"--data-dir", "d", "--link", "auto"}).link, LinkKind::kAuto);
    EXPECT_EQ(parsed({"--data-dir", "d", "--link", "simconnect"}).link, LinkKind::kSimConnect);
    EXPECT_EQ(parsed({"--data-dir", "d", "--link", "xplane"}).link, LinkKind::kXPlane);
    EXPECT_EQ(parsed({"--data-dir", "d", "--link", "simulate"}).link, LinkKind::kSimulate);
    EXPECT_EQ(errorOf({"--data-dir", "d", "--link", "xPlane"}),
              "--link needs auto, simconnect, xplane or simulate, not xPlane");
    EXPECT_EQ(errorOf({"--data-dir", "d", "--link"}), "--link needs a value");
    const auto elsewhere = parsed({"--data-dir", "d", "--address", "simpc", "--link", "xplane"});
    EXPECT_EQ(elsewhere.link, LinkKind::kXPlane);
    EXPECT_EQ(elsewhere.address, (HostPort{"simpc", 49000}));
    EXPECT_EQ(parsed({"--data-dir", "d", "--link", "xplane", "--address", "[::1]:5"}).address, (HostPort{"::1", 5}));
    EXPECT_EQ(errorOf({"--data-dir", "d", "--link", "simconnect", "--address", "simpc"}),
              "--address needs an address as in simpc:500 or [fe80::1]:500, not simpc");
    EXPECT_EQ(errorOf({"--data-dir", "d", "--link", "simulate", "--address", "simpc:500"}),
              "--simulate and --address exclude each other");
}

TEST(WorkerArguments, ReadWhereTheBeaconIsSentTo) {
    EXPECT_EQ(parsed(kPluginArguments).beacon, std::nullopt);
    EXPECT_EQ(parsed({"--data-dir", "d", "--beacon", "127.0.0.1:5000"}).beacon, (xplane::Endpoint{0x7F000001, 5000}));
    EXPECT_EQ(parsed({"--data-dir", "d", "--beacon", "239.255.1.1:49707"}).beacon, xplane::kBeaconGroup);
    for (const std::string bad : {"127.0.0.1", "simpc:500", "[::1]:500", "1.2.3:5", "1.2.3.4.5:5", "1.2.3.256:5",
                                  "1.2.3.4.:5", "1..3.4:5", "1.2.3.-4:5"}) {
        EXPECT_EQ(errorOf({"--data-dir", "d", "--beacon", bad}),
                  "--beacon needs an IPv4 address as in 239.255.1.1:49707, not " + bad);
    }
}

TEST(HostPortText, NeedsNoPortWhereThereIsAUsualOne) {
    const struct {
        const char* text;
        HostPort address;
    } good[] = {{"simpc", {"simpc", 49000}},
                {"simpc:500", {"simpc", 500}},
                {"10.0.0.1", {"10.0.0.1", 49000}},
                {"[fe80::1]", {"fe80::1", 49000}},
                {"[fe80::1]:500", {"fe80::1", 500}}};
    for (const auto& row : good) EXPECT_EQ(parseHostPort(row.text, 49000), row.address) << row.text;
    for (const std::string bad : {"", ":", "simpc:", ":500", "simpc:0", "fe80::1", "[]", "[simpc]", "[::1", "::1]",
                                  "a b", "simpc/x", "simpc:500:600"}) {
        EXPECT_EQ(parseHostPort(bad, 49000), std::nullopt) << bad;
    }
}

TEST(HostPortText, ReadsNamesAndBothKindsOfAddresses) {
    const struct {
        const char* text;
        HostPort address;
    } good[] = {{"simpc:500", {"simpc", 500}},
                {"sim-pc.home.arpa:65535", {"sim-pc.home.arpa", 65535}},
                {"192.168.1.20:1", {"192.168.1.20", 1}},
                {"[::1]:500", {"::1", 500}},
                {"[fe80::1%eth0]:500", {"fe80::1%eth0", 500}},
                {"[::ffff:10.0.0.1]:500", {"::ffff:10.0.0.1", 500}}};
    for (const auto& row : good) {
        EXPECT_EQ(parseHostPort(row.text), row.address) << row.text;
        EXPECT_EQ(hostPortText(row.address), row.text);
    }
    for (const std::string bad : {"",
                                  ":",
                                  "simpc",
                                  "simpc:",
                                  ":500",
                                  "simpc:0",
                                  "simpc:65536",
                                  "simpc:-1",
                                  "simpc:+1",
                                  "simpc:500 ",
                                  " simpc:500",
                                  "simpc:5x",
                                  "fe80::1:500",
                                  "[::1]",
                                  "[::1]500",
                                  "[]:500",
                                  "[simpc]:500",
                                  "[::1:500",
                                  "::1]:500",
                                  "a b:500",
                                  "http://simpc:500",
                                  "simpc/x:500",
                                  "simpc:500:600",
                                  "\xE9:500"}) {
        EXPECT_EQ(parseHostPort(bad), std::nullopt) << bad;
    }
    std::string longest(253, 'a');
    EXPECT_TRUE(parseHostPort(longest.append(":500")));
    EXPECT_EQ(parseHostPort(longest.insert(0, 1, 'a')), std::nullopt);
}

TEST(WorkerArguments, NamesWhatItDoesNotUnderstand) {
    const std::string pid = "--watch-pid needs a process id, not ";
    EXPECT_EQ(errorOf({}), "--data-dir is missing");
    EXPECT_EQ(errorOf({"--data-dir"}), "--data-dir needs a value");
    EXPECT_EQ(errorOf({"--data-dir", "--watch-pid", "1"}), "--data-dir needs a value");
    EXPECT_EQ(errorOf({"--data-dir", "d", "--watch-pid"}), "--watch-pid needs a value");
    for (const std::string bad : {"0", "-1", "12x", "4294967296", "", "0x10", " 1"}) {
        EXPECT_EQ(errorOf({"--data-dir", "d", "--watch-pid", bad}), pid + bad);
    }
    EXPECT_EQ(errorOf({"--data-dir", "d", "--verbose"}), "unknown argument --verbose");
    EXPECT_EQ(errorOf({"--data-dir", "d", "stray"}), "unknown argument stray");
}

TEST(WorkerArguments, ADiagnosisNeedsNoDataFolder) {
    const auto bare = parsed({"--diagnose"});
    EXPECT_TRUE(bare.diagnose);
    EXPECT_EQ(bare.dataDir, "");
    const auto placed = parsed({"--data-dir", "C:\\d", "--diagnose", "--address", "simpc:500"});
    EXPECT_TRUE(placed.diagnose);
    EXPECT_EQ(placed.dataDir, "C:\\d");
    EXPECT_EQ(placed.address, (HostPort{"simpc", 500}));
    EXPECT_FALSE(parsed(kPluginArguments).diagnose);
    EXPECT_EQ(errorOf({"--diagnose", "C:\\d"}), "unknown argument C:\\d");
    EXPECT_EQ(errorOf({"--diagnose", "--data-dir"}), "--data-dir needs a value");
}

TEST(WorkerOptionsText, NamesWhatTheLinkIsSetTo) {
    WorkerOptions options;
    EXPECT_EQ(describeLink(options), "link auto, simulator on this computer or X-Plane where it is heard");
    options.address = HostPort{"simpc", 500};
    EXPECT_EQ(describeLink(options), "link auto, simulator at simpc:500 or X-Plane where it is heard");
    options.link = LinkKind::kXPlane;
    EXPECT_EQ(describeLink(options), "link xplane, simulator at simpc:500");
    options.address.reset();
    EXPECT_EQ(describeLink(options), "link xplane, simulator where it is heard");
    options.beacon = xplane::Endpoint{0x7F000001, 5000};
    EXPECT_EQ(describeLink(options), "link xplane, simulator where it is heard, listening at 127.0.0.1:5000");
    options.link = LinkKind::kSimConnect;
    EXPECT_EQ(describeLink(options), "link simconnect, simulator on this computer");
    options.link = LinkKind::kSimulate;
    EXPECT_EQ(describeLink(options), "link simulate, script none");
    options.script = "a.txt";
    EXPECT_EQ(describeLink(options), "link simulate, script a.txt");
}

TEST(WorkerArguments, KeepsTheDataFolderOfABadLineForTheLog) {
    WorkerOptions options;
    std::string error;
    EXPECT_FALSE(parseArguments({"--bogus", "--data-dir", "C:\\d"}, options, error));
    EXPECT_EQ(options.dataDir, "C:\\d");
}

TEST(WorkerIni, FillsWhatTheCommandLineLeftOpen) {
    auto options = parsed(kPluginArguments);
    const auto remarks =
        applyIni("\xEF\xBB\xBF; worker\r\n# more\r\n[worker]\r\n link = simulate \r\nscript=flights\\a.txt", options);
    EXPECT_TRUE(remarks.empty());
    EXPECT_EQ(options.link, LinkKind::kSimulate);
    EXPECT_EQ(options.script, "C:\\Users\\a b\\Corvalis\\flights\\a.txt");
}

TEST(WorkerIni, TheCommandLineWins) {
    auto options = parsed({"--data-dir", "C:\\d", "--simulate", "mine.txt"});
    applyIni("link=auto\nscript=other.txt\n", options);
    EXPECT_EQ(options.link, LinkKind::kSimulate);
    EXPECT_EQ(options.script, "mine.txt");
}

TEST(WorkerIni, ReadsTheAddressOfASimulatorElsewhere) {
    auto options = parsed(kPluginArguments);
    EXPECT_EQ(
        applyIni("address = simpc:500\naddress = here\n", options),
        (std::vector<std::string>{"worker.ini line 2 ignored: it needs an address as in simpc:500 or [fe80::1]:500"}));
    EXPECT_EQ(options.address, (HostPort{"simpc", 500}));
    options = parsed({"--data-dir", "d", "--address", "other:1"});
    applyIni("link=simulate\naddress=simpc:500\n", options);
    EXPECT_EQ(options.address, (HostPort{"other", 1}));
    EXPECT_EQ(options.link, LinkKind::kAuto);
}

TEST(WorkerIni, ReadsTheKindOfSimulatorAndItsAddressInAnyOrder) {
    for (const std::string text : {"link=xplane\naddress=simpc\n", "address=simpc\nlink=xplane\n"}) {
        auto options = parsed(kPluginArguments);
        EXPECT_TRUE(applyIni(text, options).empty());
        EXPECT_EQ(options.link, LinkKind::kXPlane);
        EXPECT_EQ(options.address, (HostPort{"simpc", 49000}));
    }
    auto options = parsed(kPluginArguments);
    EXPECT_EQ(
        applyIni("address=simpc\nlink=simconnect\nbeacon=here\nbeacon=127.0.0.1:5\n", options),
        (std::vector<std::string>{"worker.ini line 1 ignored: it needs an address as in simpc:500 or [fe80::1]:500",
                                  "worker.ini line 3 ignored: it needs an IPv4 address as in 239.255.1.1:49707"}));
    EXPECT_EQ(options.link, LinkKind::kSimConnect);
    EXPECT_EQ(options.address, std::nullopt);
    EXPECT_EQ(options.beacon, (xplane::Endpoint{0x7F000001, 5}));
    // The command line wins, and says what an address may look like.
    options = parsed({"--data-dir", "d", "--link", "xplane", "--beacon", "127.0.0.1:6"});
    EXPECT_TRUE(applyIni("link=simconnect\naddress=simpc\nbeacon=127.0.0.1:5\n", options).empty());
    EXPECT_EQ(options.link, LinkKind::kXPlane);
    EXPECT_EQ(options.address, (HostPort{"simpc", 49000}));
    EXPECT_EQ(options.beacon, (xplane::Endpoint{0x7F000001, 6}));
}

TEST(WorkerIni, LeavesAnAbsoluteOrQuotedPathAlone) {
    for (const std::string path : {"D:\\x.txt", "\\\\server\\share\\x.txt", "\\x.txt", "/x.txt"}) {
        auto options = parsed(kPluginArguments);
        applyIni("script=\"" + path + "\"\n", options);
        EXPECT_EQ(options.script, path);
    }
}

TEST(WorkerIni, RemarksOnEveryLineItIgnores) {
    auto options = parsed(kPluginArguments);
    const auto remarks = applyIni("speed=3\n\nlink=maybe\nscript\nlink=simulate\nlink=auto\n", options);
    const std::vector<std::string> expected = {
        "worker.ini line 1 ignored: it has an unknown key",
        "worker.ini line 3 ignored: it needs auto, simconnect, xplane or simulate",
        "worker.ini line 4 ignored: it has no =",
    };
    EXPECT_EQ(remarks, expected);
    EXPECT_EQ(options.link, LinkKind::kAuto);  // the last one counts
}

TEST(WorkerIni, SurvivesTheHugeAndTheDamaged) {
    auto options = parsed(kPluginArguments);
    EXPECT_EQ(applyIni("link=simulate\n" + std::string(kMaxIniBytes, 'x'), options).size(), 1u);
    EXPECT_FALSE(options.link);
    EXPECT_EQ(applyIni(std::string(1000, '\n') + std::string(3000, '='), options).size(), 1u);
    std::string many;
    for (int i = 0; i < 100; i++) many += "x\n";
    EXPECT_EQ(applyIni(many, options).size(), 20u);

    const std::string whole = "link=simulate\nscript=a.txt\n";
    for (std::size_t length = 0; length < whole.size(); length++) {
        auto cut = parsed(kPluginArguments);
        applyIni(whole.substr(0, length), cut);
        EXPECT_EQ(cut.link.has_value(), length >= 13) << length;
    }
}
