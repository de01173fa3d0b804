// The rules of one subject on the bench: an instructor connected on tick
// 1001, the test's own random draws, records the test writes field by field,
// and what the pilot got from one call of the rules under test.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "engine/flight_rig.h"

namespace vantoro {

struct RuleBench {
  FlightRig rig;
  ScriptedRandom random;

  RuleBench() {
    rig.instructor.Connect();
    flight().TickCount = 1001;
  }
  Cockpit c() { return WithRandom(rig.instructor.cockpit(), random); }
  FSData& now() { return rig.instructor.link.Now(); }
  FSData& before() { return rig.instructor.link.Records[rig.instructor.link.PreviousRecord]; }
  FlightState& flight() { return rig.instructor.flight; }
  EngineOptions& options() { return rig.instructor.options; }
  LinkState& link() { return rig.instructor.link; }
  void Type(AircraftType t) {
    AircraftValues& a = rig.instructor.aircraft;
    a.Is[static_cast<size_t>(t)] = true;
    a.Monitoring.Boeing[static_cast<size_t>(MainBox(t))] = true;
  }
  // What the pilot got, in order: simulator writes, messages ('text') and
  // files queued.
  std::string Outcome() const {
    std::string out;
    for (size_t i = mark; i < rig.events.events.size(); ++i) {
      const Event& e = rig.events.events[i];
      std::string item;
      if (e.type == "queued") item = e.Text("file");
      if (e.type == "write") item = e.Text("offset") + "=" + e.Text("bytes");
      if (e.type == "message") item = "'" + e.Text("text") + "'";
      if (!item.empty()) out += (out.empty() ? "" : " ") + item;
    }
    return out;
  }
  size_t mark = 0;
};

// One row: how the bench is set, what the pilot gets, how many scripted
// draws the rules leave untaken.
template <typename Bench>
struct RuleCase {
  const char* name;
  std::function<void(Bench&)> set;
  std::string outcome;
  size_t drawsLeft = 0;
};

template <typename Bench>
void CheckRules(const std::vector<RuleCase<Bench>>& rows,
                const std::function<void(Cockpit&)>& rules) {
  for (const RuleCase<Bench>& row : rows) {
    SCOPED_TRACE(row.name);
    Bench b;
    b.mark = b.rig.events.events.size();
    row.set(b);
    Cockpit c = b.c();
    rules(c);
    EXPECT_EQ(b.Outcome(), row.outcome);
    EXPECT_EQ(b.random.draws.size(), row.drawsLeft);
  }
}

}  // namespace vantoro
