// vantoro: the live instructor beside the simulator. It flies the pilot's
// flights (or a recording, in real time), speaks through the sound card,
// records each flight, and serves the pilot's app to the browser.
#include <CLI/CLI.hpp>
#include <array>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <thread>

#include "app/data_root.h"
#include "app/live_program.h"
#include "app/platform.h"
#include "app/web/web_server.h"
#include "base/files.h"
#include "base/ini.h"
#include "base/numbers.h"
#include "link/flightgear_protocol.h"
#include "link/recording.h"
#include "link/sim_choice.h"
#include "shell/program_folder.h"
#include "shell/settings.h"

namespace vantoro {
namespace {

constexpr int kExitUsage = 2;
constexpr int kExitReport = 70;
constexpr int kDefaultPort = 8470;
// After the standard failure report the app is given this long to show it.
constexpr std::chrono::seconds kReportShownFor{3};

struct Options {
  std::string root;
  int port = kDefaultPort;
  std::string listen;
  bool noBrowser = false;
  std::string replay;
  std::string sim;
  std::string simHost;
  int simPort = 0;
  std::string pilot;
  double speed = 1.0;
};

// What the pilot sees in the terminal: the status line, notices, captions
// and the failure report.
class ConsoleEvents final : public Events {
 public:
  void Emit(const Event& e) override {
    if (e.type == "status" || e.type == "notice")
      std::cout << e.Text("text") << std::endl;
    else if (e.type == "spoken" && !e.Text("caption").empty())
      std::cout << "  " << e.Text("caption") << std::endl;
    else if (e.type == "error")
      std::cerr << e.Text("text") << std::endl;
  }
  using Events::Emit;
};

// The simulator link: --sim and its host and port, else the settings' choice.
// FlightGear needs its protocol definition in its own data folder: it is put
// there (or the pilot is told how) before the link listens.
std::unique_ptr<SimLink> SimulatorLink(const Options& o, const std::string& root,
                                       std::string& error) {
  SimChoice choice{o.sim, o.simHost, o.simPort};
  if (choice.name.empty()) {
    Settings settings;
    if (const auto text = TryReadFile(SettingsPath(root)))
      ReadSettings(ParseINIText(*text, true), settings);
    choice.name = settings.Simulator;
    if (choice.host.empty()) choice.host = settings.SimulatorHost;
    if (choice.port == 0)
      if (const auto port = INIValueNumber(settings.SimulatorPort)) choice.port = CLng(*port);
  }
  if (choice.name == "flightgear")
    std::cout << InstallFlightGearProtocol(FlightGearProtocolXml(), FlightGearDataFolders())
              << std::endl;
  return MakeSimulatorLink(choice, error);
}

int Main(int argc, char** argv) {
  Options o;
  CLI::App cli{"vantoro: the flight instructor beside the simulator, and the pilot's app"};
  cli.add_option("--root", o.root,
                 "data root (default: the data beside the program when writable, else "
                 "the pilot's own folder, copied from it)")
      ->option_text("DIR");
  cli.add_option("--port", o.port, "the app's HTTP port on 127.0.0.1 (default 8470)")
      ->option_text("N")
      ->check(CLI::Range(1, 65535))
      ->capture_default_str();
  cli.add_option("--listen", o.listen,
                 "also listen on ADDRESS; every request then needs the pairing code printed "
                 "at start")
      ->option_text("ADDRESS");
  cli.add_flag("--no-browser", o.noBrowser, "do not open the app in the default browser");
  cli.add_option("--replay", o.replay,
                 "fly a recording (.vrec or .vrec.gz) in real time instead of a simulator")
      ->option_text("FILE");
  cli.add_option("--pilot", o.pilot, "pilot file to fly with (default: the settings' last pilot)")
      ->option_text("FILE");
  cli.add_option("--sim", o.sim, "the simulator link: fsuipc (Windows), flightgear, xplane")
      ->option_text("NAME")
      ->check(CLI::IsMember({"fsuipc", "flightgear", "xplane"}));
  cli.add_option("--sim-host", o.simHost,
                 "where the simulator runs (X-Plane; FlightGear's property server), default "
                 "this computer")
      ->option_text("HOST");
  cli.add_option("--sim-port", o.simPort,
                 "the simulator's port: FlightGear's data port (5500), X-Plane's (49000)")
      ->option_text("N")
      ->check(CLI::Range(1, 65535));
  cli.add_option("--speed", o.speed,
                 "run the timers N times faster than the clock: a recording flies N times "
                 "faster (a simulator must move on a tick at each poll to keep pace)")
      ->option_text("N")
      ->check(CLI::Range(0.1, 50.0));
  cli.footer(
      "Each live flight is recorded beside the pilot's log (PilotRoster/NAME DATE.vrec.gz).\n"
      "Ctrl+C ends the program; the flight's files are closed first.");
  try {
    cli.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    return cli.exit(e);
  } catch (const CLI::ParseError& e) {
    cli.exit(e);
    return kExitUsage;
  }

  StopRequests stopRequests;  // before any thread exists
  LiveParts parts;
  if (!o.replay.empty()) {
    Recording recording;
    std::string error;
    if (!o.sim.empty()) {
      std::cerr << "vantoro: --replay and --sim: one or the other\n";
      return kExitUsage;
    }
    if (!LoadRecording(o.replay, recording, error)) {
      std::cerr << error << '\n';
      return kExitUsage;
    }
    parts.recording = std::make_unique<RecordingFeed>(std::move(recording));
    parts.record = false;
  }

  std::string root = o.root;
  if (root.empty()) {
    std::string note, error;
    root = ChooseDataRoot(DataBesideProgram(argv[0]), UserDataFolder(), note, error);
    if (root.empty()) {
      std::cerr << "vantoro: " << error << '\n';
      return kExitUsage;
    }
    if (!note.empty()) std::cout << note << '\n';
  } else if (std::error_code ec; !std::filesystem::is_directory(root, ec)) {
    std::cerr << "vantoro: no data root folder at " << root << '\n';
    return kExitUsage;
  }

  if (!parts.recording) {
    std::string error;
    parts.sim = SimulatorLink(o, root, error);
    if (!parts.sim) {
      std::cerr << "vantoro: " << error << '\n';
      return kExitUsage;
    }
  }

  std::string pilot;
  if (!o.pilot.empty()) {
    std::error_code ec;
    if (!std::filesystem::is_regular_file(o.pilot, ec)) {
      std::cerr << "vantoro: no such pilot file " << o.pilot << '\n';
      return kExitUsage;
    }
    pilot = std::filesystem::absolute(o.pilot, ec).string();
  }

  SoundOnPlatform(parts);
  ConsoleEvents console;
  parts.alsoTell = &console;
  LiveProgram program(LiveSetup{root, o.speed}, std::move(parts));

  // The pilot's app, over the program's mailbox and live feed.
  WebServerOptions appOptions;
  appOptions.root = root;
  appOptions.port = o.port;
  appOptions.lanAddress = o.listen;
  appOptions.onQuit = [&program] { program.Stop(); };
  WebServer app(appOptions, program.mailbox(), program.feed());
  program.stateOf = [](Instructor& in) { return LiveState(in); };
  program.slowStateOf = [](Instructor& in) { return SlowAppState(in); };
  if (std::string error; !app.Start(error)) {
    std::cerr << "vantoro: " << error << '\n';
    return kExitUsage;
  }
  std::cout << "The pilot's app: " << app.Url() << std::endl;
  if (!app.PairingCode().empty())
    std::cout << "Pairing code for other devices: " << app.PairingCode() << std::endl;
  if (!o.noBrowser) OpenBrowser(app.Url());

  program.StartUp(pilot);
  stopRequests.Start(program);
  std::cout << "Vantoro is running; Ctrl+C ends it" << std::endl;
  const int status = program.Run();
  stopRequests.Finished();
  if (status == kExitReport) std::this_thread::sleep_for(kReportShownFor);
  return status;
}

}  // namespace
}  // namespace vantoro

int main(int argc, char** argv) {
  return vantoro::Main(argc, argv);
}
