// The app's HTTP API against a stand-in host flying the demo circuit: every
// endpoint, what the pages refuse, path escapes, oversize uploads and the
// pairing code of a LAN listener.
#include "app/web/web_server.h"

#include <gtest/gtest.h>
#include <httplib.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "app/web/flight_plots.h"
#include "standin_host.h"

namespace vantoro {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

// The smallest PNG header ReadImageSize measures: signature, IHDR size.
std::string Png(uint32_t width, uint32_t height) {
  std::string s = "\x89PNG\r\n\x1a\n";
  s += std::string("\0\0\0\x0dIHDR", 8);
  for (uint32_t v : {width, height})
    for (int shift = 24; shift >= 0; shift -= 8) s += static_cast<char>((v >> shift) & 0xFF);
  s += std::string("\x08\x06\0\0\0", 5);
  s += std::string(4, '\0');  // CRC, not checked
  return s;
}

class WebServerTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    root_ = new fs::path(fs::temp_directory_path() /
                         ("vantoro-web-test-" + std::to_string(::getpid())));
    fs::remove_all(*root_);
    // A copy of the data folder to write in; the voice packs, large and only
    // read, are linked.
    fs::create_directories(*root_);
    for (const auto& entry : fs::directory_iterator(fs::path(VANTORO_SOURCE_DIR) / "data")) {
      const fs::path target = *root_ / entry.path().filename();
      if (entry.path().filename() == "Sound")
        fs::create_directory_symlink(entry.path(), target);
      else
        fs::copy(entry.path(), target, fs::copy_options::recursive);
    }
    fs::create_directory_symlink("/etc", *root_ / "escape");
    StandInSetup setup;
    setup.root = root_->string();
    setup.recording = (*root_ / "Recordings" / "demo-c172-circuit.vrec").string();
    setup.pilot = (*root_ / "PilotRoster" / "LightSpeed.plt").string();
    setup.maxTicks = 200;  // at the holding point: an aircraft is known
    host_ = new StandInHost(setup);
    std::string error;
    ASSERT_TRUE(host_->Start(error)) << error;
    WebServerOptions o;
    o.root = root_->string();
    server_ = new WebServer(o, host_->mailbox, host_->feed);
    ASSERT_TRUE(server_->Start(error)) << error;
    while (!host_->Finished()) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  static void TearDownTestSuite() {
    delete server_;
    delete host_;
    fs::remove_all(*root_);
    delete root_;
  }

  static httplib::Client Client() {
    httplib::Client c("127.0.0.1", server_->Port());
    c.set_read_timeout(30, 0);
    return c;
  }

  static fs::path* root_;
  static StandInHost* host_;
  static WebServer* server_;
};

fs::path* WebServerTest::root_ = nullptr;
StandInHost* WebServerTest::host_ = nullptr;
WebServer* WebServerTest::server_ = nullptr;

struct Call {
  const char* what;
  const char* method;
  std::string path;
  std::string body;
  int status;
  std::string contains;  // in the answer's body
};

TEST_F(WebServerTest, EveryEndpointAnswersAndRefusesWhatIsMalformed) {
  const std::string big(kMaxUploadBytes + 1, 'x');
  const std::vector<Call> calls = {
      {"state document", "GET", "/api/state", "", 200, "\"aircraft\":\"Cessna Skyhawk"},
      {"pilot page", "GET", "/api/pilot", "", 200, "\"name\":\"LightSpeed\""},
      {"edit a box", "POST", "/api/pilot", R"({"record":{"Humour":false}})", 200,
       "\"Humour\":false"},
      {"box of the wrong kind", "POST", "/api/pilot", R"({"record":{"Humour":"no"}})", 400,
       "must be true or false"},
      {"unknown field", "POST", "/api/pilot", R"({"record":{"Shoes":true}})", 400,
       "unknown pilot field"},
      {"slider out of range", "POST", "/api/pilot", R"({"record":{"FailureSlider":101}})", 400,
       "from 0 to 100"},
      {"body not JSON", "POST", "/api/pilot", "{record", 400, "must be a JSON object"},
      {"save to the current file", "POST", "/api/pilot/save", "{}", 200, "Saved LightSpeed.plt"},
      {"save under a name", "POST", "/api/pilot/save", R"({"name":"Second Pilot"})", 200,
       "Saved Second Pilot.plt"},
      {"save name with a folder", "POST", "/api/pilot/save", R"({"name":"../../evil"})", 400,
       "plain file name"},
      {"load a missing pilot", "POST", "/api/pilot/load", R"({"file":"Nobody.plt"})", 404,
       "no pilot file"},
      {"load back", "POST", "/api/pilot/load", R"({"file":"LightSpeed.plt"})", 200,
       "\"file\":\"LightSpeed.plt\""},
      {"picture 80 by 80", "POST", "/api/pilot/picture", Png(80, 80), 200, "Pictures"},
      {"picture too high first", "POST", "/api/pilot/picture", Png(81, 81), 422,
       "The image cannot be over 80 pixels high!"},
      {"picture too wide", "POST", "/api/pilot/picture", Png(81, 80), 422,
       "The image cannot be over 80 pixels wide!"},
      {"not a picture", "POST", "/api/pilot/picture", "hello", 415, "PNG, JPEG, GIF or BMP"},
      {"oversize upload", "POST", "/api/pilot/picture", big, 413, "too large"},
      {"picture served", "GET", "/api/pilot/picture", "", 200, "PNG"},
      {"settings page", "GET", "/api/settings", "", 200, "and Brake set && Eng(s) off"},
      {"end-of-flight choice", "POST", "/api/settings", R"({"settings":{"EndFlight":2}})", 200,
       "\"EndFlight\":2"},
      {"end-of-flight out of range", "POST", "/api/settings", R"({"settings":{"EndFlight":3}})",
       400, "has a value the setting cannot take"},
      {"sound device not in the list", "POST", "/api/settings", R"({"soundCard":42})", 400,
       "soundCard"},
      {"aircraft page", "GET", "/api/aircraft", "", 200, "Monitor Cessna 172"},
      {"profile named from the data root", "GET", "/api/aircraft", "", 200,
       "\"sourceFile\":\"Aircraft/C172.fsr\""},
      {"profile locked", "POST", "/api/aircraft/profile", R"({"profile":{"IASStallCruise":"50"}})",
       409, "User Specified Data"},
      {"unknown source", "POST", "/api/aircraft/source", R"({"source":"optMagic"})", 400,
       "optFSData"},
      {"pilot's own data", "POST", "/api/aircraft/source", R"({"source":"optUserData"})", 200,
       "\"source\":\"optUserData\""},
      {"profile validation lines", "POST", "/api/aircraft/profile",
       R"({"profile":{"IASStallCruise":"fast","MaxGearExtension":"1.5"}})", 422,
       R"(* Clean Stall Speed is invalid\r\n* Max Gear Extension Speed must be a whole number)"},
      {"profile saved", "POST", "/api/aircraft/profile", R"({"profile":{"IASStallCruise":"48"}})",
       200, ".fsu"},
      {"monitoring box", "POST", "/api/aircraft/monitoring", R"({"box":11,"value":true})", 200,
       "\"box\":11,\"checked\":true"},
      {"monitoring box out of range", "POST", "/api/aircraft/monitoring",
       R"({"box":42,"value":true})", 400, "from 0 to 41"},
      {"log book", "GET", "/api/logbook", "", 200, "\"rows\""},
      {"recordings", "GET", "/api/recordings", "", 200, "Recordings/demo-c172-circuit.vrec"},
      {"touchdown rates", "GET", "/api/touchdowns", "", 200, "\"rate\":-"},
      {"log book as written", "GET", "/api/logbook/html", "", 404, "no log book yet"},
      {"recording out of the root", "GET", "/api/recording?file=../../etc/passwd", "", 400,
       "inside the data folder"},
      {"file in the root", "GET", "/api/file?path=text/english.txt", "", 200, "[Sound Files]"},
      {"absolute path", "GET", "/api/file?path=/etc/passwd", "", 400, "inside the data folder"},
      {"dot dot", "GET", "/api/file?path=text/../../x", "", 400, "inside the data folder"},
      {"backslash dot dot", "GET", "/api/file?path=text\\..\\..\\x", "", 400,
       "inside the data folder"},
      {"link out of the root", "GET", "/api/file?path=escape/passwd", "", 400,
       "inside the data folder"},
      {"page escape", "GET", "/%2e%2e/%2e%2e/etc/passwd", "", 400, "inside the app's folder"},
      {"the Fly page", "GET", "/", "", 200, "<title>Vantoro"},
      {"no such page", "GET", "/nothing.html", "", 404, "no such page"},
      {"hot key", "POST", "/api/key", R"({"key":11})", 200, "\"key\":11"},
      {"hot key out of range", "POST", "/api/key", R"({"key":16})", 400, "from 1 to 15"},
      {"hot key by name", "POST", "/api/key", R"({"key":"B"})", 400, "hot key slot"},
      {"disconnect", "POST", "/api/disconnect", "", 200, "\"connected\":false"},
      {"hot key on the ground", "POST", "/api/key", R"({"key":7})", 409,
       "connect to the simulator first"},
      {"connect", "POST", "/api/connect", "", 200, "\"connected\":true"},
      {"bad event number", "GET", "/api/events?after=abc", "", 400, "Last-Event-ID"},
  };
  httplib::Client c = Client();
  for (const Call& call : calls) {
    SCOPED_TRACE(call.what);
    httplib::Result r = std::string(call.method) == "GET"
                            ? c.Get(call.path.c_str())
                            : c.Post(call.path.c_str(), call.body, "application/json");
    ASSERT_TRUE(r) << httplib::to_string(r.error());
    EXPECT_EQ(r->status, call.status) << r->body;
    EXPECT_NE(r->body.find(call.contains), std::string::npos) << r->body;
  }
  EXPECT_TRUE(fs::exists(*root_ / "PilotRoster" / "Second Pilot.plt"));
  EXPECT_FALSE(fs::exists(root_->parent_path() / "evil.plt"));
  std::ifstream settings(*root_ / "settings.ini");
  std::string text((std::istreambuf_iterator<char>(settings)), {});
  EXPECT_NE(text.find("EndFlight=2"), std::string::npos);
}

TEST_F(WebServerTest, LiveStreamResumesAfterTheLastEventSeen) {
  ASSERT_GT(host_->feed.LastNumber(), 5u);
  httplib::Client c = Client();
  std::string got;
  httplib::Headers resume = {{"Last-Event-ID", "3"}};
  c.Get("/api/events", resume, [&](const char* data, size_t n) {
    got.append(data, n);
    return got.find("id: 5\n") == std::string::npos;  // enough read
  });
  EXPECT_NE(got.find("event: state\ndata: {"), std::string::npos);
  EXPECT_EQ(got.find("id: 3\n"), std::string::npos) << "a line already seen was sent again";
  EXPECT_NE(got.find("id: 4\n"), std::string::npos);
}

TEST_F(WebServerTest, LanListenerNeedsThePairingCode) {
  WebServerOptions o;
  o.root = root_->string();
  o.lanAddress = "127.0.0.2";
  o.pairingCode = "314159";
  WebServer lan(o, host_->mailbox, host_->feed);
  std::string error;
  ASSERT_TRUE(lan.Start(error)) << error;
  for (const char* address : {"127.0.0.1", "127.0.0.2"}) {
    SCOPED_TRACE(address);
    httplib::Client c(address, lan.Port());
    auto none = c.Get("/api/state");
    ASSERT_TRUE(none);
    EXPECT_EQ(none->status, 401);
    auto page = c.Get("/");
    ASSERT_TRUE(page);
    EXPECT_EQ(page->status, 303);
    EXPECT_EQ(page->get_header_value("Location"), "/pair");
    auto wrong = c.Get("/api/state", {{kPairingHeader, "271828"}});
    EXPECT_EQ(wrong->status, 401);
    auto header = c.Get("/api/state", {{kPairingHeader, "314159"}});
    EXPECT_EQ(header->status, 200);
    auto badPair = c.Post("/api/pair", R"({"code":"000000"})", "application/json");
    EXPECT_EQ(badPair->status, 403);
    auto pair = c.Post("/api/pair", R"({"code":"314159"})", "application/json");
    ASSERT_EQ(pair->status, 200);
    const std::string cookie = pair->get_header_value("Set-Cookie");
    EXPECT_EQ(cookie.rfind("vantoro_pairing=314159;", 0), 0u) << cookie;
    auto withCookie = c.Get("/api/state", {{"Cookie", "theme=dark; vantoro_pairing=314159"}});
    EXPECT_EQ(withCookie->status, 200);
  }
}

TEST_F(WebServerTest, RecordedFlightGivesTheApproachAndTouchdownCard) {
  httplib::Client c = Client();
  auto r = c.Get("/api/recording?file=Recordings/demo-c172-circuit.vrec");
  ASSERT_TRUE(r);
  ASSERT_EQ(r->status, 200) << r->body;
  const json flight = json::parse(r->body);
  ASSERT_EQ(flight["landings"].size(), 1u);
  const json& card = flight["landings"][0]["card"];
  EXPECT_LT(card["rate"].get<int>(), 0) << "the touchdown rate is a descent";
  EXPECT_GE(card["ticks"].size(), 2u);
  for (const json& t : card["ticks"]) EXPECT_LE(t["height"].get<double>(), kTouchdownCardFeet);
  EXPECT_EQ(card["runway"], "EGTK 01");
  EXPECT_GT(card["pastThreshold"].get<int>(), 0);
  EXPECT_LT(std::abs(card["centreLineOffset"].get<int>()), 100);
  const json& approach = flight["landings"][0]["approach"];
  ASSERT_GT(approach.size(), 10u);
  EXPECT_EQ(approach.back()["distance"], 0.0);
  EXPECT_GT(approach.front()["distance"].get<double>(), approach.back()["distance"].get<double>());
}

}  // namespace
}  // namespace vantoro
