#include "worker/diagnosis.h"
#include <algorithm>
#include <string_view>
#include <utility>
#include "base/log_line.h"
#include "base/number_text.h"
#include "base/utf8.h"
#include "exchange/command_text.h"
#include "exchange/support_files.h"
#include "exchange/telemetry_text.h"
#include "worker/host_names.h"
#include "worker/user_names.h"
#include "worker/worker_log.h"

namespace {

using Lines = std::vector<std::string>;

constexpr std::size_t kMaxHostNames = 100;  // a damaged log may name any number; each is looked for in every line

// Every line of the report passes through here, so that each is masked.
class Report {
  public:
    Report(const Diagnosis& found, Lines hostNames, const NarrowDecoder& decodeNarrow)
        : found_(found), hostNames_(std::move(hostNames)), decodeNarrow_(decodeNarrow) {}

    void line(std::string_view text = {}) {
        const auto readable = readableLine(text, decodeNarrow_);
        const auto masked = maskHostNames(maskUserNames(readable, found_.accountNames), hostNames_);
        text_ += cutUtf8(masked, kMaxShownLineBytes);
        if (masked.size() > kMaxShownLineBytes) text_ += "... (line cut)";
        text_ += "\r\n";
    }
    void section(const std::string& title) {
        line();
        line("== " + title);
    }
    // One fact: its name in a column of its own.
    void fact(std::string name, const std::string& value) {
        constexpr std::size_t kColumn = 16;
        if (name.size() < kColumn) name.append(kColumn - name.size(), ' ');
        line(name + value);
    }
    std::string take() { return std::move(text_); }

  private:
    const Diagnosis& found_;
    const Lines hostNames_;  // masked wherever they stand
    const NarrowDecoder& decodeNarrow_;
    std::string text_;
};

std::string durationText(double seconds) {
    const struct {
        double below, unit;
        int decimals;
        const char* name;
    } rows[] = {{10.0, 1.0, 1, " s"}, {120.0, 1.0, 0, " s"}, {7'200.0, 60.0, 0, " min"}, {172'800.0, 3'600.0, 0, " h"}};
    for (const auto& row : rows) {
        if (seconds < row.below) return formatFixed(seconds / row.unit, row.decimals) + row.name;
    }
    return formatFixed(seconds / 86'400.0, 0) + " days";
}

std::string ageText(double thenUnixSeconds, double nowUnixSeconds) {
    const double age = nowUnixSeconds - thenUnixSeconds;
    return age >= 0.0 ? durationText(age) + " ago" : durationText(-age) + " in the future";
}

std::string writtenText(double writtenUnixSeconds, double nowUnixSeconds) {
    return utcText(writtenUnixSeconds) + " (" + ageText(writtenUnixSeconds, nowUnixSeconds) + ")";
}

bool isRead(const FoundFile& file) {
    return file.state == FoundFile::State::kRead;
}

std::string fileTitle(const std::string& name, const FoundFile& file, double nowUnixSeconds) {
    if (file.state == FoundFile::State::kMissing) return name + ": there is none";
    if (!isRead(file)) return name + ": there, but cannot be read";
    return name + ": " + std::to_string(file.size) + " bytes, written " +
           writtenText(file.writtenUnixSeconds, nowUnixSeconds);
}

void showFile(Report& report, const std::string& name, const FoundFile& file, const Diagnosis& found) {
    report.section(fileTitle(name, file, found.nowUnixSeconds));
    const auto lines = splitLines(file.bytes);
    const auto shown = std::min(lines.size(), kMaxShownLines);
    for (std::size_t i = 0; i < shown; i++) report.line(lines[i]);
    if (shown < lines.size()) report.line("... (" + std::to_string(lines.size() - shown) + " more lines)");
    if (file.size > file.bytes.size() && isRead(file)) report.line("... (only its beginning was looked at)");
}

void showVersions(Report& report, const Diagnosis& found) {
    report.section("Versions");
    report.fact("worker", found.workerVersion);
    report.fact("protocol", formatGeneral(kTelemetryProtocol));
    const bool isOther = !found.pluginVersion.empty() && found.pluginVersion != found.workerVersion;
    report.fact("plugin",
                (found.pluginVersion.empty() ? "no version to be read beside the worker" : found.pluginVersion) +
                    (isOther ? " - not the worker's: one of the two was not replaced" : ""));
    report.fact("Windows", found.windowsVersion);
    report.fact("program folder", found.programFolder);
    if (!found.commandLineProblem.empty()) report.fact("command line", found.commandLineProblem);
}

void showFolder(Report& report, const Diagnosis& found) {
    report.section("Data folder");
    report.fact("folder", found.dataFolder);
    report.fact("chosen by", found.dataFolderOrigin);
    report.fact("state", !found.folderExists    ? "does not exist: the plugin makes it when it starts"
                         : found.folderWritable ? "exists, can be written"
                                                : "exists, cannot be written");
    for (const auto& entry : found.entries) {
        report.fact(entry.isFolder ? "  folder" : "  " + std::to_string(entry.size),
                    entry.name + ", " + writtenText(entry.writtenUnixSeconds, found.nowUnixSeconds));
    }
    if (found.moreEntries > 0) report.line("  ... (" + std::to_string(found.moreEntries) + " more)");
}

// What the plugin makes of the file.
std::string judgeTelemetry(const Telemetry& telemetry, double nowUnixSeconds) {
    if (isFresh(telemetry, nowUnixSeconds)) return "used by the plugin: it shows CONNECTED";
    if (telemetry.protocol != kTelemetryProtocol) {
        return "not used by the plugin: protocol " + formatGeneral(telemetry.protocol);
    }
    if (!telemetry.ok && isTimely(telemetry, nowUnixSeconds)) {
        const std::string why = telemetry.status.empty() ? "" : " (" + telemetry.status + ')';
        return "not used by the plugin: the worker has no live data" + why;
    }
    return "not used by the plugin: updated " + ageText(telemetry.updated, nowUnixSeconds);
}

void showTelemetry(Report& report, const Diagnosis& found) {
    showFile(report, kTelemetryFile, found.telemetry, found);
    if (!isRead(found.telemetry)) return;
    const auto telemetry = parseTelemetry(found.telemetry.bytes);
    report.fact("updated", writtenText(telemetry.updated, found.nowUnixSeconds));
    report.fact("judgement", judgeTelemetry(telemetry, found.nowUnixSeconds));
}

void showCommand(Report& report, const Diagnosis& found) {
    showFile(report, kCommandFile, found.command, found);
    if (!isRead(found.command)) return;
    const auto command = found.command.size <= kMaxCommandBytes ? parseCommandText(found.command.bytes) : std::nullopt;
    const bool isAnswered = command && command->id == lastAckId(found.telemetry.bytes);
    report.fact("judgement", !command     ? "no command"
                             : isAnswered ? "acknowledged"
                                          : "pending: not acknowledged in telemetry.json");
}

// The lines of both logs, the older log first. If only a log's end was read, its first line is incomplete and left out.
Lines logLines(const Diagnosis& found) {
    Lines all;
    for (const auto* file : {&found.oldLog, &found.log}) {
        const auto lines = splitLines(file->bytes);
        const bool isCut = file->size > file->bytes.size() && !lines.empty();
        all.insert(all.end(), lines.begin() + (isCut ? 1 : 0), lines.end());
    }
    return all;
}

Lines linkLines(const Lines& log) {
    Lines lines;
    for (const auto& line : log) {
        const bool isLink =
            line.find("  link up: ") != std::string::npos || line.find("  link down: ") != std::string::npos;
        if (isLink) lines.push_back(line);
    }
    return lines;
}

// The computers that the settings and the logs give as the simulator's, each once.
Lines hostNamesOf(const Diagnosis& found, const Lines& log) {
    Lines names;
    const auto addFrom = [&](const std::string& line) {
        for (auto& name : findHostNames(line)) {
            if (names.size() < kMaxHostNames && std::find(names.begin(), names.end(), name) == names.end())
                names.push_back(std::move(name));
        }
    };
    addFrom(found.linkKind);
    addFrom(found.commandLineProblem);
    for (const auto& line : splitLines(found.workerIni.bytes)) addFrom(line);
    std::for_each(log.rbegin(), log.rend(), addFrom);  // the newest first
    return names;
}

void showLast(Report& report, const Lines& lines, std::size_t count) {
    const auto first = lines.size() - std::min(count, lines.size());
    for (std::size_t i = first; i < lines.size(); i++) report.line(lines[i]);
}

void showLink(Report& report, const Diagnosis& found, const Lines& log) {
    report.section("Link");
    report.fact("set to", found.linkKind);
    for (const auto& remark : found.iniRemarks) report.fact("worker.ini", remark);
    report.fact("worker", found.otherWorkerRuns ? "one serves this folder; the link is its own and was not tried"
                                                : "none serves this folder just now");
    if (found.trial) {
        for (const auto& note : found.trial->notes) report.fact("tried", note);
        report.fact("tried", std::string(found.trial->isUp ? "link up" : "link down") + " after " +
                                 formatFixed(static_cast<double>(found.trial->ms) / 1000.0, 1) +
                                 " s: " + found.trial->status);
    }
    const auto lines = linkLines(log);
    report.line(lines.empty() ? "The log has no line on the link." : "Last in the log:");
    showLast(report, lines, kMaxShownLinkLines);
}

void showLog(Report& report, const Diagnosis& found, const Lines& log) {
    report.section(fileTitle("hopline_worker.old.log", found.oldLog, found.nowUnixSeconds));
    report.section(fileTitle("hopline_worker.log", found.log, found.nowUnixSeconds));
    if (!log.empty()) report.line("Last lines of both, " + std::to_string(kMaxShownLines) + " at most:");
    showLast(report, log, kMaxShownLines);
    report.section("Plugin's log");
    report.line("The plugin has no log file: its lines stand in the voice client's own log, channel \"Corvalis\".");
}

}  // namespace

std::string composeDiagnosis(const Diagnosis& found, const NarrowDecoder& decodeNarrow) {
    const auto log = logLines(found);
    Report report(found, hostNamesOf(found, log), decodeNarrow);
    report.line("Corvalis diagnosis, " + utcText(found.nowUnixSeconds));
    report.line(
        "User names in paths are shown as <user>, other computers as <host>. Please read it before you pass it on.");
    showVersions(report, found);
    showFolder(report, found);
    showFile(report, found.settingsBesideDll ? "settings.ini (in the program folder)" : "settings.ini", found.settings,
             found);
    showFile(report, "worker.ini", found.workerIni, found);
    showFile(report, "capture_mode.txt", found.captureMode, found);
    showFile(report, kHostInterfaceFile, found.hostInterface, found);
    showFile(report, kHostAnswerFile, found.hostAnswer, found);
    showFile(report, kLinkStateFile, found.linkState, found);
    showTelemetry(report, found);
    showCommand(report, found);
    showLink(report, found, log);
    showLog(report, found, log);
    return report.take();
}
