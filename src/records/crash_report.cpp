#include "records/crash_report.h"

#include <cctype>
#include <chrono>
#include <cmath>

#include "base/files.h"
#include "base/numbers.h"
#include "records/markup.h"

namespace vantoro {

namespace {

constexpr std::string_view kDayNames[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                          "Thursday", "Friday", "Saturday"};
constexpr std::string_view kMonthNames[] = {"January",   "February", "March",    "April",
                                            "May",       "June",     "July",     "August",
                                            "September", "October",  "November", "December"};

// Transponder codes with a meaning, as the BCD word holds them.
constexpr int32_t kSquawkInterceptor = 0x7777;
constexpr int32_t kSquawkEmergency = 0x7700;
constexpr int32_t kSquawkLostComms = 0x7600;
constexpr int32_t kSquawkHijack = 0x7500;
constexpr int32_t kSquawkVFR = 0x1200;
// 121.50, the emergency frequency, as the COM1 word reads.
constexpr int32_t kEmergencyCom1 = 2150;
constexpr int32_t kWaterSurface = 2;

// A number as a whole, halves away from zero.
std::string Whole(double x) {
  return std::to_string(static_cast<long long>(std::round(x)));
}

std::string UrlText(std::string_view s) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string out;
  for (unsigned char ch : s) {
    if (std::isalnum(ch) || ch == '-' || ch == '_' || ch == '.' || ch == '~') {
      out += static_cast<char>(ch);
    } else {
      out += '%';
      out += kHex[ch >> 4];
      out += kHex[ch & 15];
    }
  }
  return out;
}

void LeaveMarker(std::string_view root, std::string_view file, double score,
                 const ScoreLinkInputs& in) {
  if (root.empty()) return;
  const std::string path = std::string(root) + std::string(file);
  if (FileExists(path)) return;
  WriteFileAtomic(path, "<vantoro><url>" + ScoreLink(score, in) + "</url><score>" +
                            FormatFixed(score, 2) + "</score></vantoro>\r\n");
}

}  // namespace

std::string LongDate(const WallTime& t) {
  using namespace std::chrono;
  const year_month_day ymd{year{t.year}, month{static_cast<unsigned>(t.month)},
                           day{static_cast<unsigned>(t.day)}};
  std::string out;
  if (ymd.ok()) out = std::string(kDayNames[weekday{sys_days{ymd}}.c_encoding()]) + ", ";
  if (t.month >= 1 && t.month <= 12) out += std::string(kMonthNames[t.month - 1]) + " ";
  return out + FormatDigits(t.day, 2) + ", " + std::to_string(t.year);
}

std::string ReportHeading(std::string_view pilotName, std::string_view aircraftTitle,
                          const WallTime& t) {
  return "[HEADER]" + std::string(pilotName) + " piloting " + std::string(aircraftTitle) +
         " ended " + LongDate(t) + " at " + FormatDigits(t.hour, 2) + ":" +
         FormatDigits(t.minute, 2) + "[/HEADER]" + std::string(kLineBreak);
}

std::string CrashReport(const CrashScene& s) {
  const std::string br(kLineBreak);
  const FSData& b = s.Before;
  std::string r = ReportHeading(s.PilotName, s.AircraftTitle, s.When);
  r += "[STATS][VERSION][SIM_VERSION][VISIBILITY][WINDSPEED][/STATS]";
  r += "Aircraft: " + s.AircraftTitle + "    ID: " + b.AtcIdentifier +
       "    Airline: " + "    Flight: " + br;
  r += "Flight plan: " + s.Departure + " TO " + s.Destination +
       "    NAV1: " + FormatFixed(b.Nav1Freq, 2) + br + br;
  r += "[SCORE]AIRCRAFT CRASHED[/SCORE]" + br;
  r += "[SCORE]National Aeronautical Safety Board Findings:[/SCORE][LIST]" + br;

  r += "* Vertical Speed: " + Whole(b.VS) + " fpm" + br;
  r += "* AGL: " + Whole(b.AGL) + " feet" + br;
  r += "* Bank: " + Whole(b.Bank) + " degrees" + br;
  r += "* Ground Speed: " + Whole(b.GS) + " kts" + br;
  r += "* IAS: " + Whole(b.IAS) + " kts" + br;
  r += "* Pitch: " + Whole(b.Pitch) + " degrees" + br;
  // A barber pole of 0 is a speed limit the simulator did not give.
  if (b.BarberPole > 0 && b.IAS > b.BarberPole) r += "* Overspeed" + br;
  r += std::string("* COM1: ") + (b.Com1Freq == kEmergencyCom1 ? "Emergency" : "Standard") + br;
  if (b.Squawk == kSquawkInterceptor) r += "* Transponder: Military,Interceptor" + br;
  if (b.Squawk == kSquawkEmergency) r += "* Transponder: Emergency" + br;
  if (b.Squawk == kSquawkLostComms) r += "* Transponder: Lost communications" + br;
  if (b.Squawk == kSquawkHijack) r += "* Transponder: Hijack" + br;
  if (b.Squawk == kSquawkVFR) r += "* Transponder: Visual flight rules" + br;
  // A fixed gear is never extended, so it never exceeds an extension speed.
  if (s.RetractableGear) {
    r += std::string("* Gear: ") + (b.GearDown ? "Down" : "Up") + br;
    if (b.GearDown && b.IAS > s.GearSpeedLimit) r += "* Gear extension speed exceeded" + br;
  }
  r += std::string("* AutoPilot: ") + (b.AutopilotOn ? "On" : "Off") + br;
  r += "* Visibility: " + Whole(b.Visibility) + " nm" + br;
  const bool running[] = {b.Eng1Combustion, b.Eng2Combustion, b.Eng3Combustion, b.Eng4Combustion};
  const bool fire[] = {b.Eng1OnFire, b.Eng2OnFire, b.Eng3OnFire, b.Eng4OnFire};
  for (int i = 0; i < 4; ++i) {
    if (i > 0 && b.Engines <= i) break;
    r += "* Eng" + std::to_string(i + 1) + ": " + (running[i] ? "Running" : "Stopped") +
         (fire[i] ? " On Fire" : "") + br;
  }
  r += std::string(b.OnGround > 0 ? "On Ground" : "Airborne") + " immediately prior to crash" + br;
  if (b.StallWarning) r += "* Stalled" + br;
  if (b.SurfaceType == kWaterSurface) r += "* In/Over Water" + br;
  r += "[/LIST]";
  return r;
}

std::string ScoreLink(double score, const ScoreLinkInputs& in) {
  std::string digits = FormatFixed(score, 2);
  // "000.00": at least three digits before the point.
  const size_t point = digits.find('.');
  const bool negative = !digits.empty() && digits[0] == '-';
  const size_t whole = point - (negative ? 1 : 0);
  if (whole < 3) digits.insert(negative ? 1 : 0, 3 - whole, '0');
  return std::string(kScoreSite) + std::string(kScorePage) + "?sc=" + digits +
         "&ver=" + UrlText(in.SimulatorName) + "&aircraft=" + UrlText(in.AircraftTitle) +
         "&visibility=" + FormatFixed(in.Visibility, 2);
}

std::string GenerateScoreLinks(std::string_view root, const ScoreLinkInputs& in) {
  if (in.LandingScore > kLandingMarkerScore)
    LeaveMarker(root, kLandingMarkerFile, in.LandingScore, in);
  if (in.FlightScore > kFlightMarkerScore) LeaveMarker(root, kFlightMarkerFile, in.FlightScore, in);
  const std::string br(kLineBreak);
  return "Click Score Links at Log Book Page in Vantoro to submit your score(s) to the web!" + br +
         "Landing: " + ScoreLink(in.LandingScore, in) + br +
         "Flight: " + ScoreLink(in.FlightScore, in) + br +
         "Circuit: " + ScoreLink(in.CircuitScore, in);
}

}  // namespace vantoro
