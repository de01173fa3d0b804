// Damaged input and failing output, tried on the replay as a pilot's machine
// would meet them: recordings cut short or with bytes flipped, damaged files
// in the program's root, an output folder that fills up or cannot be written.
// Nothing may crash or hang; every failure names its file; a flight's log row
// and its log book entry are written both or neither.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "base/files.h"
#include "base/gzip.h"
#include "cli/commands.h"
#include "support/scenario.h"

namespace vantoro {
namespace {

namespace fs = std::filesystem;

constexpr int kExitBadInputStatus = 2;
constexpr int kExitFailureStatus = 70;

struct Outcome {
  int status = -1;
  std::string err;
};

class DamagedInput : public ::testing::Test {
 protected:
  void SetUp() override {
    dir_ = fs::temp_directory_path() / ("vantoro-damaged-" + std::to_string(::getpid()));
    fs::remove_all(dir_);
    fs::create_directories(dir_);
    fs::permissions(dir_, fs::perms::all);
    demo_ = ReadFile(std::string(VANTORO_SOURCE_DIR) + "/data/Recordings/demo-c172-circuit.vrec");
    ASSERT_FALSE(demo_.empty());
  }
  void TearDown() override { fs::remove_all(dir_); }

  std::string Path(const std::string& name) const { return (dir_ / name).string(); }
  std::string Write(const std::string& name, const std::string& bytes) const {
    fs::create_directories(fs::path(Path(name)).parent_path());
    std::ofstream(Path(name), std::ios::binary) << bytes;
    return Path(name);
  }

  static Outcome Replay(const CommandArgs& args) {
    std::ostringstream out, err;
    CliContext cli{"vantoro-cli", out, err};
    const int status = ReplayCommand(args, cli);
    return {status, err.str()};
  }
  // The replay in a child process: with a limit on the size of any file it
  // writes (a full disk), or as an ordinary user (a folder it may not write).
  static Outcome ReplayInChild(const CommandArgs& args, rlim_t fileSizeLimit, bool asNobody) {
    int pipeFds[2];
    if (pipe(pipeFds) != 0) return {};
    const pid_t pid = fork();
    if (pid == 0) {
      close(pipeFds[0]);
      signal(SIGXFSZ, SIG_IGN);  // a write past the limit fails instead of killing
      if (fileSizeLimit > 0) {
        rlimit limit{fileSizeLimit, fileSizeLimit};
        setrlimit(RLIMIT_FSIZE, &limit);
      }
      if (asNobody && geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) _exit(99);
      const Outcome o = Replay(args);
      const ssize_t written = write(pipeFds[1], o.err.data(), o.err.size());
      _exit(written < 0 ? 98 : o.status);
    }
    close(pipeFds[1]);
    Outcome o;
    char buffer[4096];
    ssize_t n = 0;
    while ((n = read(pipeFds[0], buffer, sizeof buffer)) > 0)
      o.err.append(buffer, static_cast<size_t>(n));
    close(pipeFds[0]);
    int wstatus = 0;
    waitpid(pid, &wstatus, 0);
    o.status = WIFEXITED(wstatus) ? WEXITSTATUS(wstatus) : 128 + WTERMSIG(wstatus);
    return o;
  }

  CommandArgs Args(const std::string& recording, const std::string& out,
                   const std::string& root = std::string(VANTORO_SOURCE_DIR) + "/data") const {
    return {recording, "--root", root, "--out", out, "--instant"};
  }

  // The log row and the log book entry: both or neither.
  static void ExpectBothOrNeither(const std::string& out, const std::string& what) {
    EXPECT_EQ(fs::exists(fs::path(out) / "LightSpeed.dat"),
              fs::exists(fs::path(out) / "LightSpeed.htm"))
        << what;
    for (const auto& e : fs::directory_iterator(out))
      EXPECT_EQ(e.path().string().find(kTemporarySuffix), std::string::npos) << what;
  }

  fs::path dir_;
  std::string demo_;
};

TEST_F(DamagedInput, RecordingsCutShortOrFlippedFailWithTheirNameOrReplay) {
  std::vector<std::pair<std::string, std::string>> damaged;  // name, bytes
  for (size_t cut : {size_t{0}, size_t{10}, size_t{25}, demo_.size() / 3, demo_.size() - 7})
    damaged.push_back({"cut" + std::to_string(cut) + ".vrec", demo_.substr(0, cut)});
  // Flipped bytes spread over the file, each alone.
  for (size_t i = 1; i <= 8; ++i) {
    std::string bytes = demo_;
    bytes[i * bytes.size() / 9] ^= static_cast<char>(0x5A + i);
    damaged.push_back({"flip" + std::to_string(i) + ".vrec", bytes});
  }
  const std::string packed = GzipText(demo_);
  damaged.push_back({"cut.vrec.gz", packed.substr(0, packed.size() / 2)});
  std::string flippedPacked = packed;
  flippedPacked[packed.size() / 2] ^= 0x21;
  damaged.push_back({"flip.vrec.gz", flippedPacked});

  for (const auto& [name, bytes] : damaged) {
    const std::string file = Write(name, bytes);
    const std::string out = Path("out-" + name);
    const Outcome o = Replay(Args(file, out));
    EXPECT_TRUE(o.status == 0 || o.status == kExitBadInputStatus) << name << ": " << o.err;
    if (o.status != 0) {
      EXPECT_NE(o.err.find(file), std::string::npos) << name << ": " << o.err;
    }
    if (fs::exists(out)) {
      ExpectBothOrNeither(out, name);
    }
  }
}

TEST_F(DamagedInput, DamagedRootFilesAreReadTolerantly) {
  const std::string root = Path("root");
  fs::create_directories(root + "/PilotRoster");
  fs::copy(std::string(VANTORO_SOURCE_DIR) + "/data/PilotRoster", root + "/PilotRoster");
  const std::string pilot = ReadFile(root + "/PilotRoster/LightSpeed.plt");
  Write("root/PilotRoster/LightSpeed.plt", pilot.substr(0, pilot.size() / 2) + "\x01\xff=[\n");
  Write("root/settings.ini", "[General\nInstantHelp=99999999999999999999\n=\n\xfe\xff");
  Write("root/text/english.txt", "Touchdown.wav|\n|||\n\x00\x01 no bar\n");
  Write("root/Aircraft/C172.fsr",
        "[Reference Speeds]\nIASStallLanding=2147483647\nIASStallCruise=-1e308\n[flaps.0\n");
  Write("root/Aircraft.dat", "Cessna Skyhawk 172SP=99999999999\n");
  const std::string recording = Write("demo.vrec", demo_);
  const Outcome o = Replay(Args(recording, Path("out"), root));
  EXPECT_EQ(o.status, 0) << o.err;
  ExpectBothOrNeither(Path("out"), "damaged root");
}

TEST_F(DamagedInput, AFullOrReadOnlyOutputFolderLogsBothOrNeitherAndSaysWhichFile) {
  const std::string recording = Write("demo.vrec", demo_);
  // The log row (some 2.2 KB with its header) fits; the log book does not.
  const std::string full = Path("full");
  Outcome o = ReplayInChild(Args(recording, full), 2300, false);
  EXPECT_EQ(o.status, kExitFailureStatus) << o.err;
  EXPECT_NE(o.err.find(full + "/LightSpeed.htm: cannot be written (File too large)"),
            std::string::npos)
      << o.err;
  EXPECT_FALSE(fs::exists(full + "/LightSpeed.dat"));
  ExpectBothOrNeither(full, "full");

  const std::string readOnly = Path("read-only");
  fs::create_directories(readOnly);
  fs::permissions(readOnly, fs::perms::owner_read | fs::perms::owner_exec | fs::perms::group_read |
                                fs::perms::group_exec | fs::perms::others_read |
                                fs::perms::others_exec);
  o = ReplayInChild(Args(recording, readOnly), 0, true);
  EXPECT_EQ(o.status, kExitBadInputStatus) << o.err;
  EXPECT_NE(o.err.find(readOnly), std::string::npos) << o.err;
  ExpectBothOrNeither(readOnly, "read-only");
}

}  // namespace
}  // namespace vantoro
