// The FlightGear and X-Plane links against packets built byte for byte to
// the simulators' formats, sent over real UDP and TCP sockets on this
// machine: each field lands at its offset in the simulator's raw encoding,
// damaged packets are read errors, and the instructor's writes reach the
// simulator as its own protocol says them.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstring>
#include <fstream>
#include <map>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "link/flightgear_link.h"
#include "link/xplane_link.h"

namespace vantoro {
namespace {

// A plain socket of the test's own: the simulator's side.
class Peer {
 public:
  explicit Peer(int type) : fd_(::socket(AF_INET, type, 0)) {
    // Room for the link's burst of subscriptions, as X-Plane's socket has.
    const int room = 1 << 20;
    ::setsockopt(fd_, SOL_SOCKET, SO_RCVBUF, &room, sizeof room);
    sockaddr_in a = Loopback(0);
    EXPECT_EQ(::bind(fd_, reinterpret_cast<sockaddr*>(&a), sizeof a), 0);
    if (type == SOCK_STREAM) ::listen(fd_, 1);
  }
  ~Peer() {
    if (conn_ >= 0) ::close(conn_);
    ::close(fd_);
  }
  static sockaddr_in Loopback(int port) {
    sockaddr_in a{};
    a.sin_family = AF_INET;
    a.sin_port = htons(static_cast<uint16_t>(port));
    a.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return a;
  }
  int Port() const {
    sockaddr_in a{};
    socklen_t n = sizeof a;
    getsockname(fd_, reinterpret_cast<sockaddr*>(&a), &n);
    return ntohs(a.sin_port);
  }
  void SendTo(int port, const std::vector<uint8_t>& bytes) const {
    const sockaddr_in a = Loopback(port);
    ::sendto(fd_, bytes.data(), bytes.size(), 0, reinterpret_cast<const sockaddr*>(&a), sizeof a);
  }
  void SendTo(int port, const std::string& text) const {
    SendTo(port, std::vector<uint8_t>(text.begin(), text.end()));
  }
  // One datagram within a second; empty when none came. `from` gets the sender's port.
  std::vector<uint8_t> Receive(int* from = nullptr, int waitMs = 1000) const {
    pollfd p{fd_, POLLIN, 0};
    if (::poll(&p, 1, waitMs) != 1) return {};
    std::vector<uint8_t> b(65536);
    sockaddr_in a{};
    socklen_t n = sizeof a;
    const ssize_t got = ::recvfrom(fd_, b.data(), b.size(), 0, reinterpret_cast<sockaddr*>(&a), &n);
    b.resize(got > 0 ? static_cast<size_t>(got) : 0);
    if (from) *from = ntohs(a.sin_port);
    return b;
  }
  // What the link's TCP connection has sent, waiting up to a second for `until`.
  std::string Stream(const std::string& until) {
    if (conn_ < 0) {
      pollfd p{fd_, POLLIN, 0};
      if (::poll(&p, 1, 1000) != 1) return {};
      conn_ = ::accept(fd_, nullptr, nullptr);
    }
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    while (text_.find(until) == std::string::npos && std::chrono::steady_clock::now() < end) {
      pollfd p{conn_, POLLIN, 0};
      if (::poll(&p, 1, 100) != 1) continue;
      char b[4096];
      const ssize_t n = ::recv(conn_, b, sizeof b, 0);
      if (n <= 0) break;
      text_.append(b, static_cast<size_t>(n));
    }
    return text_;
  }

 private:
  int fd_;
  int conn_ = -1;
  std::string text_;
};

// Waits until the link has taken a packet in (UDP on this machine is quick,
// not instant).
template <typename Link>
bool OpenWhenHeard(Link& link, int& result) {
  for (int i = 0; i < 100; ++i) {
    if (link.Open(0, result)) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return false;
}

// Reads `size` bytes at `offset` through the link, as the tick does.
std::vector<uint8_t> ReadThrough(SimLink& link, uint32_t offset, uint32_t size) {
  std::vector<uint8_t> bytes(size);
  int result = kLinkOk;
  EXPECT_TRUE(link.Read(offset, size, bytes.data(), result));
  EXPECT_TRUE(link.Process(result)) << LinkResultText(result) << ": " << link.Problem();
  return bytes;
}

std::vector<uint8_t> LittleEndian(int64_t v, uint32_t size) {
  std::vector<uint8_t> b(size);
  for (uint32_t i = 0; i < size; ++i)
    b[i] = static_cast<uint8_t>(static_cast<uint64_t>(v) >> (8 * i));
  return b;
}

std::vector<uint8_t> Text(const std::string& s) {
  std::vector<uint8_t> b(s.begin(), s.end());
  b.push_back(0);
  return b;
}

// ---------------------------------------------------------------- FlightGear

// A sound line of the protocol, field by field, as FlightGear prints it.
std::map<std::string, std::string> FlightGearBaseline() {
  std::map<std::string, std::string> v;
  for (const FlightGearField& f : FlightGearFields())
    v[f.name] = f.type == FlightGearType::String   ? ""
                : f.type == FlightGearType::Double ? "0.000000"
                                                   : "0";
  v["gmt"] = "2026-06-14T09:00:00";
  v["aircraft"] = "c172p";
  v["aircraft-dir"] = "/usr/share/games/flightgear/Aircraft/c172p";
  v["description"] = "Cessna 172P Skyhawk (1982 model)";
  v["speed-up"] = "1.000000";
  v["altimeter-inhg"] = "29.920000";
  v["pilot-g"] = "1.000000";
  return v;
}

std::string FlightGearLine(const std::map<std::string, std::string>& values) {
  std::string line;
  for (const FlightGearField& f : FlightGearFields()) {
    if (!line.empty()) line += '\t';
    line += values.at(f.name);
  }
  return line + "\n";
}

struct FieldCase {
  std::map<std::string, std::string> sent;
  uint32_t offset;
  std::vector<uint8_t> raw;
};

TEST(FlightGearLink, EachPropertyLandsAtItsOffsetInItsRawEncoding) {
  const std::vector<FieldCase> cases = {
      // Position: 64-bit fixed latitude and longitude, metres above the sea.
      {{{"latitude-deg", "21.31870000"}},
       0x0560,
       LittleEndian(std::llround(21.3187 * 10001750.0 * 65536.0 * 65536.0 / 90.0), 8)},
      {{{"longitude-deg", "-157.92240000"}},
       0x0568,
       LittleEndian(std::llround(-157.9224 * 18446744073709551616.0 / 360.0), 8)},
      {{{"altitude-ft", "1013.000000"}, {"altitude-agl-ft", "1000.000000"}},
       0x31E4,
       LittleEndian(std::llround(1000 / 3.28084 * 65536.0), 4)},
      {{{"altitude-ft", "1013.000000"}, {"altitude-agl-ft", "1000.000000"}},
       0x0020,
       LittleEndian(std::llround(13 / 3.28084 * 256), 4)},
      // Attitude: a quarter turn of heading; nose up and right wing down negative.
      {{{"heading-deg", "90.000000"}}, 0x0580, LittleEndian(0x40000000, 4)},
      {{{"pitch-deg", "10.000000"}},
       0x0578,
       LittleEndian(std::llround(-10 / 360.0 * 4294967296.0), 4)},
      {{{"roll-deg", "-20.000000"}},
       0x057C,
       LittleEndian(std::llround(20 / 360.0 * 4294967296.0), 4)},
      {{{"magnetic-variation-deg", "10.000000"}},
       0x02A0,
       LittleEndian(std::llround(10 * 65536 / 360.0), 2)},
      // Speeds.
      {{{"airspeed-kt", "80.000000"}}, 0x02BC, LittleEndian(80 * 128, 4)},
      {{{"airspeed-kt", "80.000000"}, {"true-speed-kt", "84.000000"}},
       0x02B8,
       LittleEndian(84 * 128, 4)},
      {{{"groundspeed-kt", "60.000000"}},
       0x02B4,
       LittleEndian(std::llround(60 / 1.943844 * 65536.0), 4)},
      {{{"vertical-speed-fps", "-10.000000"}},
       0x02C8,
       LittleEndian(std::llround(-600 / 3.28084 / 60 * 256), 4)},
      // On the ground when any gear leg carries weight.
      {{{"wow-1", "1"}}, 0x0366, {1, 0}},
      {{{"wow-0", "0"}}, 0x0366, {0, 0}},
      // Gear, flaps, controls, levers, brakes.
      {{{"gear-down", "1"}}, 0x0BE8, LittleEndian(16383, 4)},
      // A fixed gear: the lever reads up, the three legs stand down.
      {{{"gear-0-position", "1.000000"},
        {"gear-1-position", "1.000000"},
        {"gear-2-position", "1.000000"}},
       0x0BE8,
       LittleEndian(16383, 4)},
      {{{"gear-0-position", "1.000000"},
        {"gear-1-position", "0.500000"},
        {"gear-2-position", "1.000000"}},
       0x0BE8,
       LittleEndian(0, 4)},
      {{{"gear-1-position", "1.000000"}}, 0x0BF4, LittleEndian(16383, 4)},
      {{{"flap-pos-norm", "0.500000"}}, 0x0BDC, LittleEndian(std::llround(0.5 * 16383), 4)},
      {{{"elevator", "-0.500000"}}, 0x0BB2, LittleEndian(std::llround(-0.5 * 16383), 2)},
      {{{"elevator-trim", "0.250000"}}, 0x0BC0, LittleEndian(std::llround(0.25 * 16383), 2)},
      {{{"throttle-0", "0.500000"}}, 0x088C, LittleEndian(8192, 2)},
      {{{"mixture-0", "1.000000"}}, 0x0890, LittleEndian(16384, 2)},
      {{{"running-0", "1"}}, 0x0894, {1, 0}},
      // A second engine counts once it turns.
      {{{"rpm-1", "800.000000"}}, 0x0AEC, {2, 0}},
      {{{"brake-parking", "1.000000"}}, 0x0BC8, LittleEndian(32767, 2)},
      {{{"brake-left", "0.800000"}}, 0x0BCA, {1, 0}},
      // Lights: nav 1, beacon 2, landing 4, taxi 8, strobes 16.
      {{{"landing-lights", "1"}, {"beacon", "1"}}, 0x0D0C, {6, 0}},
      {{{"battery-switch", "1"}}, 0x281C, {1, 0, 0, 0}},
      {{{"pitot-heat", "1"}}, 0x029C, {1}},
      {{{"stall-warning", "1"}}, 0x036C, {1}},
      {{{"pilot-g", "2.000000"}}, 0x11BA, LittleEndian(1250, 2)},
      // Radios in packed decimal, the leading 1 implied.
      {{{"nav-0-mhz", "110.500000"}}, 0x0350, {0x50, 0x10}},
      {{{"nav-0-obs", "93.000000"}}, 0x0C4E, LittleEndian(93, 2)},
      {{{"comm-0-mhz", "121.500000"}}, 0x034E, {0x50, 0x21}},
      {{{"nav-1-mhz", "113.900000"}}, 0x3120, {0x90, 0x13}},
      {{{"transponder", "7000"}}, 0x0354, {0x00, 0x70}},
      // ILS needles and flags.
      {{{"nav-0-cdi", "-1.000000"}}, 0x0C48, {static_cast<uint8_t>(-127)}},
      {{{"nav-0-gs", "0.500000"}}, 0x0C49, {64}},
      {{{"nav-0-gs-in-range", "1"}}, 0x0C4C, {1}},
      {{{"nav-0-from", "1"}}, 0x0C4B, {2}},
      {{{"nav-0-id", "IHNL"}}, 0x3000, Text("IHNL")},
      // Weather: wind from true and magnetic, visibility in hundredths of a mile.
      {{{"wind-from-deg", "90.000000"}, {"wind-speed-kt", "12.000000"}},
       0x0EF0,
       LittleEndian(12, 2)},
      {{{"wind-from-deg", "90.000000"}, {"magnetic-variation-deg", "10.000000"}},
       0x0EF2,
       LittleEndian(std::llround(80 * 65536 / 360.0), 2)},
      {{{"visibility-m", "16093.440000"}}, 0x0E8A, LittleEndian(1000, 2)},
      {{{"altimeter-inhg", "29.920000"}},
       0x0330,
       LittleEndian(std::llround(29.92 * 33.8639 * 16), 2)},
      // The clock: FlightGear's UTC date gives the day of the year.
      {{{"gmt", "2026-03-01T12:30:15"}}, 0x023E, LittleEndian(60, 2)},
      {{{"gmt", "2026-03-01T12:30:15"}}, 0x023B, {12, 30}},
      {{{"speed-up", "2.000000"}}, 0x0C1A, LittleEndian(512, 2)},
      {{{"freeze", "1"}}, 0x0264, {1, 0}},
      {{{"crashed", "1"}}, 0x0840, {1, 0}},
      // The aircraft's title and file, "\" separated as the rules read it.
      {{}, 0x3D00, Text("Cessna 172P Skyhawk (1982 model)")},
      {{}, 0x3C00, Text("\\usr\\share\\games\\flightgear\\Aircraft\\c172p\\c172p-set.xml")},
  };
  for (const FieldCase& c : cases) {
    Peer fg(SOCK_DGRAM);
    FlightGearOptions options;
    options.dataPort = 0;
    FlightGearLink link(options);
    std::string problem;
    int result = kLinkOk;
    EXPECT_FALSE(link.Open(0, result));  // binds; nothing heard yet
    std::map<std::string, std::string> values = FlightGearBaseline();
    for (const auto& [name, text] : c.sent) values[name] = text;
    fg.SendTo(link.dataPort(), FlightGearLine(values));
    ASSERT_TRUE(OpenWhenHeard(link, result)) << link.Problem();
    const auto raw = ReadThrough(link, c.offset, static_cast<uint32_t>(c.raw.size()));
    std::ostringstream where;
    where << "0x" << std::hex << c.offset << " after "
          << (c.sent.empty() ? "" : c.sent.begin()->first);
    EXPECT_EQ(raw, c.raw) << where.str();
  }
}

TEST(FlightGearLink, DamagedPacketsAreReadErrorsAndTheNextGoodOneIsRead) {
  const std::string good = FlightGearLine(FlightGearBaseline());
  auto with = [](const std::string& field, const std::string& text) {
    auto v = FlightGearBaseline();
    v[field] = text;
    return FlightGearLine(v);
  };
  const std::vector<std::pair<std::string, std::string>> damaged = {
      {"cut short", good.substr(0, good.size() / 2)},
      {"empty", ""},
      {"one field too many", good.substr(0, good.size() - 1) + "\t1\n"},
      {"not a number", with("airspeed-kt", "fast")},
      {"number with trailing junk", with("airspeed-kt", "80.0kt")},
      {"latitude beyond the pole", with("latitude-deg", "95.00000000")},
      {"not a finite number", with("heading-deg", "nan")},
      {"infinite", with("altitude-ft", "inf")},
      {"flag not whole", with("wow-0", "0.5")},
      {"transponder out of range", with("transponder", "99999")},
      {"control character in a text", with("description", std::string("Cessna\x01"))},
      {"text too long", with("description", std::string(300, 'x'))},
      {"no time", with("gmt", "yesterday")},
      {"month 13", with("gmt", "2026-13-01T00:00:00")},
      {"binary", std::string("\x00\xff\xfe\x01", 4)},
  };
  for (const auto& [why, packet] : damaged) {
    Peer fg(SOCK_DGRAM);
    FlightGearOptions options;
    options.dataPort = 0;
    FlightGearLink link(options);
    int result = kLinkOk;
    link.Open(0, result);
    auto first = FlightGearBaseline();
    first["airspeed-kt"] = "55.000000";
    fg.SendTo(link.dataPort(), FlightGearLine(first));
    ASSERT_TRUE(OpenWhenHeard(link, result));
    fg.SendTo(link.dataPort(), packet);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    uint8_t ias[4];
    link.Read(0x02BC, 4, ias, result);
    EXPECT_FALSE(link.Process(result)) << why;
    EXPECT_EQ(result, kLinkBadData) << why;
    EXPECT_NE(link.Problem().find("damaged packet"), std::string::npos) << why;
    // The damaged packet changed nothing; the good one after it is read.
    EXPECT_EQ(link.image().U32(0x02BC), 55u * 128) << why;
    auto next = FlightGearBaseline();
    next["airspeed-kt"] = "66.000000";
    fg.SendTo(link.dataPort(), FlightGearLine(next));
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(ReadThrough(link, 0x02BC, 4), LittleEndian(66 * 128, 4)) << why;
  }
}

TEST(FlightGearLink, SilenceIsToldWithThePortAndEndsTheTicks) {
  Peer fg(SOCK_DGRAM);
  FlightGearOptions options;
  options.dataPort = 0;
  FlightGearLink link(options);
  auto clock = std::chrono::steady_clock::now();
  link.now = [&] { return clock; };
  int result = kLinkOk;
  EXPECT_FALSE(link.Open(0, result));
  EXPECT_EQ(result, kLinkTimeout);
  const std::string silence = "no data from FlightGear on port " + std::to_string(link.dataPort());
  EXPECT_EQ(link.Problem(), silence);

  fg.SendTo(link.dataPort(), FlightGearLine(FlightGearBaseline()));
  ASSERT_TRUE(OpenWhenHeard(link, result));
  clock += std::chrono::milliseconds(1900);
  ReadThrough(link, 0x0366, 1);
  clock += std::chrono::milliseconds(200);  // 2.1 s after the last packet
  uint8_t ground;
  link.Read(0x0366, 1, &ground, result);
  EXPECT_FALSE(link.Process(result));
  EXPECT_EQ(result, kLinkTimeout);
  EXPECT_EQ(link.Problem(), silence);
}

struct WriteCase {
  uint32_t offset;
  std::vector<uint8_t> bytes;
  std::string line;     // what the property server receives; empty for none
  std::string missing;  // the notice's subject, when FlightGear has no equivalent
};

TEST(FlightGearLink, WritesGoToThePropertyServerOrAreToldOnce) {
  const std::vector<WriteCase> cases = {
      {0x3380, Text("LEFT BRAKE ON"), "set /sim/screen/white LEFT BRAKE ON\r\n", ""},
      {0x0350, {0x50, 0x10}, "set /instrumentation/nav[0]/frequencies/selected-mhz 110.50\r\n", ""},
      {0x0C4E, LittleEndian(93, 2), "set /instrumentation/nav[0]/radials/selected-deg 93\r\n", ""},
      {0x0B65,
       {1},
       "set /sim/failure-manager/instrumentation/airspeed-indicator/failure-level 1\r\n",
       ""},
      {0x0B6B, {0}, "set /sim/failure-manager/engines/engine/failure-level 0\r\n", ""},
      {0x0B70, {1}, "set /sim/failure-manager/instrumentation/nav/cdi/failure-level 1\r\n", ""},
      {0x281C, LittleEndian(0, 4), "set /controls/electric/battery-switch 0\r\n", ""},
      {0x0B68, {1}, "", "the failure flag at 0x0B68"},
      {0x32F8, {0}, "", "the write to offset 0x32F8"},
  };
  Peer fg(SOCK_DGRAM);
  Peer telnet(SOCK_STREAM);
  FlightGearOptions options;
  options.dataPort = 0;
  options.telnetPort = telnet.Port();
  FlightGearLink link(options);
  int result = kLinkOk;
  link.Open(0, result);
  fg.SendTo(link.dataPort(), FlightGearLine(FlightGearBaseline()));
  ASSERT_TRUE(OpenWhenHeard(link, result));
  for (const WriteCase& c : cases) {
    for (int twice = 0; twice < 2; ++twice) {
      ASSERT_TRUE(
          link.Write(c.offset, static_cast<uint32_t>(c.bytes.size()), c.bytes.data(), result));
      link.Process(result);
    }
    const std::vector<std::string> notices = link.TakeNotices();
    if (c.missing.empty()) {
      EXPECT_TRUE(notices.empty()) << c.line;
      EXPECT_NE(telnet.Stream(c.line).find(c.line), std::string::npos) << c.line;
    } else {
      ASSERT_EQ(notices.size(), 1u) << c.missing;  // once, though written twice
      EXPECT_NE(notices[0].find("FlightGear has no equivalent of " + c.missing), std::string::npos);
    }
  }
  EXPECT_EQ(telnet.Stream("data").rfind("data\r\n", 0), 0u);  // data mode first
}

TEST(FlightGearLink, APropertyServerThatDoesNotAnswerIsToldOnce) {
  Peer fg(SOCK_DGRAM);
  Peer closed(SOCK_DGRAM);  // a port with no TCP listener
  FlightGearOptions options;
  options.dataPort = 0;
  options.telnetPort = closed.Port();
  FlightGearLink link(options);
  int result = kLinkOk;
  link.Open(0, result);
  fg.SendTo(link.dataPort(), FlightGearLine(FlightGearBaseline()));
  ASSERT_TRUE(OpenWhenHeard(link, result));
  const uint8_t obs[2] = {90, 0};
  for (int i = 0; i < 3; ++i) {
    link.Write(0x0C4E, 2, obs, result);
    link.Process(result);
  }
  const auto notices = link.TakeNotices();
  ASSERT_EQ(notices.size(), 1u);
  EXPECT_NE(notices[0].find("property server on port " + std::to_string(closed.Port())),
            std::string::npos);
}

TEST(FlightGearProtocol, TheShippedDefinitionIsTheOneTheDecoderReads) {
  std::ifstream file(std::string(VANTORO_SOURCE_DIR) + "/data/FlightGear/vantoro.xml");
  ASSERT_TRUE(file) << "data/FlightGear/vantoro.xml is missing";
  std::stringstream text;
  text << file.rdbuf();
  EXPECT_EQ(text.str(), FlightGearProtocolXml())
      << "data/FlightGear/vantoro.xml differs from the decoder's fields; write it anew from "
         "FlightGearProtocolXml()";
  // FlightGear refuses the whole definition, and sends nothing, when a comment
  // holds a double hyphen (a command-line option written into it, say).
  const std::string xml = FlightGearProtocolXml();
  for (size_t open = xml.find("<!--"); open != std::string::npos;
       open = xml.find("<!--", open + 4)) {
    const size_t close = xml.find("-->", open + 4);
    ASSERT_NE(close, std::string::npos) << "a comment is never closed";
    EXPECT_EQ(xml.substr(open + 4, close - open - 4).find("--"), std::string::npos)
        << "a comment holds \"--\": " << xml.substr(open, close - open + 3);
  }
}

// ------------------------------------------------------------------ X-Plane

std::vector<uint8_t> RrefAnswer(const std::vector<std::pair<int32_t, float>>& pairs) {
  std::vector<uint8_t> b = {'R', 'R', 'E', 'F', ','};
  for (const auto& [index, value] : pairs) {
    const auto i = LittleEndian(index, 4);
    b.insert(b.end(), i.begin(), i.end());
    uint32_t bits;
    std::memcpy(&bits, &value, 4);
    const auto v = LittleEndian(bits, 4);
    b.insert(b.end(), v.begin(), v.end());
  }
  return b;
}

int RefIndex(const std::string& dataref) {
  const auto& refs = XPlaneRefs();
  for (size_t i = 0; i < refs.size(); ++i)
    if (refs[i].dataref == dataref) return static_cast<int>(i);
  ADD_FAILURE() << "not subscribed: " << dataref;
  return 0;
}

// An X-Plane of the test's own: takes every packet the link sends as it
// comes (the link subscribes in one burst), answers with values.
class FakeXPlane {
 public:
  Peer socket{SOCK_DGRAM};
  std::atomic<int> linkPort{0};

  FakeXPlane() {
    reader_ = std::thread([this] {
      while (!stop_) {
        int from = 0;
        std::vector<uint8_t> p = socket.Receive(&from, 50);
        if (p.empty()) continue;
        std::lock_guard<std::mutex> lock(mutex_);
        linkPort = from;
        got_.push_back(std::move(p));
      }
    });
  }
  ~FakeXPlane() {
    stop_ = true;
    reader_.join();
  }
  // The packets taken so far whose first four letters are `word`, waiting
  // up to a second for at least `count`.
  std::vector<std::vector<uint8_t>> Taken(const std::string& word, size_t count) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    while (true) {
      std::vector<std::vector<uint8_t>> out;
      {
        std::lock_guard<std::mutex> lock(mutex_);
        for (const auto& p : got_)
          if (p.size() >= 4 && std::string(p.begin(), p.begin() + 4) == word) out.push_back(p);
      }
      if (out.size() >= count || std::chrono::steady_clock::now() > end) return out;
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
  }
  void Forget() {
    std::lock_guard<std::mutex> lock(mutex_);
    got_.clear();
  }
  void Answer(const std::vector<std::pair<std::string, float>>& values) {
    std::vector<std::pair<int32_t, float>> pairs;
    for (const auto& [dataref, value] : values) pairs.emplace_back(RefIndex(dataref), value);
    socket.SendTo(linkPort, RrefAnswer(pairs));
  }

 private:
  std::thread reader_;
  std::atomic<bool> stop_{false};
  std::mutex mutex_;
  std::vector<std::vector<uint8_t>> got_;
};

std::unique_ptr<XPlaneLink> OpenXPlane(FakeXPlane& xp,
                                       const std::vector<std::pair<std::string, float>>& values) {
  XPlaneOptions options;
  options.port = xp.socket.Port();
  auto link = std::make_unique<XPlaneLink>(options);
  int result = kLinkOk;
  EXPECT_FALSE(link->Open(0, result));
  EXPECT_EQ(link->Problem(), "no data from X-Plane at 127.0.0.1:" + std::to_string(options.port));
  EXPECT_EQ(xp.Taken("RREF", XPlaneRefs().size()).size(), XPlaneRefs().size());
  xp.Answer(values);
  EXPECT_TRUE(OpenWhenHeard(*link, result)) << link->Problem();
  return link;
}

TEST(XPlaneLink, SubscriptionsAreRrefRequestsOfTheDocumentedLayout) {
  FakeXPlane xp;
  auto link = OpenXPlane(xp, {});
  const auto requests = xp.Taken("RREF", XPlaneRefs().size());
  ASSERT_EQ(requests.size(), XPlaneRefs().size());
  for (size_t i = 0; i < requests.size(); ++i) {
    const std::vector<uint8_t>& r = requests[i];
    ASSERT_EQ(r.size(), 413u);
    EXPECT_EQ(std::string(r.begin(), r.begin() + 5), std::string("RREF\0", 5));
    EXPECT_EQ(std::vector<uint8_t>(r.begin() + 5, r.begin() + 9),
              LittleEndian(XPlaneRefs()[i].rate, 4));
    EXPECT_EQ(std::vector<uint8_t>(r.begin() + 9, r.begin() + 13),
              LittleEndian(static_cast<int64_t>(i), 4));
    const std::string path(reinterpret_cast<const char*>(r.data() + 13));
    EXPECT_EQ(path, XPlaneRefs()[i].dataref);
    EXPECT_TRUE(std::all_of(r.begin() + 13 + static_cast<long>(path.size()), r.end(),
                            [](uint8_t b) { return b == 0; }));
  }
  EXPECT_EQ(XPlaneRefs()[0].rate, 10);
}

struct RefCase {
  std::vector<std::pair<std::string, float>> sent;
  uint32_t offset;
  std::vector<uint8_t> raw;
};

TEST(XPlaneLink, EachDataRefLandsAtItsOffsetInItsRawEncoding) {
  const std::string pos = "sim/flightmodel/position/";
  const std::string radios = "sim/cockpit2/radios/";
  const std::vector<RefCase> cases = {
      {{{pos + "latitude", 64.13f}},
       0x0560,
       LittleEndian(
           std::llround(static_cast<double>(64.13f) * 10001750.0 * 65536.0 * 65536.0 / 90.0), 8)},
      {{{pos + "psi", 270.0f}}, 0x0580, LittleEndian(0xC0000000, 4)},
      {{{pos + "theta", 5.0f}}, 0x0578, LittleEndian(std::llround(-5 / 360.0 * 4294967296.0), 4)},
      {{{pos + "indicated_airspeed", 95.0f}}, 0x02BC, LittleEndian(95 * 128, 4)},
      {{{pos + "groundspeed", 30.0f}},
       0x02B4,
       LittleEndian(std::llround(30 * 1.943844 / 1.943844 * 65536.0), 4)},
      {{{pos + "vh_ind_fpm", 500.0f}},
       0x02C8,
       LittleEndian(std::llround(500 / 3.28084 / 60 * 256), 4)},
      {{{pos + "y_agl", 100.0f}}, 0x31E4, LittleEndian(std::llround(100.0 * 65536.0), 4)},
      {{{"sim/flightmodel/failures/onground_any", 1.0f}}, 0x0366, {1, 0}},
      {{{"sim/aircraft/engine/acf_num_engines", 2.0f}}, 0x0AEC, {2, 0}},
      {{{"sim/aircraft/engine/acf_num_engines", 2.0f},
        {"sim/cockpit2/engine/actuators/throttle_ratio[1]", 1.0f}},
       0x0924,
       LittleEndian(16384, 2)},
      {{{"sim/flightmodel/engine/ENGN_running[0]", 1.0f}}, 0x0894, {1, 0}},
      {{{"sim/aircraft/gear/acf_gear_retract", 1.0f}}, 0x0778, {1, 0}},
      {{{"sim/cockpit2/controls/gear_handle_down", 1.0f}}, 0x0BE8, LittleEndian(16383, 4)},
      {{{"sim/cockpit2/controls/parking_brake_ratio", 1.0f}}, 0x0BC8, LittleEndian(32767, 2)},
      {{{"sim/cockpit2/switches/strobe_lights_on", 1.0f},
        {"sim/cockpit2/switches/navigation_lights_on", 1.0f}},
       0x0D0C,
       {17, 0}},
      {{{radios + "actuators/nav1_frequency_hz", 11050.0f}}, 0x0350, {0x50, 0x10}},
      {{{radios + "actuators/com1_frequency_hz", 12150.0f}}, 0x034E, {0x50, 0x21}},
      {{{radios + "actuators/nav1_obs_deg_mag_pilot", 93.0f}}, 0x0C4E, LittleEndian(93, 2)},
      {{{radios + "actuators/transponder_code", 7000.0f}}, 0x0354, {0x00, 0x70}},
      {{{radios + "actuators/adf1_frequency_hz", 345.0f}}, 0x034C, {0x45, 0x03}},
      {{{radios + "indicators/nav1_hdef_dots_pilot", 2.5f}}, 0x0C48, {127}},
      {{{radios + "indicators/nav1_flag_from_to_pilot", 1.0f}}, 0x0C4B, {1}},
      {{{radios + "indicators/nav1_display_vertical", 1.0f}}, 0x0C4C, {1}},
      {{{"sim/cockpit2/gauges/indicators/wind_heading_deg_mag", 270.0f},
        {"sim/cockpit2/gauges/indicators/wind_speed_kts", 15.0f}},
       0x0EF0,
       {15, 0, static_cast<uint8_t>(std::llround(270 * 65536 / 360.0) & 0xFF),
        static_cast<uint8_t>(std::llround(270 * 65536 / 360.0) >> 8)}},
      {{{"sim/time/zulu_time_sec", 45015.0f}}, 0x023B, {12, 30}},
      {{{"sim/time/local_date_days", 59.0f}}, 0x023E, LittleEndian(60, 2)},
      {{{"sim/time/paused", 1.0f}}, 0x0264, {1, 0}},
      {{{"sim/flightmodel2/misc/has_crashed", 1.0f}}, 0x0840, {1, 0}},
  };
  for (const RefCase& c : cases) {
    FakeXPlane xp;
    auto link = OpenXPlane(xp, c.sent);
    std::ostringstream where;
    where << "0x" << std::hex << c.offset << " after " << c.sent.front().first;
    EXPECT_EQ(ReadThrough(*link, c.offset, static_cast<uint32_t>(c.raw.size())), c.raw)
        << where.str();
  }
}

TEST(XPlaneLink, TheAircraftIsNamedFromItsAcfPath) {
  const std::string file = "Aircraft/Laminar Research/Cessna 172SP/Cessna_172SP.acf";
  std::vector<std::pair<std::string, float>> chars;
  for (size_t i = 0; i < file.size(); ++i)
    chars.emplace_back("sim/aircraft/view/acf_relative_path[" + std::to_string(i) + "]",
                       static_cast<float>(file[i]));
  FakeXPlane xp;
  auto link = OpenXPlane(xp, chars);
  EXPECT_EQ(ReadThrough(*link, 0x3D00, 13), Text("Cessna 172SP"));
  EXPECT_EQ(link->image().String(0x3C00),
            "Aircraft\\Laminar Research\\Cessna 172SP\\Cessna_172SP.acf");
}

TEST(XPlaneLink, DamagedAnswersAreReadErrors) {
  const std::vector<std::pair<std::string, std::vector<uint8_t>>> damaged = {
      {"cut inside a pair", std::vector<uint8_t>{'R', 'R', 'E', 'F', ',', 1, 0, 0, 0, 0, 0}},
      {"not RREF", std::vector<uint8_t>{'D', 'A', 'T', 'A', '*', 0, 0, 0, 0, 0, 0, 0, 0}},
      {"too short for a header", std::vector<uint8_t>{'R', 'R'}},
      {"not a number", RrefAnswer({{0, std::nanf("")}})},
  };
  for (const auto& [why, packet] : damaged) {
    FakeXPlane xp;
    auto link = OpenXPlane(xp, {{"sim/flightmodel/position/indicated_airspeed", 70.0f}});
    xp.socket.SendTo(xp.linkPort, packet);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    int result = kLinkOk;
    uint8_t ias[4];
    link->Read(0x02BC, 4, ias, result);
    EXPECT_FALSE(link->Process(result)) << why;
    EXPECT_EQ(result, kLinkBadData) << why;
    EXPECT_EQ(link->image().U32(0x02BC), 70u * 128) << why;
  }
}

TEST(XPlaneLink, WritesAreDrefAndCmndPacketsOrAreToldOnce) {
  struct Case {
    uint32_t offset;
    std::vector<uint8_t> bytes;
    std::vector<uint8_t> packet;  // empty: none sent
    std::string missing;
  };
  const std::vector<Case> cases = {
      {0x0350,
       {0x50, 0x10},
       DrefPacket(11050.0f, "sim/cockpit2/radios/actuators/nav1_frequency_hz"),
       ""},
      {0x0C4E, LittleEndian(93, 2),
       DrefPacket(93.0f, "sim/cockpit2/radios/actuators/nav1_obs_deg_mag_pilot"), ""},
      {0x0B65, {1}, DrefPacket(6.0f, "sim/operation/failures/rel_ss_asi"), ""},
      {0x0B65, {0}, DrefPacket(0.0f, "sim/operation/failures/rel_ss_asi"), ""},
      {0x3123, {4}, CmndPacket("sim/radios/com2_standy_flip"), ""},
      {0x3380, Text("CHECK FLAPS"), {}, "a text line on the screen"},
      {0x32F8, {0}, {}, "the write to offset 0x32F8"},
  };
  FakeXPlane xp;
  auto link = OpenXPlane(xp, {});
  xp.Forget();
  int result = kLinkOk;
  for (const Case& c : cases) {
    for (int twice = 0; twice < 2; ++twice) {
      ASSERT_TRUE(
          link->Write(c.offset, static_cast<uint32_t>(c.bytes.size()), c.bytes.data(), result));
      link->Process(result);
    }
    const auto notices = link->TakeNotices();
    if (c.packet.empty()) {
      ASSERT_EQ(notices.size(), 1u) << c.missing;
      EXPECT_NE(notices[0].find("X-Plane has no equivalent of " + c.missing), std::string::npos);
      continue;
    }
    EXPECT_TRUE(notices.empty());
    const std::string word(c.packet.begin(), c.packet.begin() + 4);
    const auto sent = xp.Taken(word, 2);
    ASSERT_EQ(sent.size(), 2u) << std::hex << c.offset;  // once for each write
    EXPECT_EQ(sent[0], c.packet) << std::hex << c.offset;
    if (word == "DREF") {
      // "DREF", a zero byte, the value as a little-endian float, the path in 500 bytes.
      ASSERT_EQ(sent[0].size(), 509u);
      EXPECT_EQ(sent[0][4], 0);
    }
    xp.Forget();
  }
}

}  // namespace
}  // namespace vantoro
