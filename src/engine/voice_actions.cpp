// Hot keys registered in the simulator's table, the phrases heard, and the
// spoken actions of the next tick, each composed from the recordings.
#include "engine/voice_actions.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

#include "base/numbers.h"
#include "base/text.h"
#include "engine/checklists.h"
#include "engine/failures.h"
#include "engine/navigation.h"
#include "engine/tick_rules.h"
#include "engine/traffic.h"
#include "link/hotkey_table.h"
#include "link/snapshot.h"
#include "voice/phrases.h"
#include "voice/voice_commands.h"
#include "world/geo.h"
#include "world/runway_queries.h"

namespace vantoro {

namespace {

constexpr uint16_t kCtrlShift = 3 << 8;
constexpr std::array<uint16_t, kHotKeySlots + 1> kHotKeyCodes = {
    0,
    kCtrlShift | '1',  // next flight mode, second key
    kCtrlShift | '2',  // previous flight mode, second key
    kCtrlShift | '3',  // display data, second key
    kCtrlShift | '4',  // circuit mode, second key
    kCtrlShift | '5',  // airmanship test, second key
    kCtrlShift | 'D',  // display data
    kCtrlShift | 'Z',  // next flight mode
    kCtrlShift | 'X',  // previous flight mode
    kCtrlShift | 'C',  // airmanship test
    kCtrlShift | ' ',  // circuit mode
    kCtrlShift | 'B',  // which check list
    kCtrlShift | 'N',  // next check list
    kCtrlShift | 'M',
    '5',  // the microphone key, no shift
    kCtrlShift | 'S',
};

constexpr int kModeSeconds = 3;
constexpr int kFailureMessageSeconds = 8;
constexpr int kSpelledCodeLength = 4;
constexpr int32_t kFirstClockAction = 131;
constexpr int32_t kLastClockAction = 142;
// Descending three miles for every thousand feet to lose.
constexpr double kDescentMilesPerThousandFeet = 3;
constexpr double kFeetPerThousand = 1000;
// Fuel and weight said in thousands, in hundreds or in digits.
constexpr int32_t kSayThousandsFrom = 1000;
constexpr int32_t kSayHundredsFrom = 100;
constexpr double kMinutesPerHour = 60;

uint8_t& MirrorByte(LinkState& link, uint32_t offset) {
  return link.ByteBuffer[offset - kMainBlockOffset];
}

bool EntryFree(LinkState& link, int entry) {
  const uint32_t at = HotKeyEntryOffset(entry);
  for (uint32_t i = 0; i < kHotKeyEntrySize; ++i)
    if (MirrorByte(link, at + i) != 0) return false;
  return true;
}

// The whole number as its digits ("1", "2", "0").
void SayDigits(Voice& v, double value) {
  PlayStringPhoneticallyAlways(v, std::to_string(CLng(value)));
}

// A quantity of fuel or weight: thousands, hundreds or digits.
void SayAmount(Voice& v, double amount) {
  const int32_t whole = CLng(amount);
  if (whole >= kSayThousandsFrom) {
    SpeakAsANumberAlways(v, whole / kSayThousandsFrom);
    PlayAlways(v, "thousand.wav");
  } else if (whole >= kSayHundredsFrom) {
    SpeakAsANumberAlways(v, whole / kSayHundredsFrom);
    PlayAlways(v, "hundred.wav");
  } else {
    SayDigits(v, whole);
  }
}

// "118.30": the digits before the point, "Decimal.wav", the digits after.
void SayFrequency(Voice& v, std::string_view text) {
  const size_t dot = text.find('.');
  PlayStringPhoneticallyAlways(v, text.substr(0, dot));
  PlayAlways(v, "Decimal.wav");
  if (dot != std::string_view::npos) PlayStringPhoneticallyAlways(v, text.substr(dot + 1));
}

std::string FrequencyText(double mhz) {
  char text[16];
  std::snprintf(text, sizeof text, "%.2f", mhz);
  return text;
}

const Runway* Destination(const Cockpit& c) {
  return c.flight.Runways.LandingRunway;
}

std::string DestinationCode(const Cockpit& c) {
  if (const Runway* r = Destination(c)) return Trim(r->ICAO);
  return Trim(c.plan.FlightPlanDestination);
}

const Waypoint* NextWaypoint(const Cockpit& c) {
  const int32_t next = c.plan.NextWaypoint;
  if (next < 0 || next >= FlightPlanCount(c.plan)) return nullptr;
  return &c.plan.Waypoints[static_cast<size_t>(next)];
}

double MilesTo(const FSData& now, double latitude, double longitude) {
  return CalcDistance(now.Latitude, now.Longitude, latitude, longitude);
}

// Engine 1's fuel flow in pounds per hour lies in the engine's block, as the
// other engines' do.
constexpr uint32_t kEng1FuelFlowPPHOffset = 0x0880;

// Fuel flow of all engines, pounds per hour.
double FuelFlowPPH(const LinkState& link, const FSData& now) {
  double eng1 = 0;
  std::memcpy(&eng1, &link.ByteBuffer[kEng1FuelFlowPPHOffset - kMainBlockOffset], sizeof eng1);
  if (!std::isfinite(eng1)) eng1 = 0;
  return eng1 + now.Eng2FuelFlowPPH + now.Eng3FuelFlowPPH + now.Eng4FuelFlowPPH;
}

// Fuel said by weight for the heavy aircraft, else in gallons.
void SayFuel(Cockpit& c, Voice& v, double pounds) {
  const FSData& now = c.link.Now();
  if (c.link.HeavyAircraft || now.FuelWeightPerGallon <= 0) {
    SayAmount(v, pounds);
    PlayAlways(v, "pounds.wav");
    return;
  }
  const double gallons = pounds / now.FuelWeightPerGallon;
  if (CLng(gallons) == 1) {
    PlayAlways(v, "1.wav");
  } else {
    SayAmount(v, gallons);
  }
  PlayAlways(v, "gallons.wav");
}

// The airport found becomes the destination: its longest runway.
const Runway* AirportRunway(const WorldState& world, std::string_view code) {
  const Runway* best = nullptr;
  for (const Runway& r : world.Runways)
    if (Trim(r.ICAO) == code && (best == nullptr || r.Length > best->Length)) best = &r;
  return best;
}

// The reply for a new destination: its runway, elevation and length.
void SayNewDestination(Voice& v, const Runway& r) {
  WeAreLandingAtRunway(v, r);
  RunwayLengthIs(v, r.Length, r.Surface);
}

void MakeDestination(Cockpit& c, const Runway* r) {
  c.flight.Runways.LandingRunway = r;
  c.events.Emit(c.flight.TickCount, "runway",
                {{"airport", Trim(r->ICAO)}, {"runway", Trim(r->Number)}, {"why", "voice"}});
}

// A letter while spelling: said back, and at four letters the airport looked up.
void SpellLetter(Cockpit& c, char letter) {
  VoiceCommandsState& s = c.voiceCommands;
  Voice v = c.voice();
  PlayAlways(v, std::string(1, letter) + ".wav");
  if (static_cast<int>(s.SpelledCode.size()) >= kSpelledCodeLength)
    s.SpelledCode.erase(0, s.SpelledCode.size() - (kSpelledCodeLength - 1));
  s.SpelledCode += letter;
  if (static_cast<int>(s.SpelledCode.size()) < kSpelledCodeLength) return;
  if (const Runway* r = AirportRunway(c.world, s.SpelledCode)) {
    MakeDestination(c, r);
    SayNewDestination(v, *r);
  } else {
    PlayAlways(v, "negative.wav");
    s.SpelledCode.clear();
  }
}

void StartSpelling(Cockpit& c) {
  c.voiceCommands.SpellingAirport = true;
  c.voiceCommands.SpelledCode.clear();
}

void ToMode(Cockpit& c, FlightMode mode, std::string_view text) {
  SetFlightMode(c, mode);
  ShowMessage(c, text, kModeSeconds);
}

void SayOClockRunway(Cockpit& c, Voice& v, int position) {
  const FSData& now = c.link.Now();
  const Runway* found = c.world.CloseRunways.empty()
                            ? nullptr
                            : FindClosestRunwayOClock(c.world, now.Latitude, now.Longitude,
                                                      position, [&now](double lat, double lon) {
                                                        return OClockOfLatLongToMe(now, lat, lon);
                                                      });
  SpeakRunwayAtOClock(v, found, now);
}

void SayWaypointFrequency(Cockpit& c, Voice& v) {
  const Waypoint* w = NextWaypoint(c);
  const std::string type = w == nullptr ? "" : Trim(w->WaypointType).substr(0, 1);
  const VORStation* station = nullptr;
  if (w != nullptr)
    for (const VORStation& s : c.world.VORStations)
      if (Trim(s.Ident) == Trim(w->Name)) {
        station = &s;
        break;
      }
  if (station == nullptr || (type != "N" && type != "V")) {
    PlayAlways(v, "negative.wav");
    return;
  }
  if (type == "N") {
    PlayAlways(v, "NDB.wav");
    SayDigits(v, station->Frequency);
    return;
  }
  PlayAlways(v, "vor.wav");
  SayFrequency(v, FrequencyText(station->Frequency));
}

// The nearest airport other than the destination, as the airport search of
// any code finds it.
void DivertToAlternate(Cockpit& c, Voice& v) {
  const FSData& now = c.link.Now();
  const std::string destination = DestinationCode(c);
  const Runway* alternate =
      c.world.CloseRunways.empty()
          ? nullptr
          : FindClosestRunwayWhere(c.world, now.Latitude, now.Longitude, kNoLimit,
                                   [&](const Runway& r) { return Trim(r.ICAO) != destination; });
  if (alternate == nullptr) {
    PlayAlways(v, "negative.wav");
    return;
  }
  MakeDestination(c, alternate);
  PlayStringPhoneticallyAlways(v, Trim(alternate->ICAO));
}

// The destination's next runway, in the order of the world data.
void NextRunway(Cockpit& c, Voice& v) {
  const Runway* current = Destination(c);
  const Runway* next = nullptr;
  if (current != nullptr) {
    const std::string code = Trim(current->ICAO);
    const Runway* first = nullptr;
    bool passed = false;
    for (const Runway& r : c.world.Runways) {
      if (Trim(r.ICAO) != code) continue;
      if (first == nullptr && &r != current) first = &r;
      if (&r == current) {
        passed = true;
      } else if (passed && next == nullptr) {
        next = &r;
      }
    }
    if (next == nullptr) next = first;
  }
  if (next == nullptr) {
    PlayAlways(v, "negative.wav");
    return;
  }
  MakeDestination(c, next);
  SayRunwayNameAlways(v, next->Number);
}

}  // namespace

uint16_t HotKeyCode(int slot) {
  return kHotKeyCodes[static_cast<size_t>(slot)];
}

void InitHotkeysQWE(FlightState& f) {
  for (int slot = 0; slot <= kHotKeySlots; ++slot) {
    HotKey& k = f.HotKeys[static_cast<size_t>(slot)];
    k = HotKey{};
    k.KeyCode = static_cast<int16_t>(kHotKeyCodes[static_cast<size_t>(slot)]);
  }
}

bool RegisterHotKey(Cockpit& c, int slot) {
  HotKey& k = c.flight.HotKeys[static_cast<size_t>(slot)];
  if (k.Toggle != -1 || k.KeyCode == 0) return k.Toggle != -1;
  for (int entry = 0; entry < kHotKeyEntries; ++entry) {
    if (!EntryFree(c.link, entry)) continue;
    const uint32_t at = HotKeyEntryOffset(entry);
    const uint16_t code = static_cast<uint16_t>(k.KeyCode);
    const std::array<uint8_t, kHotKeyEntrySize> bytes = {static_cast<uint8_t>(code & 0xFF),
                                                         static_cast<uint8_t>(code >> 8), 0, 0};
    if (!WriteToSim(c.sim, c.events, c.flight.TickCount, at, bytes.data(), kHotKeyEntrySize))
      return false;
    for (uint32_t i = 0; i < kHotKeyEntrySize; ++i) MirrorByte(c.link, at + i) = bytes[i];
    k.Offset = static_cast<int32_t>(at);
    k.Toggle = 0;
    return true;
  }
  return false;  // the table is full: tried again next tick
}

void ScanHotKeys(Cockpit& c) {
  FlightState& f = c.flight;
  for (int slot = 1; slot <= kHotKeySlots; ++slot) {
    HotKey& k = f.HotKeys[static_cast<size_t>(slot)];
    if (k.Toggle == -1) {
      RegisterHotKey(c, slot);
      k.Pressed = f.VoiceAction == slot;
      continue;
    }
    const uint32_t hit = static_cast<uint32_t>(k.Offset) + kHotKeyHitByte;
    if (MirrorByte(c.link, hit) > 0) {
      k.Pressed = true;
      k.Toggle = k.Toggle == 0 ? 1 : 0;
      const uint8_t zero = 0;
      WriteToSim(c.sim, c.events, f.TickCount, hit, &zero, 1);
      MirrorByte(c.link, hit) = 0;
    } else {
      k.Pressed = f.VoiceAction == slot;
    }
  }
  // A key action is used up by its tick, even when the monitors are held at
  // the gate; the spoken actions wait for VoiceHotKeyAction.
  if (f.VoiceAction >= 1 && f.VoiceAction <= kHotKeySlots) f.VoiceAction = 0;
}

void UnregisterHotKeys(Cockpit& c) {
  FlightState& f = c.flight;
  const std::array<uint8_t, kHotKeyEntrySize> zero{};
  for (int slot = 1; slot <= kHotKeySlots; ++slot) {
    HotKey& k = f.HotKeys[static_cast<size_t>(slot)];
    if (k.Toggle != -1 && k.Offset != 0) {
      WriteToSim(c.sim, c.events, f.TickCount, static_cast<uint32_t>(k.Offset), zero.data(),
                 kHotKeyEntrySize);
      for (uint32_t i = 0; i < kHotKeyEntrySize; ++i)
        MirrorByte(c.link, static_cast<uint32_t>(k.Offset) + i) = 0;
    }
    k.Offset = 0;
    k.Toggle = -1;
    k.Pressed = false;
  }
}

bool ListenEnabled(const Cockpit& c) {
  return c.options.VoiceMode == kVoiceAlways ||
         (c.options.VoiceMode == kVoiceOnMicKey && c.flight.MicEnabled);
}

void HearPhrase(Cockpit& c, std::string_view heard) {
  if (!ListenEnabled(c)) return;
  VoiceCommandsState& s = c.voiceCommands;
  s.LastPhrase = std::string(heard);
  Voice v = c.voice();
  DisplayOnlyThisTextFSMessage(v, "Roger...", kRogerSeconds);
  const std::string phrase = Lower(Trim(heard));
  const char letter = LetterOfPhrase(phrase);
  if (letter == 0) s.SpellingAirport = false;
  if (const int32_t action = VoiceActionOfPhrase(phrase); action != 0)
    c.flight.VoiceAction = action;
  if (letter != 0 && s.SpellingAirport) SpellLetter(c, letter);
}

void VoiceHotKeyAction(Cockpit& c) {
  FlightState& f = c.flight;
  const int32_t action = f.VoiceAction;
  if (action < kFirstSpokenAction) return;
  const FSData& now = c.link.Now();
  Voice v = c.voice();
  const Runway* destination = Destination(c);

  switch (action) {
    case 101:
      SayDigits(v, now.AGL);
      PlayAlways(v, "Feet.wav");
      break;
    case 102:
      PlayAndPurge(v, "Pause125ms.wav", 0, 0);
      break;
    case 103:
      // "Traffic": the nearest target is called now, as the traffic monitor
      // describes one.
      CallTraffic(c);
      break;
    case 104:
      if (destination == nullptr || Trim(destination->ILSFrequency).empty()) {
        PlayAlways(v, "negative.wav");
        break;
      }
      SayRunwayNameAlways(v, destination->Number);
      PlayAlways(v, "ILSFrequencyIs.wav");
      SayFrequency(v, Trim(destination->ILSFrequency));
      break;
    case 105:
      // The program's window comes to the front; nothing is said.
      break;
    case 106:
      if (const Waypoint* w = NextWaypoint(c)) {
        PlayStringPhoneticallyAlways(v, Trim(w->Name));
        SayDigits(v, MilesTo(now, w->Latitude, w->Longitude));
        PlayAlways(v, "Miles.wav");
      } else {
        PlayAlways(v, "negative.wav");
      }
      break;
    case 107:
      SayVisibility(v, now);
      PlayAlways(v, "Wind.wav");
      if (now.SurfaceWindSpeed == 0) {
        PlayAlways(v, "Calm.wav");
      } else {
        SayDigits(v, now.SurfaceWindDirection == 0 ? 360 : now.SurfaceWindDirection);
        PlayAlways(v, "At.wav");
        SayDigits(v, now.SurfaceWindSpeed);
      }
      break;
    case 108:
      if (destination == nullptr) {
        PlayAlways(v, "negative.wav");
        break;
      }
      SayNewDestination(v, *destination);
      break;
    case 109:
      if (EnginesFiring(now) > 0) {
        ToMode(c, FlightMode::TakeOff, "Take Off...");
      } else {
        PlayPerhaps(v, "TakeOffWithNoEngineRunning.wav", 6, 30, 4);
        ShowMessage(c, "Cannot advance flight mode.", kModeSeconds);
      }
      break;
    case 110:
      PlayAlways(v, "FlightPlanLengthIs.WAV");
      SayDigits(v, FlightplanRemainder(c.plan, now));
      PlayAlways(v, "Miles.wav");
      break;
    case 111:
      if (destination == nullptr) {
        PlayAlways(v, "negative.wav");
        break;
      }
      RunwayHeading(v, *destination);
      break;
    case 112:
      SayAlwaysHoursAndMinutes(v, std::floor(ETR(c.plan, now)));
      break;
    case 113:
      SpeakAsANumberAlways(v, MoreFlapsAt(now.FlapsLeft, c.aircraft));
      PlayAlways(v, "Knots.wav");
      break;
    case 114:
      Nav1IsTunedTo(v, now);
      break;
    case 115:
      PlayAlways(v, "maxgearextensionis.WAV");
      SpeakAsANumberAlways(v, c.aircraft.GearSpeedLimit);
      PlayAlways(v, "Knots.wav");
      break;
    case 116:
      // The middle layer first, then the upper; each reported by its base.
      SayCloudCoverage(v, CloudLayer{now.CloudMidBase, now.CloudMidBase, now.CloudMidCover},
                       CloudLayer{now.CloudHighBase, now.CloudHighBase, now.CloudHighCover});
      break;
    case 117:
      RepeatLastCheckList(c);
      break;
    case 118:
      c.sound.Muted = true;
      break;
    case 119:
      c.sound.Muted = false;
      PlayAlways(v, "IAmReadyToHelpWhenYouNeedMe.wav");
      break;
    case 120:
      ToMode(c, FlightMode::Landing, "Landing...");
      break;
    case 121:
      EnterCruiseByRequest(c, kModeSeconds);
      break;
    case 122:  // taxiing in: the touchdown already told the taxi rules which side it is
    case 123:
      ToMode(c, FlightMode::Taxiing, "Taxiing...");
      break;
    case 124:
      if (const std::string code = DestinationCode(c); !code.empty() && code[0] == 'K')
        c.events.Emit(f.TickCount, "page", {{"url", "https://www.airnav.com/airport/" + code}});
      break;
    case 125:
      PlayAlways(v, "Groundspeedis.wav");
      SpeakAsANumberAlways(v, now.GS);
      PlayAlways(v, "Knots.wav");
      break;
    case 126:
      PlayAlways(v, "ICanHearYou.wav");
      break;
    case 127:
      ToMode(c, FlightMode::Cruise, "Cruise...");
      break;
    case 128:
      // "Birds ahead of us": the pilot asks to train for a bird strike, and
      // the instructor makes it real in the simulator. One engine drawn at
      // random fails, named on the message line as any failure the
      // instructor sets off; when the simulator stops it, the engine loss is
      // announced with the best glide speed. Without an engine there is
      // nothing to strike.
      if (const int engine = BirdStrike(c); engine > 0)
        ShowMessage(
            c,
            std::to_string(engine) + " " + FailureNamesOf(kFailEngineIndex).message + " FAILURE!",
            kFailureMessageSeconds);
      else
        PlayAlways(v, "negative.wav");
      break;
    case 145: {
      const Runway* nearest =
          c.world.CloseRunways.empty()
              ? nullptr
              : FindClosestRunway(c.world, now.Latitude, now.Longitude, kNoLimit, kNoLimit, false);
      SayNearestAirport(v, nearest, now);
      break;
    }
    case 146:
      if (destination != nullptr)
        SayDescentRateToDesintation(v, Trim(destination->ICAO), destination->Elevation,
                                    destination->Latitude, destination->Longitude, now);
      break;
    case 147:
      if (destination != nullptr)
        SayWhereIsTheAirport(v, Trim(destination->ICAO), destination->Latitude,
                             destination->Longitude, now);
      break;
    case 148:
      if (destination == nullptr) {
        PlayAlways(v, "negative.wav");
        break;
      }
      PlayStringPhoneticallyAlways(v, Trim(destination->ICAO));
      PlayAlways(v, "ElevationIs.wav");
      SayDigits(v, destination->Elevation);
      PlayAlways(v, "Feet.wav");
      RunwayLengthIs(v, destination->Length, destination->Surface);
      break;
    case 149:
    case 164:
      PlayAlways(v, "airport.wav");
      StartSpelling(c);
      break;
    case 150:
      if (destination == nullptr || now.Altitude <= destination->Elevation) {
        PlayAlways(v, "negative.wav");
        break;
      }
      PlayAlways(v, "TopOfDescent.wav");
      SayDigits(v, (now.Altitude - destination->Elevation) / kFeetPerThousand *
                       kDescentMilesPerThousandFeet);
      PlayAlways(v, "miles.wav");
      break;
    case 151:
      SayWaypointFrequency(c, v);
      break;
    case 152:
      if (const Waypoint* w = NextWaypoint(c)) {
        PlayAlways(v, "bearing.wav");
        SayDigits(
            v, MagneticCourse(now.Latitude, now.Longitude, w->Latitude, w->Longitude, now.MagVar));
        PlayAlways(v, "degrees.wav");
      } else {
        PlayAlways(v, "negative.wav");
      }
      break;
    case 153:
      if (const Waypoint* w = NextWaypoint(c)) {
        SayDigits(
            v, MagneticCourse(w->Latitude, w->Longitude, now.Latitude, now.Longitude, now.MagVar));
        PlayAlways(v, "degrees.wav");
      } else {
        PlayAlways(v, "negative.wav");
      }
      break;
    case 154:
      SayFuel(c, v, f.InitialFuelWeight - now.FuelGallonsWeight);
      break;
    case 155:
      if (FlightPlanCount(c.plan) == 0 || now.GS <= 0) {
        PlayAlways(v, "negative.wav");
        break;
      }
      SayFuel(c, v, FuelFlowPPH(c.link, now) * FlightplanRemainder(c.plan, now) / now.GS);
      break;
    case 156: {
      const double hours =
          FuelFlowPPH(c.link, now) > 0 ? now.FuelGallonsWeight / FuelFlowPPH(c.link, now) : 0;
      SayDigits(v, hours * now.GS);
      PlayAlways(v, "miles.wav");
      break;
    }
    case 157:
      if (f.CruiseTargetAltitude == kCruiseTargetNotSet) {
        PlayAlways(v, "negative.wav");
        break;
      }
      PlayAlways(v, "maintain.wav");
      PlayAlways(v, "Pause250ms.wav");
      PlayAlways(v, "altitude.wav");
      SayDigits(v, f.CruiseTargetAltitude);
      PlayAlways(v, "affirmative.wav");
      break;
    case 158:
      PlayAlways(v, "maintain.wav");
      PlayAlways(v, "Pause250ms.wav");
      PlayAlways(v, "indicatedairspeed.wav");
      SayDigits(v, now.IAS);
      break;
    case 159:
      SayAmount(v, now.ZeroFuelWeight + now.FuelGallonsWeight);
      PlayAlways(v, "pounds.wav");
      break;
    case 160:
      StartSpelling(c);
      break;
    case 161:
      if (const Waypoint* w = NextWaypoint(c); w != nullptr && now.GS > 0) {
        SayAlwaysHoursAndMinutes(
            v, std::floor(MilesTo(now, w->Latitude, w->Longitude) / now.GS * kMinutesPerHour));
      } else {
        PlayAlways(v, "negative.wav");
      }
      break;
    case 162:
      DivertToAlternate(c, v);
      break;
    case 163:
      NextRunway(c, v);
      break;
    default:
      if (action >= kFirstClockAction && action <= kLastClockAction)
        SayOClockRunway(c, v, action - kFirstClockAction + 1);
      break;
  }
  f.VoiceAction = 0;
}

}  // namespace vantoro
