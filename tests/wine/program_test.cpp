// The Windows program as the pilot runs it, under wine: vantoro.exe started
// from a folder whose path has spaces, its app asked over HTTP, a recording
// flown, the offset server found or not, and the program closed from the
// app. Also the waveOut sound device on wine's sound driver (or none).
#include <gtest/gtest.h>
#include <httplib.h>
#include <windows.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

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

// The program's shipped data, copied into a folder whose path has spaces.
fs::path FreshRoot(const std::string& name) {
  const fs::path root = fs::temp_directory_path() / ("Vantoro test " + name) / "data";
  std::error_code ec;
  fs::remove_all(root.parent_path(), ec);
  fs::create_directories(root);
  fs::copy(fs::path(VANTORO_SOURCE_DIR) / "data", root,
           fs::copy_options::recursive | fs::copy_options::skip_symlinks, ec);
  EXPECT_FALSE(ec) << ec.message();
  return root;
}

// vantoro.exe running with its console output in a file.
class Program {
 public:
  Program(const fs::path& root, const std::string& arguments) {
    port_ = 20000 + static_cast<int>(GetCurrentProcessId() % 20000);
    output_ = root.parent_path() / "console.txt";
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    HANDLE out = CreateFileW(output_.wstring().c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherit,
                             CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = out;
    start.hStdError = out;
    start.hStdInput = GetStdHandle(STD_INPUT_HANDLE);
    std::wstring command = L"\"" + (OwnFolder() / L"vantoro.exe").wstring() +
                           L"\" --no-browser --port " + std::to_wstring(port_) + L" --root \"" +
                           root.wstring() + L"\" ";
    command += std::wstring(arguments.begin(), arguments.end());
    started_ = CreateProcessW(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                              &start, &process_) != 0;
    CloseHandle(out);
  }
  ~Program() {
    if (!started_) return;
    if (WaitForSingleObject(process_.hProcess, 0) == WAIT_TIMEOUT)
      TerminateProcess(process_.hProcess, 9);
    CloseHandle(process_.hThread);
    CloseHandle(process_.hProcess);
  }

  bool started() const { return started_; }
  std::string Console() const {
    std::ifstream in(output_, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  }

  // GET path as JSON; null when the program does not answer.
  json Get(const std::string& path) {
    httplib::Client client("127.0.0.1", port_);
    client.set_connection_timeout(2);
    client.set_read_timeout(10);
    auto res = client.Get(path.c_str());
    if (!res || res->status != 200) return nullptr;
    return json::parse(res->body, nullptr, false);
  }
  int Post(const std::string& path) {
    httplib::Client client("127.0.0.1", port_);
    client.set_read_timeout(10);
    auto res = client.Post(path.c_str(), "{}", "application/json");
    return res ? res->status : 0;
  }

  // The state document once `ready` holds for it; null after the wait.
  template <typename Ready>
  json StateWhen(Ready ready, std::chrono::seconds wait = kStartWait) {
    const auto until = std::chrono::steady_clock::now() + wait;
    while (std::chrono::steady_clock::now() < until) {
      if (WaitForSingleObject(process_.hProcess, 0) == WAIT_OBJECT_0) return nullptr;
      json state = Get("/api/state");
      if (state.is_object() && ready(state)) return state;
      std::this_thread::sleep_for(250ms);
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

TEST(Program, FliesTheDemoCircuitAndServesTheAppUntilClosedFromIt) {
  const fs::path root = FreshRoot("replay");
  Program vantoro(root,
                  "--replay \"" + (root / "Recordings" / "demo-c172-circuit.vrec").string() + "\"");
  ASSERT_TRUE(vantoro.started());
  // The recording connects before its first tick; ticks go on twice a second.
  const json first = vantoro.StateWhen([](const json& s) { return s.value("tick", 0) >= 2; });
  ASSERT_TRUE(first.is_object()) << vantoro.Console();
  EXPECT_TRUE(first.value("connected", false));
  const int tick = first.value("tick", 0);
  const json later =
      vantoro.StateWhen([tick](const json& s) { return s.value("tick", 0) > tick + 2; }, 30s);
  ASSERT_TRUE(later.is_object()) << "the ticks stopped\n" << vantoro.Console();
  EXPECT_EQ(Text(later["pilot"], "name"), Text(first["pilot"], "name"));

  // The pages' data comes from the same program.
  const json pilot = vantoro.Get("/api/pilot");
  ASSERT_TRUE(pilot.is_object());
  EXPECT_TRUE(vantoro.Get("/api/logbook").is_object() || vantoro.Get("/api/logbook").is_array());
  const json page = vantoro.Get("/api/aircraft");
  EXPECT_FALSE(page.is_null());

  EXPECT_EQ(vantoro.Quit(), 0) << vantoro.Console();
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
}

TEST(Program, FindsTheOffsetServerAndMonitorsItsSimulator) {
  TestServer server;
  ASSERT_TRUE(server.Start("UIPCMAIN"));
  const fs::path root = FreshRoot("fsuipc");
  Program vantoro(root, "--sim fsuipc");
  ASSERT_TRUE(vantoro.started());
  const json state = vantoro.StateWhen([](const json& s) { return s.value("linkOpen", false); });
  ASSERT_TRUE(state.is_object()) << vantoro.Console();
  EXPECT_EQ(Text(state, "statusLine").rfind("Status: Monitoring FSX", 0), 0u)
      << Text(state, "statusLine");
  // The handshake wrote the client's number into the server's image.
  EXPECT_NE(server.control().clientVersion, 0u);
  EXPECT_EQ(vantoro.Quit(), 0) << vantoro.Console();
}

}  // namespace
}  // namespace vantoro::testing
