#include "cli/event_writers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>

namespace vantoro {
namespace {

TEST(JsonLines, StringsStayValidJsonAndKeepTheirText) {
  struct Case {
    std::string in;
    std::string text;  // what a JSON reader finds in the string
  };
  const Case cases[] = {
      {"c172\\vs.wav", "c172\\vs.wav"},
      {"say \"Cruise\"", "say \"Cruise\""},
      {"AUTO-Disconnection due to:\r\nCrash", "AUTO-Disconnection due to:\r\nCrash"},
      {std::string("nul\0!", 5), std::string("nul\0!", 5)},
      {"\x01\x1F\x7F", "\x01\x1F\x7F"},
      {"Caf\xC3\xA9 \xE2\x82\xAC", "Caf\xC3\xA9 \xE2\x82\xAC"},  // UTF-8 kept
      {"Caf\xE9", "Caf\xC3\xA9"},                                // a Latin-1 title
      {"\xC3", "\xC3\x83"},                                      // cut sequence
      {"\xC0\xAF", "\xC3\x80\xC2\xAF"},                          // overlong slash
      {"\xED\xA0\x80", "\xC3\xAD\xC2\xA0\xC2\x80"},              // surrogate
  };
  for (const Case& c : cases) {
    const std::string json = JsonString(c.in);
    EXPECT_EQ(nlohmann::json::parse(json).get<std::string>(), c.text) << json;
  }
}

TEST(JsonLines, EveryObjectStartsWithTickAndTypeThenFieldsInOrder) {
  struct Case {
    Event event;
    const char* json;
  };
  const Case cases[] = {
      {Event{
           12, "spoken", {{"file", "c172\\vs.wav"}, {"caption", "Vee speed"}, {"missing", false}}},
       R"({"tick":12,"type":"spoken","file":"c172\\vs.wav","caption":"Vee speed","missing":false})"},
      {Event{3, "count", {{"name", "NotUseTrimmers"}, {"value", 40}}},
       R"({"tick":3,"type":"count","name":"NotUseTrimmers","value":40})"},
      {Event{900, "landing", {{"score", 87.5}, {"rating", "Good"}}},
       R"({"tick":900,"type":"landing","score":87.5,"rating":"Good"})"},
      {Event{1, "flight", {{"score", 100.0}, {"duration", 0.1}}},
       R"({"tick":1,"type":"flight","score":100.0,"duration":0.1})"},
      {Event{1, "x", {{"nan", std::nan("")}, {"inf", std::numeric_limits<double>::infinity()}}},
       R"({"tick":1,"type":"x","nan":null,"inf":null})"},
      {Event{7, "end", {{"ticks", int64_t{7200}}}}, R"({"tick":7,"type":"end","ticks":7200})"},
      {Event{-1, "error", {}}, R"({"tick":-1,"type":"error"})"},
  };
  for (const Case& c : cases) EXPECT_EQ(EventJson(c.event), c.json);

  std::ostringstream out;
  JsonLinesWriter writer(out);
  writer.Emit(1, "mode", {{"mode", "Taxiing"}});
  writer.Emit(2, "status", {{"text", "two\nlines"}});
  EXPECT_EQ(out.str(),
            "{\"tick\":1,\"type\":\"mode\",\"mode\":\"Taxiing\"}\n"
            "{\"tick\":2,\"type\":\"status\",\"text\":\"two\\nlines\"}\n");
}

TEST(Transcript, VirtualTime) {
  struct Case {
    int64_t ms;
    const char* shown;
  };
  const Case cases[] = {{0, "00:00.0"},          {125, "00:00.1"},    {500, "00:00.5"},
                        {59'999, "00:59.9"},     {61'250, "01:01.2"}, {3'599'875, "59:59.8"},
                        {6'000'000, "100:00.0"}, {-5, "00:00.0"}};
  for (const Case& c : cases) EXPECT_EQ(FormatVirtualTime(c.ms), c.shown) << c.ms;
}

TEST(Transcript, TellsWhatThePilotSeesAndHears) {
  std::ostringstream out;
  int64_t now = 0;
  Transcript t(out, now);
  t.Emit(1, "status", {{"text", "AUTO-Disconnection due to:\nCrash"}});
  t.Emit(1, "mode", {{"mode", "Taxiing"}});
  t.Emit(1, "message", {{"text", "Taxiing..."}, {"seconds", 7}});
  // Sounds queued, dropped, counted and raw writes are not for people.
  t.Emit(1, "queued", {{"file", "c172\\vs.wav"}, {"by", "PlayPerhaps"}});
  t.Emit(1, "count", {{"name", "TaxiTooFast"}, {"value", 1}});
  t.Emit(1, "write", {{"offset", "0x0C4E"}, {"bytes", "0B00"}});
  now = 62'375;
  t.Emit(125, "spoken", {{"file", "Cruise.wav"}, {"caption", "Cruise."}, {"missing", false}});
  t.Emit(125, "spoken", {{"file", "c172\\new.wav"}, {"caption", ""}, {"missing", true}});
  t.Emit(125, "remark", {{"file", "c172\\AmberFlaps.wav"}, {"level", 1}});
  t.Emit(
      300, "landing",
      {{"score", 87.25}, {"rating", "Good"}, {"report", "Touchdown 120 fpm\nOn the centreline"}});
  t.Emit(310, "flight",
         {{"index", 1},
          {"score", 90.0},
          {"landing", 87.25},
          {"circuit", 0.0},
          {"duration", 12.5},
          {"report", "Flight 1"}});
  t.Emit(310, "disconnect", {{"reason", 0}});
  t.Emit(311, "end", {{"ticks", int64_t{311}}});
  EXPECT_EQ(out.str(),
            "00:00.0  status     AUTO-Disconnection due to:\n"
            "                    Crash\n"
            "00:00.0  mode       Taxiing\n"
            "00:00.0  message    Taxiing...\n"
            "01:02.3  says       Cruise.\n"
            "01:02.3  says       (c172\\new.wav)  [no file c172\\new.wav]\n"
            "01:02.3  remark     amber c172\\AmberFlaps.wav\n"
            "01:02.3  landing    score 87.25, Good\n"
            "                    Touchdown 120 fpm\n"
            "                    On the centreline\n"
            "01:02.3  flight     flight 1: score 90, landing 87.25, circuit 0, duration 12.5\n"
            "                    Flight 1\n"
            "01:02.3  disconnect 0\n"
            "01:02.3  end        recording finished after 311 ticks\n");
}

}  // namespace
}  // namespace vantoro
