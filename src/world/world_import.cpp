#include "world/world_import.h"

#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <optional>

#include "base/files.h"
#include "base/gzip.h"
#include "base/numbers.h"
#include "base/text.h"
#include "world/geo.h"
#include "world/runway_queries.h"
#include "world/runways.h"

namespace vantoro {

namespace {

constexpr double kFeetPerMetre = 3.280839895;
constexpr double kStandardGlideSlope = 3;

// Row codes of the airport file (version 1000; the surface codes of the later
// versions are mapped too).
constexpr int kRowLandAirport = 1;
constexpr int kRowSeaplaneBase = 16;
constexpr int kRowHeliport = 17;
constexpr int kRowApproachLights = 21;  // VASI, PAPI and their glide slope angle
constexpr int kRowLandRunway = 100;
constexpr int kRowWaterRunway = 101;
constexpr int kRowHelipad = 102;         // left out: no runway to land on
constexpr int kRowRecordedWeather = 50;  // ATIS, AWOS, ASOS
constexpr int kRowEnd = 99;

// Lights of row 21 that carry a glide slope: VASI, PAPI left and right,
// tri-colour VASI. The shuttle PAPI (4) and runway guards (6) do not.
constexpr bool GivesGlideSlope(int type) {
  return type == 1 || type == 2 || type == 3 || type == 5;
}

// Row codes of the navaid file (version 810).
constexpr int kRowNDB = 2;
constexpr int kRowVOR = 3;
constexpr int kRowILS = 4;  // localiser of a full ILS
constexpr int kRowLOC = 5;  // localiser alone (LOC, LDA, SDF)
constexpr int kRowGS = 6;

// The fields a row of each kind needs at least.
constexpr size_t kAirportTokens = 5;
constexpr size_t kLandRunwayTokens = 26;
constexpr size_t kWaterRunwayTokens = 9;
constexpr size_t kLightsTokens = 7;
constexpr size_t kWeatherTokens = 2;
constexpr size_t kNavaidTokens = 8;
constexpr size_t kLocaliserTokens = 11;

struct RunwayEnd {
  std::string Number;
  double Latitude = 0, Longitude = 0;
  double DisplacedMetres = 0;
  double EndLatitude = 0, EndLongitude = 0;
  double WidthMetres = 0;
  std::string Surface;
};

struct Airport {
  std::string ICAO;
  std::string Name;
  int32_t Elevation = 0;
  std::string ATIS;
  bool ATISNamed = false;  // the frequency is called ATIS (rather than AWOS, ASOS)
  std::vector<RunwayEnd> Ends;
  std::map<std::string, double> LightsGlideSlope;  // by padded designator
};

struct Localiser {
  std::string Frequency;  // "110.30"
  std::string Ident;
  int32_t Heading = 0;  // true course of the localiser, whole degrees
  bool FullILS = false;
};

struct Station {
  std::string Ident, Name;
  double Latitude = 0, Longitude = 0;
  int32_t Elevation = 0;
  std::string Frequency;
};

// No line of a real data file comes near this.
constexpr size_t kMaxLineBytes = 64 * 1024;
// Data files of a whole world are large even inflated: only the ratio to the
// compressed size is held to.
constexpr InflateLimits kLineLimits{.MaxBytes = SIZE_MAX};

// Reads a file line by line, plain or gzip-compressed.
class LineSource {
 public:
  explicit LineSource(std::string_view path) : path_(path) {
    auto found = FindNoCase(path);
    if (found) gz_ = gzopen(found->c_str(), "rb");
    if (gz_ != nullptr) gzbuffer(gz_, 256 * 1024);
  }
  ~LineSource() {
    if (gz_ != nullptr) gzclose_r(gz_);
  }
  LineSource(const LineSource&) = delete;
  LineSource& operator=(const LineSource&) = delete;

  bool Open() const { return gz_ != nullptr; }
  int LineNumber() const { return line_; }

  // The next line without its line end; false at the end or on damage.
  bool Next(std::string& out) {
    out.clear();
    if (gz_ == nullptr) return false;
    char buf[4096];
    bool any = false;
    while (gzgets(gz_, buf, sizeof buf) != nullptr) {
      any = true;
      out += buf;
      if (!out.empty() && out.back() == '\n') break;
      if (out.size() > kMaxLineBytes) {
        damage_ = "a line longer than any real line (refused)";
        return false;
      }
    }
    // A file that inflates far beyond its size is refused as soon as it shows.
    if (!gzdirect(gz_) && InflatedTooFar(static_cast<size_t>(gztell(gz_)),
                                         static_cast<size_t>(gzoffset(gz_)), kLineLimits)) {
      damage_ = std::string(InflateProblem(InflateResult::TooLarge));
      return false;
    }
    int code = Z_OK;
    const char* message = gzerror(gz_, &code);
    if (code != Z_OK && code != Z_STREAM_END) {
      damage_ = "damaged compressed data (" + std::string(message) + ")";
      return false;
    }
    if (!any) return false;
    while (!out.empty() && (out.back() == '\n' || out.back() == '\r')) out.pop_back();
    ++line_;
    return true;
  }
  const std::string& Damage() const { return damage_; }
  std::string Where() const { return path_ + ":" + std::to_string(line_); }

 private:
  std::string path_;
  gzFile gz_ = nullptr;
  int line_ = 0;
  std::string damage_;
};

std::vector<std::string_view> Tokens(std::string_view line) {
  std::vector<std::string_view> out;
  size_t i = 0;
  while (i < line.size()) {
    while (i < line.size() && (line[i] == ' ' || line[i] == '\t')) ++i;
    size_t start = i;
    while (i < line.size() && line[i] != ' ' && line[i] != '\t') ++i;
    if (i > start) out.push_back(line.substr(start, i - start));
  }
  return out;
}

// The text from token `first` to the end of the line, blanks kept.
std::string Rest(std::string_view line, const std::vector<std::string_view>& tokens, size_t first) {
  if (first >= tokens.size()) return {};
  return Trim(line.substr(static_cast<size_t>(tokens[first].data() - line.data())));
}

// Length of the UTF-8 sequence that starts at s[i], or 0 when none does.
size_t Utf8Sequence(std::string_view s, size_t i) {
  const auto c = static_cast<unsigned char>(s[i]);
  size_t n = c < 0x80 ? 1 : (c >> 5) == 6 ? 2 : (c >> 4) == 14 ? 3 : (c >> 3) == 30 ? 4 : 0;
  if (n == 0 || i + n > s.size()) return 0;
  for (size_t k = 1; k < n; ++k)
    if ((static_cast<unsigned char>(s[i + k]) >> 6) != 2) return 0;
  return n;
}

// Names in the data are mostly UTF-8, a few Latin-1: those are converted.
std::string ToUtf8(std::string_view s) {
  for (size_t i = 0; i < s.size();) {
    size_t n = Utf8Sequence(s, i);
    if (n == 0) {
      std::string out;
      for (char ch : s) {
        const auto c = static_cast<unsigned char>(ch);
        if (c < 0x80) {
          out += ch;
        } else {
          out += static_cast<char>(0xC0 | (c >> 6));
          out += static_cast<char>(0x80 | (c & 0x3F));
        }
      }
      return out;
    }
    i += n;
  }
  return std::string(s);
}

// A free text made safe for a "|" separated line.
std::string FieldText(std::string_view s) {
  std::string out = ToUtf8(s);
  for (char& c : out)
    if (c == '|' || c == '\r' || c == '\n' || c == '\t') c = c == '|' ? '/' : ' ';
  return Trim(out);
}

std::string Decimal(double degrees) {
  std::string s = FormatFixed(degrees, 6);
  if (s == "-0.000000") s = "0.000000";
  return s;
}

// A frequency of the data files, in units of 10 kHz, as the text "118.30".
std::string MegahertzText(double tensOfKilohertz) {
  return FormatFixed(tensOfKilohertz / 100, 2);
}

std::string Key(std::string_view airport, std::string_view runway) {
  return std::string(airport) + "." + PadRunwayNumber(runway);
}

// Strips the kind tags "[H] " and "[S] " that the data puts before the names
// of heliports and seaplane bases.
std::string AirportNameText(std::string name) {
  for (std::string_view tag : {"[H] ", "[S] ", "[G] "})
    if (StartsWith(name, tag)) name.erase(0, tag.size());
  return FieldText(name);
}

class Importer {
 public:
  WorldImport Run(std::string_view aptDat, std::string_view navDat) {
    ReadNavaids(navDat);
    ReadAirports(aptDat);
    if (!out_.Errors.empty()) return std::move(out_);
    WriteRunways();
    WriteStations();
    return std::move(out_);
  }

 private:
  void Skip(const LineSource& src, const std::string& what) {
    out_.Warnings.push_back(src.Where() + ": " + what + "; row skipped");
  }

  // A number token; an error of the line when it is none.
  std::optional<double> Number(const LineSource& src, std::string_view token,
                               std::string_view what) {
    if (!IsNumeric(token)) {
      Skip(src, std::string(what) + " is not a number: \"" + std::string(token) + "\"");
      return std::nullopt;
    }
    return ReadDecimal(token);
  }

  bool Enough(const LineSource& src, const std::vector<std::string_view>& t, size_t need,
              std::string_view row) {
    if (t.size() >= need) return true;
    Skip(src, std::string(row) + " has " + std::to_string(t.size()) + " fields, " +
                  std::to_string(need) + " expected");
    return false;
  }

  void ReadNavaids(std::string_view path) {
    LineSource src(path);
    if (!src.Open()) {
      out_.Errors.push_back(std::string(path) + ": cannot be read");
      return;
    }
    std::string line;
    while (src.Next(line)) {
      std::vector<std::string_view> t = Tokens(line);
      if (t.empty() || !IsNumeric(t[0])) continue;  // header and blank lines
      if (t.size() > 1 && t[1] == "Version") continue;
      const int row = CLng(ReadDecimal(t[0]));
      if (row == kRowNDB || row == kRowVOR) {
        if (!Enough(src, t, kNavaidTokens + 1, "navaid row")) continue;
        auto lat = Number(src, t[1], "latitude");
        auto lon = Number(src, t[2], "longitude");
        auto elev = Number(src, t[3], "elevation");
        auto freq = Number(src, t[4], "frequency");
        if (!lat || !lon || !elev || !freq) continue;
        Station s{std::string(t[7]),
                  FieldText(Rest(line, t, 8)),
                  *lat,
                  *lon,
                  CLng(*elev),
                  row == kRowVOR ? MegahertzText(*freq) : NumberText(*freq)};
        (row == kRowVOR ? vors_ : ndbs_).push_back(std::move(s));
      } else if (row == kRowILS || row == kRowLOC) {
        if (!Enough(src, t, kLocaliserTokens, "localiser row")) continue;
        auto freq = Number(src, t[4], "frequency");
        auto course = Number(src, t[6], "localiser course");
        if (!freq || !course) continue;
        Localiser loc{MegahertzText(*freq), std::string(t[7]), CLng(std::fmod(*course, 360.0)),
                      row == kRowILS};
        if (loc.Heading <= 0) loc.Heading += 360;
        auto [it, added] = localisers_.emplace(Key(t[8], t[9]), loc);
        // A full ILS outranks a localiser alone on the same runway.
        if (!added && loc.FullILS && !it->second.FullILS) it->second = loc;
      } else if (row == kRowGS) {
        if (!Enough(src, t, kLocaliserTokens, "glide slope row")) continue;
        auto packed = Number(src, t[6], "glide slope");
        if (!packed) continue;
        // Angle in hundredths of a degree times 1000, plus the course.
        const double angle = std::floor(*packed / 1000) / 100;
        if (angle > 0) glideSlopes_.emplace(Key(t[8], t[9]), angle);
      } else if (row == kRowEnd) {
        break;
      }
    }
    if (!src.Damage().empty()) out_.Errors.push_back(std::string(path) + ": " + src.Damage());
  }

  void ReadAirports(std::string_view path) {
    LineSource src(path);
    if (!src.Open()) {
      out_.Errors.push_back(std::string(path) + ": cannot be read");
      return;
    }
    std::string line;
    std::optional<Airport>& airport = open_;
    bool closed = false;
    auto finish = [&] {
      if (airport && !closed && !airport->Ends.empty()) airports_.push_back(std::move(*airport));
      airport.reset();
    };
    while (src.Next(line)) {
      std::vector<std::string_view> t = Tokens(line);
      if (t.empty() || !IsNumeric(t[0])) continue;
      const int row = CLng(ReadDecimal(t[0]));
      if (t.size() > 1 && t[1] == "Version") continue;
      if (row == kRowLandAirport || row == kRowSeaplaneBase || row == kRowHeliport) {
        finish();
        if (!Enough(src, t, kAirportTokens, "airport row")) continue;
        auto elev = Number(src, t[1], "elevation");
        if (!elev) continue;
        airport.emplace();
        airport->ICAO = std::string(t[4]);
        std::string name = Rest(line, t, 5);
        // "[X]" marks a closed airport: nobody is to be sent there.
        closed = StartsWith(name, "[X]");
        airport->Name = AirportNameText(name);
        airport->Elevation = CLng(*elev);
      } else if (!airport) {
        if (row == kRowEnd) break;
      } else if (row == kRowLandRunway) {
        if (!Enough(src, t, kLandRunwayTokens, "runway row")) continue;
        auto width = Number(src, t[1], "width");
        auto surface = Number(src, t[2], "surface");
        auto lat1 = Number(src, t[9], "latitude");
        auto lon1 = Number(src, t[10], "longitude");
        auto disp1 = Number(src, t[11], "displaced threshold");
        auto lat2 = Number(src, t[18], "latitude");
        auto lon2 = Number(src, t[19], "longitude");
        auto disp2 = Number(src, t[20], "displaced threshold");
        if (!width || !surface || !lat1 || !lon1 || !disp1 || !lat2 || !lon2 || !disp2) continue;
        const std::string name = SurfaceName(CLng(*surface));
        AddRunway(std::string(t[8]), *lat1, *lon1, *disp1, std::string(t[17]), *lat2, *lon2, *disp2,
                  *width, name);
      } else if (row == kRowWaterRunway) {
        if (!Enough(src, t, kWaterRunwayTokens, "water runway row")) continue;
        auto width = Number(src, t[1], "width");
        auto lat1 = Number(src, t[4], "latitude");
        auto lon1 = Number(src, t[5], "longitude");
        auto lat2 = Number(src, t[7], "latitude");
        auto lon2 = Number(src, t[8], "longitude");
        if (!width || !lat1 || !lon1 || !lat2 || !lon2) continue;
        AddRunway(std::string(t[3]), *lat1, *lon1, 0, std::string(t[6]), *lat2, *lon2, 0, *width,
                  "WATER");
      } else if (row == kRowApproachLights) {
        if (!Enough(src, t, kLightsTokens, "lights row")) continue;
        auto type = Number(src, t[3], "lights type");
        auto angle = Number(src, t[5], "glide slope");
        if (!type || !angle) continue;
        if (GivesGlideSlope(CLng(*type)) && *angle > 0)
          airport->LightsGlideSlope.emplace(PadRunwayNumber(t[6]), *angle);
      } else if (row == kRowRecordedWeather) {
        if (!Enough(src, t, kWeatherTokens, "frequency row")) continue;
        auto freq = Number(src, t[1], "frequency");
        if (!freq) continue;
        // The ATIS when there is one, else the first recorded weather.
        const bool named = Upper(Rest(line, t, 2)).find("ATIS") != std::string::npos;
        if (airport->ATIS.empty() || (named && !airport->ATISNamed)) {
          airport->ATIS = MegahertzText(*freq);
          airport->ATISNamed = named;
        }
      } else if (row == kRowHelipad) {
        continue;  // helicopters only
      } else if (row == kRowEnd) {
        break;
      }
    }
    finish();
    if (!src.Damage().empty()) out_.Errors.push_back(std::string(path) + ": " + src.Damage());
  }

  void AddRunway(std::string number1, double lat1, double lon1, double disp1, std::string number2,
                 double lat2, double lon2, double disp2, double width, const std::string& surface) {
    open_->Ends.push_back({std::move(number1), lat1, lon1, disp1, lat2, lon2, width, surface});
    open_->Ends.push_back({std::move(number2), lat2, lon2, disp2, lat1, lon1, width, surface});
  }

  void WriteRunways() {
    std::stable_sort(airports_.begin(), airports_.end(),
                     [](const Airport& a, const Airport& b) { return a.ICAO < b.ICAO; });
    std::string& text = out_.RunwayText;
    for (const Airport& a : airports_) {
      ++out_.Airports;
      for (const RunwayEnd& e : a.Ends) {
        const std::string key = Key(a.ICAO, e.Number);
        const Localiser* loc = nullptr;
        if (auto it = localisers_.find(key); it != localisers_.end()) loc = &it->second;
        double glide = kStandardGlideSlope;
        if (auto gs = glideSlopes_.find(key); gs != glideSlopes_.end()) {
          glide = gs->second;
        } else if (auto li = a.LightsGlideSlope.find(PadRunwayNumber(e.Number));
                   li != a.LightsGlideSlope.end()) {
          glide = li->second;
        }
        int heading = CLng(CalcAngle(e.Latitude, e.Longitude, e.EndLatitude, e.EndLongitude));
        if (heading <= 0) heading += 360;
        const int length =
            CLng(CalcDistance(e.Latitude, e.Longitude, e.EndLatitude, e.EndLongitude) *
                 kFeetPerNauticalMile);
        const int offset = std::clamp(CLng(e.DisplacedMetres * kFeetPerMetre), 0, 32000);

        text += e.Number;                                                   // 0
        text += "|" + std::to_string(heading);                              // 1
        text += "|" + FileLatitude(e.Latitude);                             // 2
        text += "|" + FileLongitude(e.Longitude);                           // 3
        text += "|" + FileGlideSlope(glide);                                // 4
        text += "|" + a.ICAO + "." + e.Number;                              // 5
        text += "|" + std::to_string(a.Elevation);                          // 6
        text += "|" + std::to_string(length);                               // 7
        text += "|" + std::to_string(CLng(e.WidthMetres * kFeetPerMetre));  // 8
        text += "|" + (loc ? loc->Frequency : std::string());               // 9
        text += "|" + (loc ? loc->Ident : std::string());                   // 10
        text += "|" + e.Surface;                                            // 11
        text += "|" + a.ATIS;                                               // 12
        text += "|" + std::to_string(loc ? loc->Heading : 0);               // 13
        text += "|" + Decimal(e.EndLatitude);                               // 14
        text += "|" + Decimal(e.EndLongitude);                              // 15
        text += "|";                           // 16 city: not in the data
        text += "|" + a.Name;                  // 17
        text += "|" + std::to_string(offset);  // 18
        text += "|" + Decimal(e.Latitude);     // 19
        text += "|" + Decimal(e.Longitude);    // 20
        text += "\r\n";
        ++out_.RunwayEnds;
        if (loc) ++out_.ILSEnds;
      }
    }
  }

  void WriteStations() {
    auto byIdent = [](const Station& a, const Station& b) { return a.Ident < b.Ident; };
    std::stable_sort(vors_.begin(), vors_.end(), byIdent);
    std::stable_sort(ndbs_.begin(), ndbs_.end(), byIdent);
    for (const auto* list : {&vors_, &ndbs_}) {
      for (const Station& s : *list) {
        out_.VorText += s.Ident + "|" + s.Name + "|" + Decimal(s.Latitude) + "|" +
                        Decimal(s.Longitude) + "|" + std::to_string(s.Elevation) + "|" +
                        s.Frequency + "\r\n";
      }
    }
    out_.VORs = static_cast<int>(vors_.size());
    out_.NDBs = static_cast<int>(ndbs_.size());
  }

  WorldImport out_;
  std::vector<Airport> airports_;
  std::optional<Airport> open_;                  // the airport being read
  std::map<std::string, Localiser> localisers_;  // by "ICAO.padded designator"
  std::map<std::string, double> glideSlopes_;
  std::vector<Station> vors_, ndbs_;
};

std::string HemisphereForm(double value, char positive, char negative, int degreeDigits) {
  const char hemisphere = value < 0 ? negative : positive;
  const double magnitude = std::fabs(value);
  long long degrees = static_cast<long long>(std::floor(magnitude));
  long long hundredths = std::llround((magnitude - static_cast<double>(degrees)) * 6000);
  if (hundredths >= 6000) {
    ++degrees;
    hundredths -= 6000;
  }
  return std::string(1, hemisphere) + FormatDigits(degrees, degreeDigits) + "_" +
         FormatDigits(hundredths / 100, 2) + "_" + FormatDigits(hundredths % 100, 2);
}

}  // namespace

std::string SurfaceName(int code) {
  // Codes of the airport file: 1 asphalt, 2 concrete, 3 turf or grass,
  // 4 dirt, 5 gravel, 12 dry lakebed (hard-packed earth, spoken as dirt),
  // 13 water, 14 snow or ice (skiways: snow), 15 transparent (the surface is
  // drawn by the scenery and unknown here: nothing is said). The later files
  // number their asphalt kinds 20 to 38 and their concrete kinds 50 to 57.
  switch (code) {
    case 1:
      return "ASPHALT";
    case 2:
      return "CONCRETE";
    case 3:
      return "GRASS";
    case 4:
    case 12:
      return "DIRT";
    case 5:
      return "GRAVEL";
    case 13:
      return "WATER";
    case 14:
      return "SNOW";
    default:
      break;
  }
  if (code >= 20 && code <= 38) return "ASPHALT";
  if (code >= 50 && code <= 57) return "CONCRETE";
  return {};
}

std::string FileLatitude(double latitude) {
  return HemisphereForm(latitude, 'N', 'S', 2);
}

std::string FileLongitude(double longitude) {
  return HemisphereForm(longitude, 'E', 'W', 3);
}

std::string FileGlideSlope(double degrees) {
  const long long hundredths = std::llround(degrees * 100);
  if (hundredths == 300) return "3";
  return std::to_string(hundredths / 100) + "_" + FormatDigits(hundredths % 100, 2);
}

WorldImport ImportWorld(std::string_view aptDat, std::string_view navDat) {
  return Importer().Run(aptDat, navDat);
}

}  // namespace vantoro
