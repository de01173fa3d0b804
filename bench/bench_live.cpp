// The live program as the pilot runs it beside the simulator: how soon its
// app answers after start (the world is read off the loop thread), and what
// it costs the simulator's machine while it monitors a flight at two ticks a
// second (the demo flight flown in real time through --replay).
#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>

namespace fs = std::filesystem;

namespace {

constexpr int kPort = 18470;
constexpr auto kMonitorFor = std::chrono::seconds(10);
// The start-up and the world read in the background are done by then.
constexpr auto kSettleFor = std::chrono::seconds(6);

// A data root of its own, copied from the program's, so nothing is written
// into the source tree.
std::string BenchRoot() {
  static const std::string root = [] {
    const fs::path r = fs::temp_directory_path() / ("vantoro-bench-" + std::to_string(getpid()));
    fs::remove_all(r);
    fs::copy(fs::path(VANTORO_SOURCE_DIR) / "data", r, fs::copy_options::recursive);
    return r.string();
  }();
  return root;
}

pid_t StartProgram() {
  const std::string root = BenchRoot();
  const std::string recording =
      std::string(VANTORO_SOURCE_DIR) + "/data/Recordings/demo-c172-circuit.vrec";
  const std::string port = std::to_string(kPort);
  const pid_t pid = fork();
  if (pid == 0) {
    freopen("/dev/null", "w", stdout);
    freopen("/dev/null", "w", stderr);
    execl(VANTORO_PROGRAM, VANTORO_PROGRAM, "--root", root.c_str(), "--replay", recording.c_str(),
          "--no-browser", "--port", port.c_str(), static_cast<char*>(nullptr));
    _exit(127);
  }
  return pid;
}

bool PortAnswers() {
  const int s = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in a{};
  a.sin_family = AF_INET;
  a.sin_port = htons(kPort);
  a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const bool ok = connect(s, reinterpret_cast<sockaddr*>(&a), sizeof a) == 0;
  close(s);
  return ok;
}

// Ends the program as Ctrl+C does; its exit status.
int EndProgram(pid_t pid) {
  kill(pid, SIGINT);
  int status = 0;
  waitpid(pid, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

// Processor time of the process so far, seconds (user and system).
double CpuSeconds(pid_t pid) {
  std::ifstream in("/proc/" + std::to_string(pid) + "/stat");
  std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  std::istringstream fields(text.substr(text.rfind(')') + 2));
  std::string f;
  long utime = 0, stime = 0;
  for (int i = 3; i <= 15 && fields >> f; ++i) {
    if (i == 14) utime = std::stol(f);
    if (i == 15) stime = std::stol(f);
  }
  return static_cast<double>(utime + stime) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

// A line of /proc/PID/status in megabytes ("VmRSS", "VmHWM").
double StatusMegabytes(pid_t pid, const std::string& key) {
  std::ifstream in("/proc/" + std::to_string(pid) + "/status");
  for (std::string line; std::getline(in, line);)
    if (line.rfind(key + ":", 0) == 0) return std::stod(line.substr(key.size() + 1)) / 1024.0;
  return 0;
}

void BM_StartToAppAnswering(benchmark::State& state) {
  BenchRoot();  // copied once, before the clock runs
  for (auto _ : state) {
    const auto start = std::chrono::steady_clock::now();
    const pid_t pid = StartProgram();
    while (!PortAnswers()) std::this_thread::sleep_for(std::chrono::microseconds(200));
    const auto answered = std::chrono::steady_clock::now();
    state.SetIterationTime(std::chrono::duration<double>(answered - start).count());
    if (EndProgram(pid) != 0) state.SkipWithError("the program did not end cleanly on SIGINT");
  }
}
BENCHMARK(BM_StartToAppAnswering)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_MonitoringAFlight(benchmark::State& state) {
  for (auto _ : state) {
    const pid_t pid = StartProgram();
    while (!PortAnswers()) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    std::this_thread::sleep_for(kSettleFor);  // the world read in the background
    const double before = CpuSeconds(pid);
    const auto start = std::chrono::steady_clock::now();
    std::this_thread::sleep_for(kMonitorFor);
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const double cpu = CpuSeconds(pid) - before;
    state.SetIterationTime(seconds);
    state.counters["cpu_percent_of_a_core"] = 100.0 * cpu / seconds;
    state.counters["resident_MB"] = StatusMegabytes(pid, "VmRSS");
    state.counters["peak_resident_MB"] = StatusMegabytes(pid, "VmHWM");
    if (EndProgram(pid) != 0) state.SkipWithError("the program did not end cleanly on SIGINT");
  }
}
BENCHMARK(BM_MonitoringAFlight)->UseManualTime()->Unit(benchmark::kSecond)->Iterations(1);

}  // namespace
