// The Windows program as the pilot runs it, under wine: vantoro.exe started
// from a folder whose path has spaces, its app asked over HTTP, the demo
// circuit flown as the offset server plays it (with the simulator gone for a
// while in the climb), no simulator at all, a program folder it cannot write
// to, and the program closed from the app. Also the waveOut sound device on
// wine's sound driver (or none).
//
// VANTORO_PROGRAM names another vantoro.exe to fly the circuit with (a
// release folder's, over the data beside it); VANTORO_LOCKED_PROGRAM a
// vantoro.exe whose data folder it cannot write to (scripts/wine-test.sh
// makes one when the machine lets it).
#include <gtest/gtest.h>
#include <httplib.h>
#include <windows.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "link/recording.h"
#include "test_server.h"

namespace vantoro::testing {
namespace {

namespace fs = std::filesystem;
using json = nlohmann::json;
using namespace std::chrono_literals;

// Wine starts a program in a few seconds on a busy machine; the waits are
// generous and end as soon as the answer is there.
constexpr auto kStartWait = 90s;
constexpr auto kExitWait = 30s;

fs::path OwnFolder() {
  wchar_t path[MAX_PATH] = {};
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  return fs::path(path).parent_path();
}

std::string Environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

// The program's shipped data, copied into a folder whose path has spaces.
// The voice packs, only read, are linked rather than copied when the disk
// allows (they are most of the data).
fs::path FreshRoot(const std::string& name, bool voices = false) {
  const fs::path source = fs::path(VANTORO_SOURCE_DIR) / "data";
  const fs::path root = fs::temp_directory_path() / ("Vantoro test " + name) / "data";
  std::error_code ec;
  fs::remove_all(root.parent_path(), ec);
  fs::create_directories(root);
  for (const fs::directory_entry& entry : fs::directory_iterator(source)) {
    const fs::path to = root / entry.path().filename();
    if (entry.path().filename() == "Sound") {
      if (!voices) continue;
      fs::copy(entry.path(), to, fs::copy_options::recursive | fs::copy_options::create_hard_links,
               ec);
      if (!ec) continue;
      fs::remove_all(to, ec);
    }
    fs::copy(entry.path(), to, fs::copy_options::recursive | fs::copy_options::skip_symlinks, ec);
    EXPECT_FALSE(ec) << entry.path().string() << ": " << ec.message();
  }
  return root;
}

// A program started with its console output in a file of the temporary
// folder; null handle when it could not be started.
PROCESS_INFORMATION StartWithConsoleIn(const fs::path& output, std::wstring command) {
  SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
  HANDLE out = CreateFileW(output.wstring().c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherit,
                           CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  STARTUPINFOW start{};
  start.cb = sizeof start;
  start.dwFlags = STARTF_USESTDHANDLES;
  start.hStdOutput = out;
  start.hStdError = out;
  start.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
  PROCESS_INFORMATION process{};
  if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                      &process))
    process = {};
  CloseHandle(out);
  return process;
}

std::string ReadAll(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

std::wstring Wide(const std::string& text) {
  return std::wstring(text.begin(), text.end());
}

// vantoro.exe running with its console output in a file: the build's, over
// `root` given on its command line, or `program` over the data beside it.
class Program {
 public:
  Program(const fs::path& root, const std::string& arguments, const fs::path& program = {}) {
    port_ = 20000 + static_cast<int>(GetCurrentProcessId() % 20000);
    output_ = fs::temp_directory_path() / ("Vantoro console " + std::to_string(port_) + ".txt");
    std::wstring command = L"\"" +
                           (program.empty() ? OwnFolder() / L"vantoro.exe" : program).wstring() +
                           L"\" --no-browser --port " + std::to_wstring(port_) + L" ";
    if (program.empty()) command += L"--root \"" + root.wstring() + L"\" ";
    command += Wide(arguments);
    process_ = StartWithConsoleIn(output_, command);
    started_ = process_.hProcess != nullptr;
  }
  ~Program() {
    if (!started_) return;
    if (WaitForSingleObject(process_.hProcess, 0) == WAIT_TIMEOUT)
      TerminateProcess(process_.hProcess, 9);
    CloseHandle(process_.hThread);
    CloseHandle(process_.hProcess);
  }

  bool started() const { return started_; }
  std::string Console() const { return ReadAll(output_); }

  // GET path as JSON; null when the program does not answer.
  json Get(const std::string& path) {
    httplib::Client client("127.0.0.1", port_);
    client.set_connection_timeout(2);
    client.set_read_timeout(10);
    auto res = client.Get(path.c_str());
    if (!res || res->status != 200) return nullptr;
    return json::parse(res->body, nullptr, false);
  }
  int Post(const std::string& path, const std::string& body = "{}") {
    httplib::Client client("127.0.0.1", port_);
    client.set_read_timeout(10);
    auto res = client.Post(path.c_str(), body, "application/json");
    return res ? res->status : 0;
  }

  // Told every state document StateWhen reads.
  std::function<void(const json&)> watch;

  // The state document once `ready` holds for it; null after the wait.
  template <typename Ready>
  json StateWhen(Ready ready, std::chrono::seconds wait = kStartWait) {
    const auto until = std::chrono::steady_clock::now() + wait;
    while (std::chrono::steady_clock::now() < until) {
      if (WaitForSingleObject(process_.hProcess, 0) == WAIT_OBJECT_0) return nullptr;
      json state = Get("/api/state");
      if (state.is_object() && watch) watch(state);
      if (state.is_object() && ready(state)) return state;
      std::this_thread::sleep_for(100ms);
    }
    return nullptr;
  }

  // Closes the program from the app; its exit status, or -1 if it did not end.
  long Quit() {
    if (Post("/api/quit") != 200) return -1;
    if (WaitForSingleObject(process_.hProcess, static_cast<DWORD>(kExitWait / 1ms)) !=
        WAIT_OBJECT_0)
      return -1;
    DWORD status = 0;
    GetExitCodeProcess(process_.hProcess, &status);
    return static_cast<long>(status);
  }

 private:
  int port_ = 0;
  fs::path output_;
  bool started_ = false;
  PROCESS_INFORMATION process_{};
};

std::string Text(const json& j, const char* key) {
  return j.is_object() && j.contains(key) && j[key].is_string() ? j[key].get<std::string>() : "";
}

// The files of a folder whose names end in `ending`.
std::vector<fs::path> FilesEndingIn(const fs::path& folder, const std::string& ending) {
  std::vector<fs::path> files;
  std::error_code ec;
  for (const fs::directory_entry& e : fs::directory_iterator(folder, ec)) {
    const std::string name = e.path().filename().string();
    if (name.size() >= ending.size() &&
        name.compare(name.size() - ending.size(), ending.size(), ending) == 0)
      files.push_back(e.path());
  }
  return files;
}

// The timers run this many times faster than the clock; the server moves the
// flight on a tick at each poll, so the flight is the same at any pace.
constexpr int kFlightSpeed = 20;
// The simulator goes away here, in the climb after the take-off.
constexpr uint32_t kOutageAtTick = 474;
constexpr auto kFlightWait = 150s;

TEST(Program, CoachesTheCircuitTheOffsetServerPlaysThroughASimulatorThatGoesAway) {
  // The build's program over a fresh copy of the data, or a release's over
  // its own.
  const fs::path release = Environment("VANTORO_PROGRAM");
  const fs::path root =
      release.empty() ? FreshRoot("flight", true) : release.parent_path() / "data";
  const std::string flight = (root / "Recordings" / "demo-c172-circuit.vrec").string();
  const fs::path pilot = root / "PilotRoster" / "LightSpeed.plt";
  TestServer server;
  ASSERT_TRUE(server.Start("UIPCMAIN", flight));
  Program vantoro(root,
                  "--sim fsuipc --speed " + std::to_string(kFlightSpeed) + " --pilot \"" +
                      pilot.string() + "\"",
                  release);
  ASSERT_TRUE(vantoro.started());

  // What the pilot sees as the flight goes: the modes in turn, the lines the
  // instructor writes on the simulator's screen, the read errors.
  std::vector<std::string> modes, lines;
  int mostReadErrors = 0;
  vantoro.watch = [&](const json& s) {
    const std::string mode = Text(s, "mode");
    if (s.value("connected", false) && (modes.empty() || modes.back() != mode))
      modes.push_back(mode);
    mostReadErrors = std::max(mostReadErrors, s.value("readErrors", 0));
    char line[128] = {};
    std::memcpy(line, &server.control().image[0x3380], sizeof line - 1);
    if (line[0] != 0 && std::find(lines.begin(), lines.end(), line) == lines.end())
      lines.push_back(line);
  };

  const json found = vantoro.StateWhen([](const json& s) { return s.value("linkOpen", false); });
  ASSERT_TRUE(found.is_object()) << vantoro.Console();
  EXPECT_EQ(Text(found, "statusLine").rfind("Status: Monitoring FSX", 0), 0u)
      << Text(found, "statusLine");
  // The handshake wrote the client's number into the server's image.
  EXPECT_NE(server.control().clientVersion, 0u);
  ASSERT_EQ(vantoro.Post("/api/connect"), 200);
  ASSERT_TRUE(
      vantoro
          .StateWhen([&](const json&) { return server.control().playedTicks >= kOutageAtTick; },
                     kFlightWait)
          .is_object())
      << "the flight stopped at tick " << server.control().playedTicks << "\n"
      << vantoro.Console();

  // The simulator goes: ten failed reads drop the link, the pilot stays
  // connected and the app answers.
  server.Stop();
  const json lost = vantoro.StateWhen([](const json& s) {
    return !s.value("linkOpen", true) && s.value("connected", false) &&
           Text(s, "statusLine") == "Status: No Flight Simulator Found";
  });
  ASSERT_TRUE(lost.is_object()) << vantoro.Console();
  EXPECT_GT(mostReadErrors, 0);
  EXPECT_TRUE(vantoro.Get("/api/pilot").is_object());
  // It comes back: the link opens again and the flight goes on to its end.
  server.SetBehaviour(testserver::kAnswer);
  ASSERT_TRUE(server.Start("UIPCMAIN", flight));
  const uint32_t ticks = server.control().flightTicks;
  ASSERT_TRUE(vantoro
                  .StateWhen([&](const json&) { return server.control().playedTicks >= ticks; },
                             kFlightWait)
                  .is_object())
      << "the flight stopped at tick " << server.control().playedTicks << " of " << ticks << "\n"
      << vantoro.Console();
  const json landed = vantoro.StateWhen([](const json& s) { return s.value("linkOpen", false); });
  ASSERT_TRUE(landed.is_object());

  std::string seen;
  for (const std::string& m : modes) seen += m + " ";
  std::printf("modes: %s\n", seen.c_str());
  const std::vector<std::string> circuit = {"Taxiing", "TakeOff", "Cruise", "Landing", "Taxiing"};
  EXPECT_TRUE(std::search(modes.begin(), modes.end(), circuit.begin(), circuit.end()) !=
              modes.end())
      << seen;
  std::printf("lines on the simulator's screen: %zu, the last \"%s\"\n", lines.size(),
              lines.empty() ? "" : lines.back().c_str());
  EXPECT_GE(lines.size(), 3u);
  // The sound device played, or told plainly why it could not.
  const std::string console = vantoro.Console();
  // The instructor spoke (his captions are on the console), through wine's
  // sound driver or, with no device, in silence told in words once for each
  // of the two channels, not at every sound.
  EXPECT_NE(console.find("\n  "), std::string::npos) << console;
  int toldSound = 0;
  for (size_t at = console.find("Sound: "); at != std::string::npos;
       at = console.find("Sound: ", at + 1), ++toldSound) {
    const std::string told = console.substr(at, console.find('\n', at) - at);
    std::printf("%s\n", told.c_str());
    EXPECT_NE(told.find("the instructor goes on in silence"), std::string::npos) << told;
  }
  EXPECT_LE(toldSound, 2) << console;

  // The pages' data comes from the same program.
  EXPECT_TRUE(vantoro.Get("/api/pilot").is_object());
  EXPECT_FALSE(vantoro.Get("/api/logbook").is_null());
  EXPECT_FALSE(vantoro.Get("/api/aircraft").is_null());
  ASSERT_EQ(vantoro.Post("/api/disconnect"), 200);
  EXPECT_EQ(vantoro.Quit(), 0) << console;

  // The pilot's log holds the flight; its recording is whole: every tick the
  // server played, the outage left out.
  const fs::path roster = root / "PilotRoster";
  const std::string log = ReadAll(roster / "LightSpeed.dat");
  EXPECT_GE(std::count(log.begin(), log.end(), '\n'), 2) << log;
  EXPECT_NE(log.find("Cessna Skyhawk 172SP"), std::string::npos) << log;
  EXPECT_TRUE(FilesEndingIn(roster, ".part").empty());
  // One recording for the flight, the outage in the climb left out but not
  // splitting it, and one for the taxi back in after the landing.
  std::vector<fs::path> kept = FilesEndingIn(roster, ".vrec.gz");
  std::sort(kept.begin(), kept.end());
  ASSERT_EQ(kept.size(), 2u);
  int64_t recorded = 0;
  for (const fs::path& file : kept) {
    Recording recording;
    std::string error;
    ASSERT_TRUE(LoadRecording(file.string(), recording, error)) << error;
    std::printf("the flight's recording: %s, %lld ticks\n", file.string().c_str(),
                static_cast<long long>(recording.TotalTicks()));
    if (recorded == 0) {
      EXPECT_GT(recording.TotalTicks(), static_cast<int64_t>(kOutageAtTick));
    }
    recorded += recording.TotalTicks();
  }
  EXPECT_GE(recorded, static_cast<int64_t>(ticks));
  std::printf("the pilot's log: %s\n", (roster / "LightSpeed.dat").string().c_str());
}

// The folder FSX's installer leaves in the machine's registry (its 32-bit view).
constexpr char kFSXKey[] = "SOFTWARE\\Microsoft\\Microsoft Games\\Flight Simulator\\10.0";

void SetFSXFolderInRegistry(const std::string& folder) {
  HKEY key = nullptr;
  ASSERT_EQ(RegCreateKeyExA(HKEY_LOCAL_MACHINE, kFSXKey, 0, nullptr, 0, KEY_WRITE | KEY_WOW64_32KEY,
                            nullptr, &key, nullptr),
            ERROR_SUCCESS);
  RegSetValueExA(key, "SetupPath", 0, REG_SZ, reinterpret_cast<const BYTE*>(folder.c_str()),
                 static_cast<DWORD>(folder.size() + 1));
  RegCloseKey(key);
}

TEST(Program, WithoutASimulatorTellsSoAndTheAppStaysUsable) {
  const fs::path root = FreshRoot("nosim");
  // No settings yet: the simulators' folders come from the registry.
  const fs::path fsx = root.parent_path() / "Microsoft Games" / "FSX";
  fs::create_directories(fsx);
  SetFSXFolderInRegistry(fsx.string());
  Program vantoro(root, "");
  ASSERT_TRUE(vantoro.started());
  const json state =
      vantoro.StateWhen([](const json& s) { return !Text(s, "statusLine").empty(); });
  ASSERT_TRUE(state.is_object()) << vantoro.Console();
  EXPECT_EQ(Text(state, "statusLine"), "Status: No Flight Simulator Found");
  EXPECT_FALSE(state.value("linkOpen", true));
  EXPECT_TRUE(vantoro.Get("/api/pilot").is_object());
  EXPECT_FALSE(vantoro.Get("/api/aircraft").is_null());
  const json settings = vantoro.Get("/api/settings");
  ASSERT_TRUE(settings.is_object());
  EXPECT_EQ(Text(settings["settings"], "FSXFolder"), fsx.string() + "\\");
  // The sound devices wine offers (maybe none), each by its name.
  ASSERT_TRUE(settings["soundDevices"].is_array());
  for (const json& name : settings["soundDevices"]) EXPECT_FALSE(name.get<std::string>().empty());
  RegDeleteKeyExA(HKEY_LOCAL_MACHINE, kFSXKey, KEY_WOW64_32KEY, 0);
  EXPECT_EQ(vantoro.Quit(), 0) << vantoro.Console();

  // Recording a flight needs the simulator's server: the link's own words.
  const fs::path output = root.parent_path() / "record.txt";
  const fs::path file = root.parent_path() / "live.vrec";
  const PROCESS_INFORMATION record =
      StartWithConsoleIn(output, L"\"" + (OwnFolder() / L"vantoro-cli.exe").wstring() +
                                     L"\" record \"" + file.wstring() + L"\"");
  ASSERT_NE(record.hProcess, nullptr);
  ASSERT_EQ(WaitForSingleObject(record.hProcess, static_cast<DWORD>(kExitWait / 1ms)),
            WAIT_OBJECT_0);
  DWORD status = 0;
  GetExitCodeProcess(record.hProcess, &status);
  CloseHandle(record.hThread);
  CloseHandle(record.hProcess);
  EXPECT_NE(status, 0u);
  EXPECT_EQ(ReadAll(output), "vantoro-cli record: Cannot link to FSUIPC or WideClient\r\n");
  EXPECT_FALSE(fs::exists(file));
}

// The program installed where it cannot write (Program Files): its data goes
// to the pilot's own folder, copied from the program's the first time, and
// everything it writes goes there.
TEST(Program, InAFolderItCannotWriteToKeepsItsDataUnderAppData) {
  const fs::path program = Environment("VANTORO_LOCKED_PROGRAM");
  if (program.empty())
    GTEST_SKIP() << "no program folder the program cannot write to: scripts/wine-test.sh makes "
                    "one (as root it needs chattr +i)";
  const fs::path shipped = program.parent_path() / "data";
  EXPECT_FALSE(std::ofstream(shipped / "probe.txt").is_open()) << shipped << " is writable";
  wchar_t appData[MAX_PATH] = {};
  ASSERT_NE(GetEnvironmentVariableW(L"APPDATA", appData, MAX_PATH), 0u);
  const fs::path own = fs::path(appData) / "Vantoro";
  fs::remove_all(own);

  Program vantoro({}, "", program);
  ASSERT_TRUE(vantoro.started());
  const json state =
      vantoro.StateWhen([](const json& s) { return !Text(s, "statusLine").empty(); });
  ASSERT_TRUE(state.is_object()) << vantoro.Console();
  EXPECT_NE(vantoro.Console().find("The program's data has been copied to " + own.string()),
            std::string::npos)
      << vantoro.Console();
  EXPECT_TRUE(fs::exists(own / "PilotRoster" / "LightSpeed.plt"));
  // A pilot saved from the app is a file in the pilot's folder.
  EXPECT_EQ(vantoro.Post("/api/pilot/save", R"({"name":"Kept Here"})"), 200);
  EXPECT_EQ(vantoro.Quit(), 0) << vantoro.Console();
  EXPECT_TRUE(fs::exists(own / "PilotRoster" / "Kept Here.plt")) << vantoro.Console();
  EXPECT_FALSE(fs::exists(shipped / "PilotRoster" / "Kept Here.plt"));
}

}  // namespace
}  // namespace vantoro::testing
