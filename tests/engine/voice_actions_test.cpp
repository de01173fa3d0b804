// Hot keys in the simulator's table and voice commands, on the bench: what
// the instructor writes into the table, what a press or a phrase makes it
// do on the next tick, and what the pilot hears in reply.
#include "engine/voice_actions.h"

#include <fstream>

#include "engine/flight_rig.h"
#include "link/hotkey_table.h"

namespace vantoro {
namespace {

uint16_t EntryCode(const OffsetImage& image, int entry) {
  return image.U16(HotKeyEntryOffset(entry));
}
uint8_t HitMarker(const OffsetImage& image, int entry) {
  return image.U8(HotKeyEntryOffset(entry) + kHotKeyHitByte);
}
// Another program's hot key in the table.
void Foreign(OffsetImage& image, int entry) {
  image.SetU16(HotKeyEntryOffset(entry), 0x0341);
}

TEST(HotKeys, EachSlotTakesTheNextFreeEntryOnTheFirstTick) {
  FlightRig rig;
  Foreign(rig.image, 0);
  Foreign(rig.image, 2);
  rig.instructor.Connect();
  rig.Tick();
  // Slot 1 at entry 1, slot 2 at entry 3, then on without a gap.
  const int entryOfSlot[] = {0, 1, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
  for (int slot = 1; slot <= kHotKeySlots; ++slot) {
    const int entry = entryOfSlot[slot];
    EXPECT_EQ(EntryCode(rig.image, entry), HotKeyCode(slot)) << "slot " << slot;
    EXPECT_EQ(rig.flight().HotKeys[slot].Offset, static_cast<int32_t>(HotKeyEntryOffset(entry)));
    EXPECT_EQ(rig.flight().HotKeys[slot].Toggle, 0);
  }
  EXPECT_EQ(EntryCode(rig.image, 0), 0x0341);
  EXPECT_EQ(EntryCode(rig.image, 17), 0);
  // The codes as the simulator knows the keys: Ctrl+Shift+1, Ctrl+Shift+Z,
  // Ctrl+Shift+Space, and the microphone key 5 with no shift.
  EXPECT_EQ(HotKeyCode(1), 817);
  EXPECT_EQ(HotKeyCode(7), 858);
  EXPECT_EQ(HotKeyCode(10), 800);
  EXPECT_EQ(HotKeyCode(14), 53);
  EXPECT_EQ(HotKeyCode(15), 851);
}

TEST(HotKeys, APressActsOnceTogglesAndIsClearedInTheSimulator) {
  FlightRig rig;
  rig.Ready();
  ASSERT_EQ(rig.flight().HotKeys[7].Toggle, 0);
  const int entry = 6;  // slot 7 on an empty table
  rig.Mark();
  ASSERT_TRUE(PressHotKeyEntry(rig.image, HotKeyCode(7)));
  rig.Tick();
  EXPECT_EQ(rig.Modes(), "TakeOff");
  EXPECT_EQ(HitMarker(rig.image, entry), 0);
  EXPECT_EQ(rig.flight().HotKeys[7].Toggle, 1);
  EXPECT_EQ(rig.Texts("write", "offset"), "0x322B");
  // Seen once: the next tick does nothing more.
  rig.Tick();
  EXPECT_EQ(rig.Modes(), "TakeOff");
  PressHotKeyEntry(rig.image, HotKeyCode(8));
  rig.Tick();
  EXPECT_EQ(rig.Modes(), "TakeOff|Taxiing");
  PressHotKeyEntry(rig.image, HotKeyCode(7));
  rig.Tick();
  EXPECT_EQ(rig.flight().HotKeys[7].Toggle, 0);
}

TEST(HotKeys, AFullTableIsTriedAgainEveryTick) {
  FlightRig rig;
  for (int entry = 0; entry < kHotKeyEntries; ++entry) Foreign(rig.image, entry);
  rig.instructor.Connect();
  rig.Tick(2);
  for (int slot = 1; slot <= kHotKeySlots; ++slot)
    EXPECT_EQ(rig.flight().HotKeys[slot].Toggle, -1) << slot;
  rig.image.SetU16(HotKeyEntryOffset(40), 0);
  rig.Tick();
  EXPECT_EQ(rig.flight().HotKeys[1].Offset, static_cast<int32_t>(HotKeyEntryOffset(40)));
  EXPECT_EQ(rig.flight().HotKeys[2].Toggle, -1);
}

TEST(HotKeys, EveryEndOfTheConnectionReleasesTheEntries) {
  FlightRig rig;
  Foreign(rig.image, 3);
  rig.Ready();
  rig.instructor.Disconnect();
  for (int entry = 0; entry < kHotKeyEntries; ++entry)
    if (entry != 3) {
      EXPECT_EQ(EntryCode(rig.image, entry), 0) << entry;
    }
  EXPECT_EQ(EntryCode(rig.image, 3), 0x0341);
  for (int slot = 1; slot <= kHotKeySlots; ++slot) {
    EXPECT_EQ(rig.flight().HotKeys[slot].Toggle, -1);
    EXPECT_EQ(rig.flight().HotKeys[slot].Offset, 0);
  }
  // A new connection registers them again.
  rig.instructor.Connect();
  rig.Tick();
  EXPECT_EQ(EntryCode(rig.image, 0), HotKeyCode(1));

  // A crash ends the connection too.
  rig.Tick(20);
  rig.Crashed(true);
  rig.Tick();
  EXPECT_EQ(rig.Disconnects().find("Crash") != std::string::npos, true);
  EXPECT_EQ(EntryCode(rig.image, 0), 0);
}

constexpr int kSoundStepMs = 125;

// The silence that stands in for each missing recording of the bench's
// voice: a wave of no samples, so that a reply's files pass one a step.
void WriteSilence(const std::filesystem::path& root) {
  const unsigned char wave[44] = {'R', 'I', 'F',  'F',  36,  0,   0,   0,    'W', 'A', 'V',
                                  'E', 'f', 'm',  't',  ' ', 16,  0,   0,    0,   1,   0,
                                  1,   0,   0x80, 0x3E, 0,   0,   0,   0x7D, 0,   0,   2,
                                  0,   16,  0,    'd',  'a', 't', 'a', 0,    0,   0,   0};
  std::ofstream(root / "Sound" / "FSSilence.wav", std::ios::binary)
      .write(reinterpret_cast<const char*>(wave), sizeof wave);
}

class VoiceCommands : public ::testing::Test {
 protected:
  void SetUp() override {
    WriteSilence(rig.dir_);
    rig.instructor.options.VoiceMode = kVoiceAlways;
    rig.Ready();
    rig.Mark();
  }
  // The pilot says the phrases, then one tick runs and the reply is spoken
  // before the next phrase (the bench's sounds take no time).
  void Say(std::initializer_list<std::string_view> phrases) {
    for (std::string_view p : phrases) rig.instructor.HearPhrase(p);
    rig.Tick();
    for (int i = 0; i < kRingSize; ++i) {
      rig.instructor.SoundStep();
      rig.audio.Advance(kSoundStepMs);
      rig.idle.Advance(kSoundStepMs);
    }
  }
  FlightRig rig;
};

TEST_F(VoiceCommands, RepliesThePilotHears) {
  struct Case {
    std::string_view phrase;
    std::string queued;  // the files of the reply, in order
  };
  const Case cases[] = {
      {"ground speed", "Groundspeedis.wav|0.WAV|Knots.wav"},
      {"above ground level", "0.wav|Feet.wav"},
      {"can you hear me", "ICanHearYou.wav"},
      {"visibility and wind", "VisibilityIs.wav|VeryBad.wav|Wind.wav|Calm.wav"},
      {"be quiet please", "Pause125ms.wav"},
      {"i want your help", "IAmReadyToHelpWhenYouNeedMe.wav"},
      {"flight plan remaining", "FlightPlanLengthIs.WAV|0.wav|Miles.wav"},
      // No plan: nothing remains, and the estimate adds its minute.
      {"flight time remaining", "1.wav|Minute.wav"},
      // No destination, no runways, no waypoint, no plan: "negative".
      {"destination runway", "negative.wav"},
      {"i l s", "negative.wav"},
      {"runway heading", "negative.wav"},
      {"nearest airport", "negative.wav"},
      {"airport three a clock", "negative.wav"},
      {"next way point", "negative.wav"},
      {"waypoint frequency", "negative.wav"},
      {"waypoint time", "negative.wav"},
      {"fuel to destination", "negative.wav"},
      {"cruise altitude", "negative.wav"},
      {"next runway", "negative.wav"},
      {"divert to alternate", "negative.wav"},
      {"traffic", "negative.wav"},
      {"display data", "negative.wav"},
      {"specify airport", "airport.wav"},
      {"new destination", "airport.wav"},
      {"cruise airspeed", "maintain.wav|Pause250ms.wav|indicatedairspeed.wav|0.wav"},
      // An unknown phrase is only acknowledged.
      {"make runway file", ""},
      {"hello", ""},
  };
  for (const Case& c : cases) {
    rig.Mark();
    Say({c.phrase});
    EXPECT_EQ(rig.Queued(), c.queued) << c.phrase;
    EXPECT_EQ(rig.Messages().substr(0, 8), "Roger...") << c.phrase;
    EXPECT_EQ(rig.flight().VoiceAction, 0) << c.phrase;
  }
  // With a plan, display data shows its two ends and spells them, by voice
  // or by either of its keys.
  rig.instructor.plan.FlightPlanDeparture = "EGTK";
  rig.instructor.plan.FlightPlanDestination = "EGLL";
  const std::string spelled = "E.wav|G.wav|T.wav|K.wav|Pause500ms.wav|E.wav|G.wav|L.wav|L.wav";
  for (int key : {0, 3, 6}) {
    rig.Mark();
    if (key == 0) {
      Say({"display data"});
    } else {
      PressHotKeyEntry(rig.image, HotKeyCode(key));
      Say({});
    }
    EXPECT_EQ(rig.Queued(), spelled) << key;
    EXPECT_NE(rig.Messages().find("EGTK TO EGLL"), std::string::npos) << key;
  }
}

TEST_F(VoiceCommands, ModesByVoice) {
  Say({"ready for take off"});
  EXPECT_EQ(rig.Modes(), "TakeOff");
  Say({"taxi ing out"});
  Say({"we are cruising"});
  Say({"prepare for landing"});
  Say({"taxi ing in"});
  EXPECT_EQ(rig.Modes(), "TakeOff|Taxiing|Cruise|Landing|Taxiing");
  EXPECT_NE(rig.Messages().find("Cruise..."), std::string::npos);

  // With no engine running the mode stays and the pilot is told why, once
  // the family of the cruise remark has had its gap.
  rig.Tick(30);
  rig.Engine(false);
  rig.Mark();
  Say({"ready for take off"});
  EXPECT_EQ(rig.Modes(), "");
  EXPECT_EQ(rig.Queued(), "TakeOffWithNoEngineRunning.wav");
  EXPECT_NE(rig.Messages().find("Cannot advance flight mode."), std::string::npos);
}

TEST_F(VoiceCommands, KeysByVoiceAndOnlyTheLastOfOneTick) {
  // "next flight mode" is key 7; said twice with "previous" between, within
  // one tick, only the last one acts.
  Say({"next flight mode", "can you hear me"});
  EXPECT_EQ(rig.Modes(), "");
  EXPECT_EQ(rig.Queued(), "ICanHearYou.wav");
  Say({"can you hear me", "next flight mode"});
  EXPECT_EQ(rig.Modes(), "TakeOff");
}

TEST_F(VoiceCommands, MutedUntilAskedForHelp) {
  Say({"let me fly by myself"});
  EXPECT_TRUE(rig.instructor.sound.Muted);
  Say({"i want your help"});
  EXPECT_FALSE(rig.instructor.sound.Muted);
}

TEST(VoiceListening, ModesAndTheMicrophoneKey) {
  FlightRig rig;
  rig.Ready();
  rig.Mark();
  rig.instructor.HearPhrase("can you hear me");
  rig.Tick();
  EXPECT_EQ(rig.Messages(), "");  // off: not even "Roger..."
  EXPECT_EQ(rig.Queued(), "");

  rig.instructor.options.VoiceMode = kVoiceOnMicKey;
  rig.instructor.HearPhrase("can you hear me");
  rig.Tick();
  EXPECT_EQ(rig.Queued(), "");  // the microphone is switched off
  PressHotKeyEntry(rig.image, HotKeyCode(kMicrophoneSlot));
  rig.Tick();
  EXPECT_TRUE(rig.flight().MicEnabled);
  EXPECT_NE(rig.Messages().find("VNTR Mic:ON"), std::string::npos);
  rig.instructor.HearPhrase("can you hear me");
  rig.Tick();
  EXPECT_EQ(rig.Queued(), "ICanHearYou.wav");
  PressHotKeyEntry(rig.image, HotKeyCode(kMicrophoneSlot));
  rig.Tick();
  rig.Mark();
  rig.instructor.HearPhrase("can you hear me");
  rig.Tick();
  EXPECT_EQ(rig.Queued(), "");
}

TEST_F(VoiceCommands, SpellingAnAirportMakesItTheDestination) {
  Runway r;
  r.ICAO = "EGTK";
  r.Number = "01";
  r.Elevation = 270;
  r.Length = 4936;
  r.Surface = "ASPHALT";
  rig.instructor.world.Runways.push_back(r);
  r.Number = "11";
  r.Length = 2487;
  rig.instructor.world.Runways.push_back(r);

  Say({"specify airport"});
  rig.Mark();
  // Each letter is said back; the look-up is after the fourth.
  Say({"echo", "golf", "tango"});
  EXPECT_EQ(rig.Queued(), "E.wav|G.wav|T.wav");
  EXPECT_EQ(rig.flight().Runways.LandingRunway, nullptr);
  rig.Mark();
  Say({"kilo"});
  ASSERT_NE(rig.flight().Runways.LandingRunway, nullptr);
  EXPECT_EQ(rig.flight().Runways.LandingRunway->Number, "01");  // the longest
  EXPECT_EQ(rig.Queued(),
            "K.wav|WeAreLandingAtRunway.wav|0.wav|1.wav|ElevationIs.wav|2.wav|7.wav|0.wav|"
            "Feet.wav|RunwayLengthIs.wav|4.wav|Thousand.wav|9.wav|Hundred.wav|Feet.wav|"
            "SurfaceIs.wav|SASPHALT.wav");
  // A fifth letter starts a new code with the last three: not an airport.
  rig.Mark();
  Say({"lima"});
  EXPECT_EQ(rig.Queued(), "L.wav|negative.wav");
  EXPECT_EQ(rig.instructor.voiceCommands.SpelledCode, "");
  // Any other phrase ends the spelling.
  Say({"ground speed"});
  rig.Mark();
  Say({"echo"});
  EXPECT_EQ(rig.Queued(), "");
}

}  // namespace
}  // namespace vantoro
