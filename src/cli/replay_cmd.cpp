// vantoro-cli replay RECORDING [--root DIR] [--pilot FILE] [--plan FILE] [--out DIR]
//                              [--events FILE|-] [--seed N] [--instant]
// Replays a recording through the whole instructor and tells what it did: a
// transcript, or JSON lines with --events. Everything is checked before
// anything is written: a bad recording or option ends with status 2.
#include <CLI/CLI.hpp>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <sstream>
#include <system_error>

#include "base/failure.h"
#include "base/files.h"
#include "base/ini.h"
#include "cli/commands.h"
#include "cli/event_writers.h"
#include "link/recording.h"
#include "shell/replay.h"
#include "shell/startup.h"
#include "world/flight_plan.h"

namespace fs = std::filesystem;

namespace vantoro {

namespace {

struct ReplayArgs {
  std::string recording;
  std::string root;
  std::string pilot;
  std::string plan;
  std::string out;
  std::string events;
  uint64_t seed = 1;
  bool instant = false;
};

std::string MakeTemporaryFolder() {
  std::error_code ec;
  fs::path base = fs::temp_directory_path(ec);
  if (ec) base = "/tmp";
  std::string pattern = (base / "vantoro-replay-XXXXXX").string();
  if (mkdtemp(pattern.data()) == nullptr) return {};
  return pattern;
}

}  // namespace

int ReplayCommand(const CommandArgs& args, CliContext& cli) {
  ReplayArgs a;
  CLI::App app("Replays a recording through the whole instructor and tells what it did.",
               "vantoro-cli replay");
  app.add_option("RECORDING", a.recording, "the recording (.vrec or .vrec.gz)")->required();
  app.add_option("--root", a.root,
                 "program root folder (default: the data folder beside the program)");
  app.add_option("--pilot", a.pilot, "pilot file to fly with (default: the settings' last pilot)");
  app.add_option("--plan", a.plan, "a flight plan (either form) loaded before the first tick");
  app.add_option("--out", a.out, "folder for the pilot's copy, flight log and log book");
  app.add_option("--events", a.events, "events as JSON lines to FILE (- for standard output)");
  app.add_option("--seed", a.seed, "seed of the random draws");
  app.add_flag("--instant", a.instant, "every sound plays for 0 s");
  int parsed = kExitOk;
  if (!ParseCommandLine(app, args, cli, parsed)) return parsed;
  std::string error;
  Recording recording;
  if (!LoadRecording(a.recording, recording, error)) {
    cli.err << error << '\n';
    return kExitBadInput;
  }
  std::error_code ec;
  if (a.root.empty()) a.root = DefaultRoot(cli);
  if (a.root.empty() || !fs::is_directory(a.root, ec)) {
    cli.err << "vantoro-cli replay: no program root folder"
            << (a.root.empty() ? std::string(" beside the program; name one with --root")
                               : " at " + a.root)
            << '\n';
    return kExitBadInput;
  }
  // The pilot named, else the last pilot of the root's settings (the sample
  // pilot when the root has no settings file yet).
  std::string pilot = a.pilot;
  if (pilot.empty()) {
    const NoRegistry registry;
    const std::string last = LastPilotFile(a.root, registry);
    if (FileExists(last)) {
      pilot = *FindNoCase(last);
    } else if (!last.empty()) {
      cli.err << "vantoro-cli replay: no pilot file " << NativePath(last)
              << "; flying without one\n";
    }
  } else if (!FileExists(pilot)) {
    cli.err << "vantoro-cli replay: no such pilot file " << pilot << '\n';
    return kExitBadInput;
  }
  // The plan is read as the flight plan page reads it; a plan that cannot be
  // read whole stops the replay before anything runs.
  FlightPlan plan;
  if (!a.plan.empty()) {
    Notices notices;
    if (!ProcessFlightPlan(a.plan, plan, &notices)) {
      cli.err << "vantoro-cli replay: no such flight plan " << a.plan << '\n';
      return kExitBadInput;
    }
    for (const Notice& n : notices) cli.err << NoticeText(n) << '\n';
    if (!notices.empty()) return kExitBadInput;
  }
  if (!a.events.empty() && a.events != "-") {
    const fs::path folder = fs::path(a.events).parent_path();
    if (!folder.empty() && !fs::is_directory(folder, ec)) {
      cli.err << "vantoro-cli replay: no folder " << folder.string() << " for the events\n";
      return kExitBadInput;
    }
  }

  // From here on files are written.
  const bool temporaryOut = a.out.empty();
  if (temporaryOut) {
    a.out = MakeTemporaryFolder();
  } else {
    fs::create_directories(a.out, ec);
  }
  if (a.out.empty() || !fs::is_directory(a.out, ec)) {
    cli.err << "vantoro-cli replay: cannot make the output folder " << a.out << '\n';
    return kExitBadInput;
  }
  std::string pilotCopy;
  if (!pilot.empty()) {
    const std::string copy = (fs::path(a.out) / fs::path(pilot).filename()).string();
    pilotCopy = copy;
    if (!WriteFileAtomic(copy, ReadFile(pilot))) {
      cli.err << "vantoro-cli replay: cannot copy the pilot file to " << copy << '\n';
      return kExitBadInput;
    }
  }

  std::ostringstream eventsText;
  EventFanOut fan;
  JsonLinesWriter json(a.events == "-" ? cli.out : eventsText);
  if (!a.events.empty()) fan.Add(&json);
  std::ostream& notes = a.events == "-" ? cli.err : cli.out;

  // The replay and the transcript outlive the try, so that a failure is
  // told in the same story with the tick it happened in.
  std::unique_ptr<Replay> replay;
  std::unique_ptr<Transcript> transcript;
  int status = kExitOk;
  auto fail = [&](const FailureReport& f) {
    cli.err << f.Report() << '\n';
    fan.Emit(replay ? replay->instructor().flight.TickCount : 0, "error", {{"text", f.Report()}});
    status = kExitFailure;
  };
  try {
    // The flight log and the log book are written beside the pilot's copy, and
    // the score marker files in the same folder, not in the program's.
    replay = std::make_unique<Replay>(
        ReplaySetup{a.root, a.seed, a.instant, pilotCopy, TidyFolder(a.out)}, fan);
    for (const Notice& n : replay->StartupNotices())
      cli.err << "vantoro-cli replay: " << NoticeText(n) << '\n';
    if (replay->PilotFailed()) return kExitBadInput;
    // Loaded before the first tick, as if chosen on the flight plan page.
    replay->instructor().plan = plan;
    if (a.events.empty()) {
      transcript = std::make_unique<Transcript>(cli.out, replay->VirtualMs());
      fan.Add(transcript.get());
    }
    replay->Run(recording);
  } catch (const FailureReport& f) {
    fail(f);
  } catch (const std::exception& e) {
    fail(FailureReport(kErrInvalidCall, e.what(), "Replay"));
  }
  if (!a.events.empty() && a.events != "-" && !WriteFileAtomic(a.events, eventsText.str())) {
    cli.err << "vantoro-cli replay: cannot write the events to " << a.events << '\n';
    if (status == kExitOk) status = kExitBadInput;
  }
  if (temporaryOut) notes << "The pilot's log files are in " << a.out << '\n';
  cli.out.flush();
  return status;
}

}  // namespace vantoro
