// vantoro-cli record OUT.vrec[.gz] [--ticks N] [--root DIR] [--sim NAME]
// Records the simulator's offsets twice a second through the platform's live
// link, or FlightGear's or X-Plane's. Where no simulator can be linked to, the link's own text says
// so.
#include "cli/record_cmd.h"

#include <CLI/CLI.hpp>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>

#include "base/files.h"
#include "base/gzip.h"
#include "base/text.h"
#include "cli/commands.h"
#include "link/recording.h"
#include "link/sim_choice.h"
#include "shell/startup.h"

namespace vantoro {

namespace {

constexpr auto kTickPeriod = std::chrono::milliseconds(500);
constexpr int kSimulatorWaitTries = 20;

// Ctrl+C asks the recording to end at the next tick. A signal handler can
// reach nothing else than a flag of the process.
volatile std::sig_atomic_t stopAsked = 0;

extern "C" void AskToStop(int) {
  stopAsked = 1;
}

}  // namespace

int RecordLive(SimLink& link, const Clock& clock, const std::string& out,
               const RecordPacing& pacing, std::ostream& err) {
  int result = kLinkOk;
  if (!link.Open(0, result)) {
    err << "vantoro-cli record: "
        << (link.Problem().empty() ? LinkResultText(result) : link.Problem()) << '\n';
    return kExitBadInput;
  }
  const std::string part = out + ".part";
  std::ofstream file(part, std::ios::binary | std::ios::trunc);
  if (!file) {
    link.Close();
    err << "vantoro-cli record: cannot write " << part << '\n';
    return kExitBadInput;
  }

  RecordingWriter writer;
  size_t written = 0;
  // What the writer added since the last call goes to the disk at once.
  auto keep = [&] {
    file.write(writer.Text().data() + written,
               static_cast<std::streamsize>(writer.Text().size() - written));
    file.flush();
    written = writer.Text().size();
    return static_cast<bool>(file);
  };

  writer.Clock(clock.Now());
  bool ok = keep();
  int failures = 0;
  int64_t ticks = 0;
  while (ok && (pacing.maxTicks <= 0 || ticks < pacing.maxTicks)) {
    if (pacing.nextTick && !pacing.nextTick()) break;
    if (writer.Sample(link, result)) {
      failures = 0;
      ++ticks;
    } else if (++failures >= kRecordFailuresGone) {
      writer.Comment(std::string("The simulator went away: ") + LinkResultText(result));
      ok = keep();
      break;
    }
    ok = keep();
  }
  link.Close();
  file.close();

  std::error_code ec;
  if (ok && EndsWith(Upper(out), ".GZ")) {
    ok = WriteFileAtomic(out, GzipText(writer.Text()));
    if (ok) std::filesystem::remove(part, ec);
  } else if (ok) {
    std::filesystem::rename(part, out, ec);
    ok = !ec;
  }
  if (!ok) {
    err << "vantoro-cli record: cannot write " << out << "; the ticks taken are in " << part
        << '\n';
    return kExitBadInput;
  }
  err << "vantoro-cli record: " << ticks << " ticks in " << out << '\n';
  return kExitOk;
}

int RecordCommand(const CommandArgs& args, CliContext& cli) {
  std::string out;
  std::string root;
  int64_t ticks = 0;
  SimChoice sim;
  CLI::App app("Records the simulator's offsets twice a second until Ctrl+C.",
               "vantoro-cli record");
  app.add_option("OUT", out, "the recording to write (.vrec, or .vrec.gz compressed)")->required();
  app.add_option("--ticks", ticks, "stop after N ticks")
      ->check(CLI::Validator(
          [](std::string& text) -> std::string {
            return text.find_first_not_of("0123456789") == std::string::npos &&
                           text.find_first_not_of('0') != std::string::npos
                       ? std::string()
                       : "needs a whole number above 0";
          },
          "N", "ticks"));
  app.add_option("--sim", sim.name, "the simulator link: fsuipc (Windows), flightgear, xplane")
      ->check(CLI::IsMember({"fsuipc", "flightgear", "xplane"}));
  app.add_option("--sim-host", sim.host, "where the simulator runs (default this computer)");
  app.add_option("--sim-port", sim.port, "the simulator's port (FlightGear 5500, X-Plane 49000)")
      ->check(CLI::Range(1, 65535));
  app.add_option("--root", root,
                 "program root folder (default: the data folder beside the program)");
  int parsed = kExitOk;
  if (!ParseCommandLine(app, args, cli, parsed)) return parsed;

  // The program starts as it always does, so that the pilot hears of a
  // damaged settings file before he flies, not after.
  if (root.empty()) root = DefaultRoot(cli);
  if (!root.empty()) {
    Instructor instructor(root, Seams{});
    const std::unique_ptr<Registry> registry = MakePlatformRegistry();
    Startup start(instructor, *registry);
    start.Run();
    for (const Notice& n : start.notices())
      cli.err << "vantoro-cli record: " << NoticeText(n) << '\n';
  }

  std::string error;
  std::unique_ptr<SimLink> link = MakeSimulatorLink(sim, error);
  if (!link) {
    cli.err << "vantoro-cli record: " << error << '\n';
    return kExitBadInput;
  }
  // A simulator that streams its state is heard only once its packets come:
  // it is given a few seconds before the recording starts.
  if (sim.name == "flightgear" || sim.name == "xplane") {
    int result = kLinkOk;
    for (int i = 0; i < kSimulatorWaitTries && !link->Open(0, result); ++i)
      std::this_thread::sleep_for(kTickPeriod);
    link->Close();
  }
  SystemClock clock;
  stopAsked = 0;
  std::signal(SIGINT, AskToStop);
  auto next = std::chrono::steady_clock::now();
  RecordPacing pacing;
  pacing.maxTicks = ticks;
  pacing.nextTick = [&] {
    std::this_thread::sleep_until(next);
    next += kTickPeriod;
    return stopAsked == 0;
  };
  const int status = RecordLive(*link, clock, out, pacing, cli.err);
  std::signal(SIGINT, SIG_DFL);
  return status;
}

}  // namespace vantoro
