// The live program's loop with real timers, run faster than the wall clock
// for a few seconds at most: a recording flown live says what replay says,
// the app's posted work runs on the loop thread, Connect and Disconnect from
// the app work, and the recording kept of a live flight replays to the same
// story.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <map>
#include <mutex>
#include <thread>

#include "app/data_root.h"
#include "app/flight_recorder.h"
#include "app/live_program.h"
#include "base/files.h"
#include "base/gzip.h"
#include "link/recording.h"
#include "shell/event_json.h"
#include "support/scenario.h"
#include "voice/virtual_audio.h"

namespace fs = std::filesystem;

namespace vantoro {
namespace {

using testing::DataRoot;
using testing::GenerateScript;
using testing::MakeVoiceRoot;
using testing::ReplayText;
using testing::ScenarioOptions;

constexpr double kSpeed = 20;  // a tick every 25 ms
constexpr uint64_t kSeed = 1;

// A parked Cessna started up and taxied a little: about sixty ticks.
constexpr const char* kTaxiScript = R"(clock 2026-06-14T09:30:00
aircraft title Cessna Skyhawk 172SP
aircraft path SimObjects\Airplanes\C172\Cessna172SP.air
aircraft engines 1
fuel 24 24
field elevation 270
magvar 0
wind 010 6
position 51.82978359 -1.31962215
heading 280.7
set brake on lights nav
wait for 5
engine start
wait for 5
taxi speed 8 for 15
stop
wait for 3
)";

// Keeps every event; tells the test thread when the recording has ended.
class Witness final : public Events {
 public:
  void Emit(const Event& e) override {
    std::lock_guard lock(mutex_);
    events_.push_back(e);
    if (e.type == "end") ended = true;
  }
  using Events::Emit;
  std::vector<Event> Events() {
    std::lock_guard lock(mutex_);
    return events_;
  }
  std::atomic<bool> ended{false};

 private:
  std::mutex mutex_;
  std::vector<Event> events_;
};

// A wall clock that moves half a second a tick, as replay's does: the sound
// timer's four steps move it on.
class StepClock final : public Clock {
 public:
  WallTime Now() const override { return clock_.Now(); }
  void Step() { clock_.AdvanceSeconds(0.125); }
  FixedClock clock_{WallTime{2026, 6, 14, 9, 30, 0}};
};

// The parts of a test flight: instant virtual sound moved on by each step.
LiveParts TestParts(Witness& witness, StepClock* clock = nullptr) {
  LiveParts parts;
  auto a = std::make_unique<VirtualAudio>(true);
  auto b = std::make_unique<VirtualAudio>(true);
  VirtualAudio* devices[] = {a.get(), b.get()};
  parts.audio = {std::move(a), std::move(b)};
  parts.afterSoundStep = [devices, clock] {
    for (VirtualAudio* d : devices) d->Advance(125);
    if (clock != nullptr) clock->Step();
    return std::string();
  };
  parts.random = std::make_unique<SeededRandom>(kSeed);
  parts.alsoTell = &witness;
  return parts;
}

// Waits (a few seconds at most) until `done` holds.
bool WaitFor(const std::function<bool()>& done) {
  for (int i = 0; i < 2000; ++i) {
    if (done()) return true;
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return done();
}

// Each type's events in order, without their ticks: what was said, counted,
// shown and written, whichever way the sound steps fell between the ticks.
// Entries passed over as stale depend on that timing and are left out, and
// so are the notices about the program's own files, which are the start-up's
// and not the flight's.
std::map<std::string, std::vector<std::string>> Story(const std::vector<Event>& events,
                                                      std::string_view until) {
  std::map<std::string, std::vector<std::string>> story;
  for (Event e : events) {
    if (e.type == until) break;
    if (e.type == "dropped" || e.type == "notice") continue;
    e.tick = 0;
    story[e.type].push_back(EventJson(e));
  }
  return story;
}

int32_t StateTick(LiveProgram& program) {
  const nlohmann::json state = program.feed().State();
  return state.is_object() ? state.value("tick", 0) : 0;
}

TEST(LiveLoop, ARecordingFlownLiveSaysWhatReplaySays) {
  const std::string text = GenerateScript(kTaxiScript);
  Recording recording;
  std::string error;
  ASSERT_TRUE(ParseRecording("taxi", text, recording, error)) << error;
  const int64_t ticks = recording.TotalTicks();

  // A root of the test's own: other tests may be writing voices into the
  // program's data folder meanwhile.
  const fs::path folder = fs::temp_directory_path() / ("vantoro-feed-" + std::to_string(getpid()));
  fs::remove_all(folder);
  const std::string root = MakeVoiceRoot(folder.string(), "Jim",
                                         {"VantoroInitialization.wav", "TeachVNTRConnecting.wav"});

  Witness witness;
  LiveParts parts = TestParts(witness);
  parts.recording = std::make_unique<RecordingFeed>(recording);
  LiveProgram program(LiveSetup{root, kSpeed}, std::move(parts));
  program.StartUp();
  std::thread loop([&] { EXPECT_EQ(program.Run(), 0); });
  const bool ended = WaitFor([&] { return witness.ended.load(); });
  program.Stop();
  loop.join();
  ASSERT_TRUE(ended) << "the recording was not flown to its end";

  const std::vector<Event> live = witness.Events();
  const std::vector<Event> replayed = ReplayText(text, {root, kSeed, true, ""}).events;
  EXPECT_EQ(Story(live, "end"), Story(replayed, "end"));
  EXPECT_GE(program.loop().Fired(LiveTimer::FSPoll), ticks);
  EXPECT_GE(program.loop().Fired(LiveTimer::SoundTimer), program.loop().Fired(LiveTimer::FSPoll));

  // The app's stream carries every event as its JSON line, in order, and
  // the state document the last tick.
  const std::vector<FeedLine> lines = program.feed().LinesAfter(0, std::chrono::milliseconds(0));
  ASSERT_EQ(lines.size(), std::min(live.size(), LiveFeed::kKeptLines));
  const size_t skipped = live.size() - lines.size();
  for (size_t i = 0; i < lines.size(); ++i) EXPECT_EQ(lines[i].json, EventJson(live[skipped + i]));
  EXPECT_EQ(StateTick(program), replayed.back().tick);
  EXPECT_EQ(program.feed().State().value("status", ""), "Status: The recording is finished");
  fs::remove_all(folder);
}

TEST(LiveLoop, PostedWorkRunsOnTheLoopThreadInTheOrderPosted) {
  Witness witness;
  LiveProgram program(LiveSetup{DataRoot(), kSpeed}, TestParts(witness));
  program.StartUp();
  std::thread loop([&] { program.Run(); });
  std::vector<std::pair<int, std::thread::id>> ran;  // touched on the loop thread only
  std::thread app([&] {
    for (int i = 1; i <= 3; ++i)
      program.mailbox().Post(
          [&ran, i](Instructor&) { ran.emplace_back(i, std::this_thread::get_id()); });
  });
  app.join();
  const std::optional<nlohmann::json> answer = program.mailbox().Ask(
      [&](Instructor& in) {
        return nlohmann::json{{"ran", ran.size()}, {"tick", in.flight.TickCount}};
      },
      std::chrono::seconds(5));
  // The world read off the loop is taken in, and the web timer tells the app.
  const bool worldTold = WaitFor([&] {
    const nlohmann::json state = program.feed().State();
    return state.is_object() && state.contains("app") &&
           state["app"]["world"].value("state", "") == "loaded" &&
           state["app"]["world"].value("runways", 0) > 0;
  });
  program.Stop();
  loop.join();
  ASSERT_TRUE(answer.has_value());
  EXPECT_EQ((*answer)["ran"], 3) << "posted work runs before the question asked after it";
  ASSERT_EQ(ran.size(), 3u);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(ran[i].first, i + 1);
    EXPECT_EQ(ran[i].second, program.loop().LoopThread());
  }
  EXPECT_NE(program.loop().LoopThread(), std::this_thread::get_id());
  EXPECT_TRUE(worldTold) << program.feed().State().dump();
}

TEST(LiveLoop, WhatActsOnTheFlightWaitsForTheRemoteTimer) {
  using Due = Mailbox::Due;
  struct Case {
    const char* what;
    std::vector<std::pair<int, Due>> posted;
    std::vector<int> now, remote;  // what each run carries out, in order
  };
  const Case cases[] = {
      {"pages at once", {{1, Due::Now}, {2, Due::Now}}, {1, 2}, {}},
      {"flight requests by the remote timer",
       {{1, Due::RemoteTimer}, {2, Due::RemoteTimer}},
       {},
       {1, 2}},
      {"each in its own order",
       {{1, Due::RemoteTimer}, {2, Due::Now}, {3, Due::RemoteTimer}, {4, Due::Now}},
       {2, 4},
       {1, 3}},
  };
  Witness witness;
  LiveProgram program(LiveSetup{DataRoot(), kSpeed}, TestParts(witness));
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Mailbox mailbox;
    std::vector<int> ran;
    for (const auto& [n, due] : c.posted)
      mailbox.Post([&ran, n = n](Instructor&) { ran.push_back(n); }, due);
    EXPECT_EQ(mailbox.RunPending(program.instructor()), c.now.size());
    EXPECT_EQ(ran, c.now);
    ran.clear();
    EXPECT_EQ(mailbox.RunRemote(program.instructor()), c.remote.size());
    EXPECT_EQ(ran, c.remote);
  }
}

std::vector<fs::path> FilesEndingIn(const fs::path& folder, const std::string& ending) {
  std::vector<fs::path> out;
  std::error_code ec;
  for (fs::recursive_directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
    const std::string name = it->path().string();
    if (name.size() > ending.size() && name.ends_with(ending)) out.push_back(it->path());
  }
  return out;
}

// The simulator as the taxi script has it after a few seconds.
OffsetImage TaxiingImage() {
  OffsetImage image;
  testing::ForEachTick(GenerateScript(kTaxiScript), [&](const OffsetImage& now, int64_t tick) {
    if (tick == 20) image = now;
  });
  return image;
}

// The hot key slot "next flight mode".
constexpr int kPressedInApp = 7;

TEST(LiveLoop, ConnectAndDisconnectFromTheAppAndTheFlightsRecordingReplays) {
  const fs::path folder = fs::temp_directory_path() / ("vantoro-live-" + std::to_string(getpid()));
  fs::remove_all(folder);
  const std::string root = MakeVoiceRoot(folder.string(), "Jim", {});
  OffsetImage image = TaxiingImage();

  Witness witness;
  auto clock = std::make_unique<StepClock>();
  LiveParts parts = TestParts(witness, clock.get());
  parts.sim = std::make_unique<ImageLink>(image);
  parts.clock = std::move(clock);
  LiveProgram program(LiveSetup{root, kSpeed}, std::move(parts));
  program.StartUp();
  std::thread loop([&] { program.Run(); });
  // The app's Connect waits for the remote timer, as its hot keys do.
  constexpr Mailbox::Due kRemote = Mailbox::Due::RemoteTimer;
  program.mailbox().Post([](Instructor& in) { in.Connect(); }, kRemote);
  ASSERT_TRUE(WaitFor([&] { return StateTick(program) >= 6; })) << "no ticks after Connect";
  // "Next flight mode" pressed in the app while taxiing: the mode moves on,
  // and the flight's recording must replay the same press.
  auto modes = [&] {
    const std::vector<Event> events = witness.Events();
    return std::count_if(events.begin(), events.end(),
                         [](const Event& e) { return e.type == "mode"; });
  };
  const auto before = modes();
  program.mailbox().Post([](Instructor& in) { in.PressHotKey(kPressedInApp); }, kRemote);
  ASSERT_TRUE(WaitFor([&] { return modes() > before; }))
      << "the hot key pressed in the app did nothing";

  // While the flight is open its recording is readable up to the last second
  // written: a program that dies now keeps all but that second.
  const fs::path recordings = fs::path(root) / "Recordings";
  Recording partial;
  std::string error;
  EXPECT_TRUE(WaitFor([&] {
    const std::vector<fs::path> open = FilesEndingIn(recordings, ".vrec.gz.part");
    return open.size() == 1 && LoadRecording(open[0].string(), partial, error) &&
           partial.TotalTicks() > 0;
  })) << error;

  program.mailbox().Post([](Instructor& in) { in.Disconnect(); });
  ASSERT_TRUE(WaitFor([&] {
    return FilesEndingIn(recordings, ".vrec.gz.part").empty() &&
           FilesEndingIn(recordings, ".vrec.gz").size() == 1;
  })) << "Disconnect did not close the flight's recording";
  program.Stop();
  loop.join();
  EXPECT_FALSE(program.instructor().flight.UserConnected);

  const fs::path kept = FilesEndingIn(recordings, ".vrec.gz")[0];
  EXPECT_EQ(static_cast<unsigned char>(ReadFile(kept.string())[0]), 0x1F) << "gzip";
  Recording recorded;
  ASSERT_TRUE(LoadRecording(kept.string(), recorded, error)) << error;
  std::string recordedText;
  ASSERT_EQ(InflateLimited(ReadFile(kept.string()), recordedText), InflateResult::Ok);
  EXPECT_NE(recordedText.find("\nkey " + std::to_string(kPressedInApp) + "\n"), std::string::npos);
  const std::vector<Event> replayed = ReplayText(recordedText, {root, kSeed, true, ""}).events;
  const auto story = Story(witness.Events(), "disconnect");
  EXPECT_EQ(story, Story(replayed, "end"));
  EXPECT_TRUE(story.count("status") && story.count("mode") && story.count("spoken"))
      << "the flight told nothing worth comparing";
  fs::remove_all(folder);
}

// The simulator goes away in the middle of a flight and comes back: ten
// failed reads drop the link, the pilot stays connected, the link opens again
// and the flight goes on in the same recording, which holds every tick that
// was read and none of those that failed.
TEST(LiveLoop, ASimulatorGoneForAWhileLeavesTheFlightInOneWholeRecording) {
  const fs::path folder = fs::temp_directory_path() / ("vantoro-gone-" + std::to_string(getpid()));
  fs::remove_all(folder);
  const std::string root = MakeVoiceRoot(folder.string(), "Jim", {});
  OffsetImage image = TaxiingImage();
  Witness witness;
  auto clock = std::make_unique<StepClock>();
  LiveParts parts = TestParts(witness, clock.get());
  auto link = std::make_unique<ImageLink>(image);
  ImageLink* sim = link.get();
  parts.sim = std::move(link);
  parts.clock = std::move(clock);
  LiveProgram program(LiveSetup{root, kSpeed}, std::move(parts));
  program.StartUp();
  std::thread loop([&] { program.Run(); });
  auto told = [&](const std::string& status) {
    const std::vector<Event> events = witness.Events();
    return std::any_of(events.begin(), events.end(), [&](const Event& e) {
      return e.type == "status" && e.Text("text").rfind(status, 0) == 0;
    });
  };
  program.mailbox().Post([](Instructor& in) { in.Connect(); }, Mailbox::Due::RemoteTimer);
  ASSERT_TRUE(WaitFor([&] { return StateTick(program) >= 6; })) << "no ticks after Connect";

  // The link's changes are made on the loop thread, between two ticks.
  program.mailbox().Post([sim](Instructor&) {
    sim->failProcessWith = kLinkTimeout;
    sim->failOpenWith = kLinkNoServer;
  });
  ASSERT_TRUE(WaitFor([&] { return told("Status: No Flight Simulator Found"); }));
  program.mailbox().Post([sim](Instructor&) {
    sim->failProcessWith = kLinkOk;
    sim->failOpenWith = kLinkOk;
  });
  ASSERT_TRUE(WaitFor([&] { return told("Status: Monitoring FSX"); }));
  const int32_t back = StateTick(program);
  ASSERT_TRUE(WaitFor([&] { return StateTick(program) >= back + 6; }))
      << "no ticks after the return";
  program.mailbox().Post([](Instructor& in) { in.Disconnect(); });
  const fs::path recordings = fs::path(root) / "Recordings";
  ASSERT_TRUE(WaitFor([&] { return FilesEndingIn(recordings, ".vrec.gz.part").empty(); }));
  program.Stop();
  loop.join();
  // The pilot stayed connected through the outage: one disconnection, his.
  const std::vector<Event> events = witness.Events();
  EXPECT_EQ(std::count_if(events.begin(), events.end(),
                          [](const Event& e) { return e.type == "disconnect"; }),
            1);

  const std::vector<fs::path> kept = FilesEndingIn(recordings, ".vrec.gz");
  ASSERT_EQ(kept.size(), 1u) << "the outage split the flight's recording";
  Recording recorded;
  std::string error;
  ASSERT_TRUE(LoadRecording(kept[0].string(), recorded, error)) << error;
  EXPECT_EQ(recorded.TotalTicks(), program.instructor().flight.TickCount);
  fs::remove_all(folder);
}

TEST(LiveLoop, ARecordingLeftOpenByAProgramThatDiedIsKept) {
  const fs::path folder = fs::temp_directory_path() / ("vantoro-open-" + std::to_string(getpid()));
  fs::create_directories(folder / "PilotRoster");
  const fs::path open = folder / "PilotRoster" / "Jo 2026-06-14 09-30-00.vrec.gz.part";
  ASSERT_TRUE(WriteFileAtomic(open.string(), GzipText("vantoro-recording 1\ntick\n")));
  const std::vector<std::string> kept = RecoverOpenRecordings(folder.string());
  ASSERT_EQ(kept.size(), 1u);
  EXPECT_EQ(fs::path(kept[0]).filename(), "Jo 2026-06-14 09-30-00.vrec.gz");
  EXPECT_FALSE(fs::exists(open));
  fs::remove_all(folder);
}

TEST(LiveLoop, TheDataRootBesideTheProgramOrThePilotsOwn) {
  const fs::path folder = fs::temp_directory_path() / ("vantoro-root-" + std::to_string(getpid()));
  fs::create_directories(folder / "shipped");
  fs::create_directories(folder / "own");
  const std::string shipped = (folder / "shipped").string();
  const std::string own = (folder / "own").string();
  const std::string none = (folder / "none").string();
  struct Case {
    std::string shipped, user, root;
    bool fails;
  };
  const Case cases[] = {
      {shipped, own, shipped, false},  // writable beside the program
      {"", own, own, false},           // nothing beside the program
      {none, own, own, false},        {"", "", "", true},
      {none, none, "", true},  // nothing to copy from
  };
  for (const Case& c : cases) {
    std::string note, error;
    EXPECT_EQ(ChooseDataRoot(c.shipped, c.user, note, error), c.root) << c.shipped << " " << c.user;
    EXPECT_EQ(!error.empty(), c.fails) << error;
  }
  fs::remove_all(folder);
}

}  // namespace
}  // namespace vantoro
