#include "records/flight_log.h"

#include <cmath>

#include "base/failure.h"
#include "base/files.h"
#include "base/numbers.h"
#include "base/text.h"

namespace vantoro {

namespace {

constexpr std::string_view kRowEnd = "\r\n";
constexpr char kTab = '\t';
// Fixed-point currency keeps four decimals.
constexpr double kCurrencyScale = 10000;

// Reserved columns are always written as 0.
constexpr std::string_view kReserved = "0";

// Columns the reader holds in fixed-width fields, and their widths.
constexpr size_t kDateColumn = 0;
constexpr size_t kTypeColumn = 97;
constexpr size_t kIdentColumn = 98;
constexpr size_t kDayColumn = 103;
constexpr size_t kNightColumn = 104;
constexpr size_t kTypeWidth = 10;
constexpr size_t kIdentWidth = 7;
constexpr size_t kDayWidth = 5;

constexpr std::string_view kMonthNames[] = {"January",   "February", "March",    "April",
                                            "May",       "June",     "July",     "August",
                                            "September", "October",  "November", "December"};

std::string Flag(bool b) {
  return b ? "1" : "0";
}

std::string Currency(double x) {
  return NumberText(std::round(x * kCurrencyScale) / kCurrencyScale);
}

// The row's columns joined by tabs, each added in column order.
class Row {
 public:
  Row& operator<<(const std::string& text) {
    text_ += kTab;
    text_ += text;
    return *this;
  }
  Row& operator<<(std::string_view text) { return *this << std::string(text); }
  Row& operator<<(int32_t n) { return *this << std::to_string(n); }
  // The first column has no tab before it.
  std::string Text() const { return text_.substr(1); }

 private:
  std::string text_;
};

std::string FixedWidth(std::string_view s, size_t width) {
  std::string out(s.substr(0, std::min(s.size(), width)));
  out.resize(width, ' ');
  return out;
}

// The items of the file as the windows' reader sees them: a line end or a
// comma ends an item; blanks around an item are dropped and a quoted item
// keeps its commas.
std::vector<std::string> ReadItems(std::string_view text) {
  std::vector<std::string> items;
  size_t i = 0;
  const size_t n = text.size();
  while (i < n && items.size() < kLogReaderItems) {
    while (i < n && text[i] == ' ') ++i;
    std::string item;
    if (i < n && text[i] == '"') {
      const size_t close = text.find('"', i + 1);
      const size_t end = close == std::string_view::npos ? n : close;
      item = std::string(text.substr(i + 1, end - i - 1));
      i = end == n ? n : end + 1;
      while (i < n && text[i] != ',' && text[i] != '\r' && text[i] != '\n') ++i;
    } else {
      const size_t start = i;
      while (i < n && text[i] != ',' && text[i] != '\r' && text[i] != '\n') ++i;
      item = std::string(text.substr(start, i - start));
      while (!item.empty() && item.back() == ' ') item.pop_back();
    }
    const bool lineEnd = i < n && (text[i] == '\r' || text[i] == '\n');
    if (i < n && text[i] == '\r' && i + 1 < n && text[i + 1] == '\n') ++i;
    if (i < n) ++i;
    // An empty line is no item; an empty item between commas is.
    if (!item.empty() || !lineEnd) items.push_back(std::move(item));
  }
  return items;
}

std::array<std::string, kLogColumns> Columns(std::string_view item) {
  std::array<std::string, kLogColumns> cols;
  const std::vector<std::string> parts = Split(item, kTab);
  for (size_t i = 0; i < parts.size() && i < cols.size(); ++i) cols[i] = parts[i];
  return cols;
}

}  // namespace

const std::array<std::string_view, kLogColumns>& LogColumnNames() {
  static const std::array<std::string_view, kLogColumns> kNames = {
      "Date",
      "Crashed",
      "LandingRating",
      "Bank",
      "Engine1ThrottleLever",
      "GearControl",
      "MagneticHeading",
      "IndicatedAirSpeed",
      "LeftFlap",
      "NAV1LocaliserNeedle",
      "Nav1OBSRelativeWind",
      "Pitch",
      "RudderControlInput",
      "StallWarning",
      "VerticalSpeed",
      "WindSurfaceSpeed",
      "TurnCoordinatorBall",
      "ApproachGlideslopeRating",
      "ApproachLocalizerRating",
      "ExceedAerobatic",
      "ExceedBankChange",
      "ExceedBankLeft",
      "ExceedBankRight",
      "ExceedFlaps",
      "ExceedGearDown",
      "ExceedGsNegative",
      "ExceedGsPositive",
      "ExceedPitchChange",
      "ExceedStall",
      "ExceedVNE",
      "ExceedYawChange",
      "Scrapes",
      "SimulationRateNotNormal",
      "APOn",
      "nonILSApproachGlideslopeRating",
      "nonILSApproachLocalizerRating",
      "Aircraft",
      "TookOff",
      "LandingHasReachedEvaluationStage",
      "FlightDuration",
      "FlightFuelUsed",
      "FlightFuelStart",
      "FlightFuelEnd",
      "FlightDistance",
      "CircuitBadHeadingUpWind",
      "CircuitBadHeadingCrossWind",
      "CircuitBadHeadingDownWind",
      "CircuitBadHeadingBase",
      "CircuitBadHeadingFinal",
      "CircuitBadAltitudeUpWind",
      "CircuitBadAltitudeCrossWind",
      "CircuitBadAltitudeDownWind",
      "CircuitBadAltitudeBase",
      "CircuitBadAltitudeFinal",
      "CircuitBadTimingUpWind",
      "CircuitBadTimingCrossWind",
      "CircuitBadTimingDownWind",
      "CircuitBadTimingBase",
      "CircuitBadTimingFinal",
      "CircuitBadBankAngle",
      "CircuitDurationUpWind",
      "CircuitDurationCrossWind",
      "CircuitDurationDownWind",
      "CircuitDurationBase",
      "CircuitDurationFinal",
      "RoughTurnsOnGround",
      "BrakeDuringTakeOff",
      "PoorTakeOffSteering",
      "LateRotation",
      "FlapsNotUpDuringTaxi",
      "NotTaxiInWindWithElevatorDown",
      "NotTaxiInWindWithElevatorUp",
      "NotTaxiInWindWithLeftAileronUp",
      "NotTaxiInWindWithRightAileronUp",
      "TaxiTooFast",
      "TaxiWithThrottleAndBrakes",
      "RideBrakes",
      "TakeOffDescent",
      "NotLevelWings",
      "NotRudderToCoordinateTurns",
      "NearStall",
      "DescentTooFast",
      "LowerTheNoseTailStrike",
      "LowerTheNose",
      "RaiseTheNose",
      "NotFlapsForLanding",
      "TooFastToLand",
      "TooFastLowNotLanding",
      "FlewTooLowOverObstacle",
      "Ballooning",
      "NotUseTrimmers",
      "DistanceFromNonILSNumbers",
      "PoorGroundSteeringAfterLanding",
      "LandingScore",
      "FlightScore",
      "CircuitScore",
      "FS_Version",
      "Type",
      "Ident",
      "Airline",
      "Flight",
      "Departure",
      "Arrival",
      "Day",
      "Night",
      "Inst",
      "Block Time",
      "Block Fuel",
      "VNTR_Version",
  };
  return kNames;
}

std::string GetPilotFile(std::string_view pilotFile, std::string_view extension) {
  return RemoveFileExtension(pilotFile) + std::string(extension);
}

std::string FlightLogRow(const FlightStats& f, const FSData& live, const LogRowInputs& in) {
  Row r;
  r << Flag(f.FlightCrashed) << NumberText(f.LandingRating);
  // The aircraft as it stands at the close of the flight.
  r << live.Bank << live.Eng1Throttle << Flag(live.GearDown) << live.Heading << live.IAS
    << live.FlapsLeft << live.Nav1Localiser << live.WindRelativeToOBS << live.Pitch << live.Rudder
    << Flag(live.StallWarning) << live.VS << live.SurfaceWindSpeed << live.Slip;
  r << f.ApproachGlideslopeRating << f.ApproachLocalizerRating << f.ExceedAerobatic
    << f.ExceedBankChange << f.ExceedBankLeft << f.ExceedBankRight << f.ExceedFlaps
    << f.ExceedGearDown << f.ExceedGsNegative << f.ExceedGsPositive << f.ExceedPitchChange
    << f.ExceedStall << f.ExceedVNE << f.ExceedYawChange << f.Scrapes << f.AbnormalSimRateTicks
    << f.AutoPilotTicks << f.nonILSApproachGlideslopeRating << f.nonILSApproachLocalizerRating;
  r << f.Aircraft << Flag(f.TookOff) << Flag(f.LandingHasReachedEvaluationStage)
    << f.FlightDuration;
  r << kReserved << kReserved << kReserved << Currency(f.FlightDistance);
  r << f.CircuitBadHeadingUpWind << f.CircuitBadHeadingCrossWind << f.CircuitBadHeadingDownWind
    << f.CircuitBadHeadingBase << f.CircuitBadHeadingFinal << f.CircuitBadAltitudeUpWind
    << f.CircuitBadAltitudeCrossWind << f.CircuitBadAltitudeDownWind << f.CircuitBadAltitudeBase
    << f.CircuitBadAltitudeFinal << f.CircuitBadTimingUpWind << f.CircuitBadTimingCrossWind
    << f.CircuitBadTimingDownWind << f.CircuitBadTimingBase << f.CircuitBadTimingFinal
    << f.CircuitBadBankAngle << f.CircuitDurationUpWind << f.CircuitDurationCrossWind
    << f.CircuitDurationDownWind << f.CircuitDurationBase << f.CircuitDurationFinal;
  r << f.RoughTurnsOnGround << f.BrakeDuringTakeOff << f.PoorTakeOffSteering << f.LateRotation
    << f.FlapsNotUpDuringTaxi << f.NotTaxiInWindWithElevatorDown << f.NotTaxiInWindWithElevatorUp
    << f.NotTaxiInWindWithLeftAileronUp << f.NotTaxiInWindWithRightAileronUp << f.TaxiTooFast
    << f.TaxiWithThrottleAndBrakes << f.RideBrakes << f.TakeOffDescent << f.NotLevelWings
    << f.NotRudderToCoordinateTurns << f.NearStall << f.DescentTooFast << f.LowerTheNoseTailStrike
    << f.LowerTheNose << f.RaiseTheNose << f.NotFlapsForLanding << f.TooFastToLand
    << f.TooFastLowNotLanding << f.FlewTooLowOverObstacle << f.Ballooning << f.NotUseTrimmers
    << NumberText(f.DistanceFromNonILSNumbers) << f.PoorGroundSteeringAfterLanding;
  r << NumberText(in.LandingScore) << NumberText(in.FlightScore) << NumberText(in.CircuitScore);
  r << in.SimulatorName << live.AtcType << live.AtcIdentifier << live.AtcAirline
    << live.AtcFlightNumber << in.Departure << in.Arrival;
  r << Currency(f.Day) << Currency(f.Night) << Currency(f.Inst) << f.BlockTime << kReserved
    << in.Version;
  return r.Text();
}

std::string LogDate(const WallTime& t) {
  return FormatDigits(t.day, 2) + FormatDigits(t.month, 2) + FormatDigits(t.year % 100, 2) +
         FormatDigits(t.hour, 2) + FormatDigits(t.minute, 2);
}

std::string WriteLogFile(std::string_view path, std::string_view row, const Clock& clock,
                         const std::vector<FileWrite>& alongside) {
  constexpr std::string_view kLocation = "WriteLogFile";
  std::string line = LogDate(clock.Now()) + kTab + std::string(row);
  std::string why;
  std::string contents = TryReadFile(path, &why).value_or(std::string());
  if (!why.empty()) throw FileFailure(why, kLocation);
  if (Trim(contents).empty()) {
    contents.clear();
    for (std::string_view name : LogColumnNames()) {
      if (!contents.empty()) contents += kTab;
      contents += name;
    }
    contents += kRowEnd;
  } else if (!EndsWith(contents, "\n")) {
    contents += kRowEnd;  // a last row cut short keeps its own line
  }
  contents += line;
  std::vector<FileWrite> files{{std::string(path), std::move(contents)}};
  files.insert(files.end(), alongside.begin(), alongside.end());
  if (std::string problem = WriteFilesTogether(files); !problem.empty())
    throw FileFailure(problem, kLocation);
  while (EndsWith(line, "\n") || EndsWith(line, "\r")) line.pop_back();
  return line;
}

std::string DispFlightEvaluation(std::string_view path, const FlightStats& flight,
                                 const FSData& live, const LogRowInputs& in, const Clock& clock,
                                 const std::vector<FileWrite>& alongside) {
  return WriteLogFile(path, FlightLogRow(flight, live, in) + std::string(kRowEnd), clock,
                      alongside);
}

std::optional<FlightLog> ReadFlightLog(std::string_view path, std::string_view aircraftFilter) {
  const std::optional<std::string> text = TryReadFile(path);
  if (!text) return std::nullopt;
  FlightLog log;
  const std::vector<std::string> items = ReadItems(*text);
  const bool all = aircraftFilter.empty() || aircraftFilter == kAllAircraft;
  for (size_t i = 0; i < items.size(); ++i) {
    if (i == 0) {
      log.Header = Columns(items[0]);
      continue;
    }
    LogEntry e;
    e.Columns = Columns(items[i]);
    if (!all && e.Columns[kLogAircraftColumn] != aircraftFilter) continue;
    e.Type = FixedWidth(e.Columns[kTypeColumn], kTypeWidth);
    e.Ident = FixedWidth(e.Columns[kIdentColumn], kIdentWidth);
    e.Day = FixedWidth(e.Columns[kDayColumn], kDayWidth);
    e.Night = FixedWidth(e.Columns[kNightColumn], kDayWidth);
    const std::string& date = e.Columns[kDateColumn];
    e.DateDay = date.substr(0, std::min<size_t>(2, date.size()));
    if (date.size() >= 4) {
      const std::string month = date.substr(2, 2);
      if (IsNumeric(month)) {
        const int m = std::stoi(month);
        if (m >= 1 && m <= 12) e.DateMonth = kMonthNames[m - 1];
      }
    }
    if (date.size() >= 6) e.DateYear = date.substr(4, 2);
    log.Rows.push_back(std::move(e));
  }
  return log;
}

}  // namespace vantoro
