#include "world/runways.h"

#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdlib>
#if defined(__GLIBC__)
#include <malloc.h>
#endif

#include "base/failure.h"
#include "base/files.h"
#include "base/gzip.h"
#include "base/numbers.h"
#include "base/text.h"
#include "world/geo.h"

namespace vantoro {

namespace {

// Failure number of a compressed file that ends early or is damaged.
constexpr long kErrDamagedFile = 62;

// The four files of the generating batch, tested in this order.
constexpr std::array<std::string_view, 4> kGeneratorFiles = {"MakeRwys.exe", "VNTRRwys.exe",
                                                             "VNTRRwys.fsf", "VNTRRwy.bat"};

bool IsDigit(char c) {
  return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

// Up to `most` leading digits of text.
std::string_view LeadingDigits(std::string_view text, size_t most) {
  size_t n = 0;
  while (n < text.size() && n < most && IsDigit(text[n])) ++n;
  return text.substr(0, n);
}

// Splits a line at "|" into views; the vector is reused between lines.
void SplitFields(std::string_view line, std::vector<std::string_view>& fields) {
  fields.clear();
  size_t start = 0;
  for (;;) {
    size_t bar = line.find('|', start);
    if (bar == std::string_view::npos) {
      fields.push_back(line.substr(start));
      return;
    }
    fields.push_back(line.substr(start, bar - start));
    start = bar + 1;
  }
}

// Lines of a text: "\r\n" ends a line, and so does a lone "\n", so that a
// file saved by another editor reads alike. A last line without an end
// counts too.
size_t LineCount(std::string_view text) {
  if (text.empty()) return 0;
  size_t n = 0;
  for (char c : text)
    if (c == '\n') ++n;
  return text.back() == '\n' ? n : n + 1;
}

// The line that starts at `start`, without its end; start moves past it.
std::string_view NextLine(std::string_view text, size_t& start) {
  const size_t nl = text.find('\n', start);
  const size_t end = nl == std::string_view::npos ? text.size() : nl;
  size_t cut = end;
  if (cut > start && text[cut - 1] == '\r') --cut;
  std::string_view line = text.substr(start, cut - start);
  start = nl == std::string_view::npos ? text.size() : nl + 1;
  return line;
}

// Hands memory that the program has freed back to the system where the C
// library keeps it otherwise (freed blocks in the middle of the heap).
void ReleaseFreedMemory() {
#if defined(__GLIBC__)
  malloc_trim(0);
#endif
}

void EmptyRunwayStores(WorldState& world) {
  world.Runways = {};
  world.Places = {};
  world.RunwayCells.clear();
  world.CloseRunways.clear();
  world.ClosePlaces.clear();
  world.AirportRunways.clear();
  world.RunwayFile.clear();
}

std::string_view TrimView(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) s.remove_prefix(1);
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t' || s.back() == '\r'))
    s.remove_suffix(1);
  return s;
}

int32_t WholeField(std::string_view text) {
  return CLng(ReadDecimal(text));
}

// The standard report of a failure during the load, with where it stood.
std::string LoadFailure(std::string_view what, std::string_view location, std::string_view file,
                        std::string_view status, int32_t line) {
  std::string extra = "\nFile Read: " + std::string(file) + "\nStatus: " + std::string(status) +
                      "\nLine: " + std::to_string(line);
  return FailureReport(kErrDamagedFile, std::string(what), std::string(location), extra).Report();
}

// The load's status label. It changes on every line but is only shown at the
// yields, so the text is composed only when somebody looks.
class LoadStatus {
 public:
  LoadStatus(WorldState& world, const RunwayLoadObserver& observer)
      : world_(world), observer_(observer) {}

  void Step(std::string_view text) {
    step_ = text;
    perLine_ = {};
    Show();
  }
  void Line(std::string_view phase, int32_t line) {
    perLine_ = phase;
    line_ = line;
  }
  void Yield() { Show(); }
  void SetLines(int32_t lines) { lines_ = lines; }
  int32_t line() const { return line_; }
  std::string Text() const {
    if (perLine_.empty()) return std::string(step_);
    return std::string(perLine_) + std::to_string(line_);
  }
  // Keeps the last status in the world for the failure report.
  void Keep() { world_.LoadStatus = Text(); }

 private:
  void Show() {
    Keep();
    if (observer_) observer_(RunwayLoadProgress{world_.LoadStatus, line_, lines_});
  }

  WorldState& world_;
  const RunwayLoadObserver& observer_;
  std::string_view step_;
  std::string_view perLine_;
  int32_t line_ = 0;
  int32_t lines_ = 0;
};

// Validity of a runway line: heading numeric, at most 3 characters and at
// most 360; ILS heading at most 360; threshold offset at most 32000; the
// designator, heading and both co-ordinates present.
bool ValidRunwayLine(const std::vector<std::string_view>& f) {
  if (!IsNumeric(f[1]) || f[1].size() > 3 || ReadDecimal(f[1]) > kMaxHeading) return false;
  if (ReadDecimal(f[13]) > kMaxHeading) return false;
  if (ReadDecimal(f[18]) > kMaxThresholdOffset) return false;
  for (int i = 0; i <= 3; ++i)
    if (TrimView(f[i]).empty()) return false;
  return true;
}

double GlideSlopeField(std::string_view text) {
  std::string_view t = TrimView(text);
  if (t == "3" || t.empty()) return 3;
  return ParseFileCoOrd(t, "DECIMAL");
}

Runway RunwayFromFields(const std::vector<std::string_view>& f) {
  Runway r;
  r.Number = PadRunwayNumber(TrimView(f[0]));
  size_t dot = f[5].find('.');
  if (dot != std::string_view::npos) r.ICAO = std::string(f[5].substr(0, dot));
  // The decimal co-ordinates; a file that left them empty still has the
  // hemisphere form, which every valid line carries.
  r.Latitude = TrimView(f[19]).empty() ? ParseFileCoOrd(f[2], "LATITUDE") : ReadDecimal(f[19]);
  r.Longitude = TrimView(f[20]).empty() ? ParseFileCoOrd(f[3], "LONGITUDE") : ReadDecimal(f[20]);
  r.Heading = static_cast<int16_t>(WholeField(f[1]));
  r.GlideSlope = GlideSlopeField(f[4]);
  r.Elevation = WholeField(f[6]);
  r.Width = WholeField(f[8]);
  r.Length = WholeField(f[7]);
  r.ILSFrequency = std::string(f[9]);
  r.ILSIdent = std::string(f[10]);
  r.Surface = std::string(f[11]);
  r.ATIS = std::string(f[12]);
  r.EndLatitude = ReadDecimal(f[14]);
  r.EndLongitude = ReadDecimal(f[15]);
  r.ILSHeading = WholeField(f[13]);
  r.City = std::string(f[16]);
  r.AirportName = std::string(f[17]);
  r.ThresholdOffset = WholeField(f[18]);
  return r;
}

// The existing file of a path, plain or as its ".gz".
std::string ExistingPlainOrGz(const std::string& path) {
  if (FileExists(path)) return path;
  if (FileExists(path + ".gz")) return path + ".gz";
  return {};
}

}  // namespace

RunwayPlace PlaceOf(double latitude, double longitude) {
  constexpr double kToRadians = 3.14159265358979 / 180;
  const double a = latitude * kToRadians, b = longitude * kToRadians;
  return RunwayPlace{std::sin(a), std::cos(a), std::sin(b), std::cos(b)};
}

const RunwayCell* WorldState::FindCell(int latitude, int longitude) const {
  auto row = RunwayCells.find(latitude);
  if (row == RunwayCells.end()) return nullptr;
  auto cell = row->second.find(longitude);
  return cell == row->second.end() ? nullptr : &cell->second;
}

double ReadDecimal(std::string_view text) {
  std::string_view t = TrimView(text);
  // The leading number: sign, digits, point, digits, exponent.
  size_t n = 0;
  if (n < t.size() && (t[n] == '+' || t[n] == '-')) ++n;
  size_t digits = 0;
  while (n < t.size() && IsDigit(t[n])) ++n, ++digits;
  if (n < t.size() && t[n] == '.') {
    ++n;
    while (n < t.size() && IsDigit(t[n])) ++n, ++digits;
  }
  if (digits == 0) return 0;
  if (n < t.size() && (t[n] == 'e' || t[n] == 'E')) {
    size_t e = n + 1;
    if (e < t.size() && (t[e] == '+' || t[e] == '-')) ++e;
    if (e < t.size() && IsDigit(t[e])) {
      while (e < t.size() && IsDigit(t[e])) ++e;
      n = e;
    }
  }
  std::string_view number = t.substr(0, n);
  if (number.front() == '+') number.remove_prefix(1);
  double value = 0;
  // from_chars reads the point whatever the locale of the machine.
  auto [end, ec] = std::from_chars(number.data(), number.data() + number.size(), value);
  (void)end;
  if (ec == std::errc::result_out_of_range) return 0;
  return value;
}

std::string PadRunwayNumber(std::string_view text) {
  int digits = 0;
  for (char c : text)
    if (IsDigit(c)) ++digits;
  if (digits == 1) return "0" + std::string(text);
  return std::string(text);
}

double ParseFileCoOrd(std::string_view text, std::string_view kind) {
  // Padding leaves every part readable even when the text is short.
  std::string padded = Upper(Trim(text)) + std::string(20, ' ');
  std::vector<std::string> parts = Split(padded, '_');
  auto part = [&](size_t i) -> std::string_view {
    return i < parts.size() ? std::string_view(parts[i]) : std::string_view();
  };
  auto hundredths = [](std::string_view digits) {
    return digits.empty() ? 0.0 : ReadDecimal("0." + std::string(digits));
  };

  if (kind == "DECIMAL") {
    double whole = ReadDecimal(LeadingDigits(part(0), 3));
    return whole + hundredths(LeadingDigits(part(1), 2));
  }

  const bool latitude = kind == "LATITUDE";
  if (!latitude && kind != "LONGITUDE") return 0;
  std::string_view first = part(0);
  bool negative = false;
  if (!first.empty() && !IsDigit(first.front())) {
    const char h = first.front();
    negative = latitude ? h == 'S' : h == 'W';
    first.remove_prefix(1);
  }
  const double degrees = ReadDecimal(LeadingDigits(first, 3));
  const double minutes = ReadDecimal(LeadingDigits(part(1), 3));
  const double decimals = hundredths(LeadingDigits(part(2), 9));
  const double value = degrees + (minutes + decimals) / 60;
  return negative ? -value : value;
}

WorldText ReadWorldFile(std::string_view path) {
  WorldText out;
  if (!FindNoCase(path)) return out;
  const std::optional<std::string> bytes = TryReadFile(path);
  if (!bytes) {
    out.Error = std::string(path) + ": cannot be opened";
    return out;
  }
  // A plain file is taken as it stands, a compressed one inflated.
  const InflateResult r = InflateLimited(*bytes, out.Text);
  if (r == InflateResult::Ok) return out;
  out.Error = std::string(path) + ": " + std::string(InflateProblem(r));
  // A torn last line could carry a cut number; only whole lines are kept.
  const size_t nl = out.Text.rfind('\n');
  out.Text.resize(nl == std::string::npos ? 0 : nl + 1);
  return out;
}

std::string ResolveWorldFile(std::string_view path, std::string_view root) {
  std::string found = ExistingPlainOrGz(std::string(path));
  if (!found.empty() || root.empty()) return found;
  return ExistingPlainOrGz(TidyFolder(root) + std::string(kWorldFolder) + "\\" + GetFileName(path));
}

RunwayFileChoice GetRunwayFile(std::string_view root, std::string_view simFolder,
                               std::string_view simName) {
  RunwayFileChoice choice;
  if (!simFolder.empty()) {
    choice.Path = ResolveWorldFile(TidyFolder(simFolder) + std::string(kUserRunwayFile));
    if (!choice.Path.empty()) return choice;
  }
  const std::string candidate2 =
      std::string(root) + "\\" + std::string(simName) + std::string(kRunwayFileExtension);
  choice.Path = ResolveWorldFile(candidate2, root);
  if (choice.Path.empty())
    choice.Path = ExistingPlainOrGz(TidyFolder(root) + std::string(kWorldFolder) + "\\" +
                                    std::string(kWorldRunwayFile));
  if (choice.Path.empty())
    choice.Message = "Vantoro runway data file is missing!\n\nFile: " + candidate2;
  return choice;
}

std::string ProgressCaption(double fraction) {
  return std::to_string(static_cast<int>(Int(fraction * 100))) + "%";
}

int ProgressBarWidth(double fraction) {
  return CLng(fraction * kProgressBarTwips);
}

std::string LoadRunways(WorldState& world, std::string_view root, std::string_view simFolder,
                        std::string_view simName, const RunwayLoadObserver& observer) {
  LoadStatus status(world, observer);
  status.Step("Finding file");
  RunwayFileChoice choice = GetRunwayFile(root, simFolder, simName);
  if (choice.Path.empty()) {
    // Without a file every query answers nothing.
    EmptyRunwayStores(world);
    return choice.Message;
  }
  return LoadRunwayFile(world, choice.Path, observer);
}

std::string LoadRunwayFile(WorldState& world, std::string_view file,
                           const RunwayLoadObserver& observer) {
  LoadStatus status(world, observer);
  status.Step("Reading file");
  WorldText read = ReadWorldFile(file);
  std::string message;
  if (!read.Error.empty())
    message = LoadFailure(read.Error, "LoadRunways", file, world.LoadStatus, status.line());
  status.Step("File read");

  const std::string_view text = read.Text;
  const size_t count = LineCount(text);
  status.SetLines(static_cast<int32_t>(count));
  status.Step("File Split");
  EmptyRunwayStores(world);
  world.RunwayFile = std::string(file);
  // Every line may hold a runway: with room for all of them made at once the
  // store never moves, and the working sets can point into it.
  world.Runways.reserve(count);
  world.Places.reserve(count);

  status.Step("Processing Data");
  std::vector<std::string_view> fields;
  fields.reserve(32);
  // The cell of the previous line: the file is in airport order, so
  // neighbouring lines nearly always share a cell.
  RunwayCell* cell = nullptr;
  int cellLatitude = 0, cellLongitude = 0;
  size_t start = 0;
  for (size_t i = 0; i < count; ++i) {
    const std::string_view lineText = NextLine(text, start);
    const int32_t line = static_cast<int32_t>(i);
    status.Line("Processing runway line ", line);
    if (line % kProgressEveryLines == 0) status.Yield();
    SplitFields(lineText, fields);
    if (fields.size() < kRunwayFields || !ValidRunwayLine(fields)) continue;

    status.Line("Extracting runway line ", line);
    Runway runway = RunwayFromFields(fields);

    status.Line("Adding runway line ", line);
    // The longitude is brought into -180..179 as the queries search it, so
    // that a runway past 179.5 east lies in the cell they look at.
    const int latitude = CLng(runway.Latitude);
    const int longitude = WrapLongLat(CLng(runway.Longitude));
    if (cell == nullptr || latitude != cellLatitude || longitude != cellLongitude) {
      cell = &world.RunwayCells[latitude][longitude];
      cellLatitude = latitude;
      cellLongitude = longitude;
    }
    cell->push_back(static_cast<int32_t>(world.Runways.size()));
    world.Places.push_back(PlaceOf(runway.Latitude, runway.Longitude));
    world.Runways.push_back(std::move(runway));
  }
  // The text is no longer needed; the memory it took goes back to the
  // system, so that only the runways stay resident for the flight.
  read = WorldText{};
  ReleaseFreedMemory();
  status.Step("Finished");
  return message;
}

std::string LoadAirportRunways(WorldState& world, std::string_view file, std::string_view airport) {
  world.SelectedAirport.clear();
  const std::string code = Upper(airport);
  WorldText read = ReadWorldFile(file);
  std::vector<std::string_view> fields;
  const std::string_view text = read.Text;
  for (size_t start = 0, i = 0, count = LineCount(text); i < count; ++i) {
    const std::string_view line = NextLine(text, start);
    if (line.size() <= 20) continue;
    SplitFields(line, fields);
    if (fields.size() < 6) continue;
    std::string_view ident = fields[5].substr(0, fields[5].find('.'));
    if (Upper(ident) != code) continue;
    bool filled = true;
    for (int i = 0; i <= 3; ++i)
      if (TrimView(fields[i]).empty()) filled = false;
    if (!filled || !IsNumeric(fields[1])) continue;

    RunwayRecord r;
    r.Number = PadRunwayNumber(TrimView(fields[0]));
    r.ICAO = std::string(ident);
    r.Heading = static_cast<int16_t>(WholeField(fields[1]));
    r.Latitude = ParseFileCoOrd(fields[2], "LATITUDE");
    r.Longitude = ParseFileCoOrd(fields[3], "LONGITUDE");
    r.GlideSlope = ParseFileCoOrd(fields[4], "DECIMAL");
    if (r.GlideSlope == 0) r.GlideSlope = 3;
    // Older generated files stop early; what they lack stays empty.
    if (fields.size() > 6) {
      r.Elevation = WholeField(fields[6]);
      if (fields.size() > 7) r.Length = WholeField(fields[7]);
      if (fields.size() > 8) r.Width = WholeField(fields[8]);
      if (fields.size() > 9) r.ILSFrequency = std::string(fields[9]);
      if (fields.size() > 10) r.ILSIdent = std::string(fields[10]);
      if (fields.size() > 11) r.Surface = std::string(fields[11]);
      if (fields.size() > 12) r.ATIS = std::string(fields[12]);
    }
    if (fields.size() > 12) {
      if (fields.size() > 13) r.ILSHeading = WholeField(fields[13]);
      if (fields.size() > 14) r.EndLatitude = ReadDecimal(fields[14]);
      if (fields.size() > 15) r.EndLongitude = ReadDecimal(fields[15]);
      if (fields.size() > 16) r.City = std::string(fields[16]);
      if (fields.size() > 17) r.AirportName = std::string(fields[17]);
      if (fields.size() > 18) r.ThresholdOffset = WholeField(fields[18]);
    }
    const int index = FindRunwayIndex(world, r.Number);
    if (index >= 0) {
      r.CopyTo(world.SelectedAirport[static_cast<size_t>(index)]);
    } else {
      world.SelectedAirport.push_back(std::move(r));
    }
  }
  if (read.Error.empty()) return {};
  return LoadFailure(read.Error, "LoadAirportRunways", file, "Reading file", 0);
}

int FindRunwayIndex(const WorldState& world, std::string_view text) {
  const std::string wanted = PadRunwayNumber(TrimView(text));
  for (size_t i = 0; i < world.SelectedAirport.size(); ++i)
    if (world.SelectedAirport[i].Number == wanted) return static_cast<int>(i);
  return -1;
}

std::string GenerateRunwayData(std::string_view folder, std::string_view root, bool p3dMode) {
  if (!FolderExists(folder)) return "The folder: " + std::string(folder) + " does not exist.";
  const std::string rootFolder = TidyFolder(root);
  for (std::string_view name : kGeneratorFiles)
    if (!FileExists(rootFolder + std::string(name)))
      return "Error cannot find: " + std::string(name);

  bool started = false;
#ifdef _WIN32
  // The batch and the two tools it runs write "VNTR2011.TXT" into the
  // simulator's folder on their own; nobody waits for them.
  const std::string command = "start \"\" \"" + rootFolder + "VNTRRwy.bat\" \"" + rootFolder +
                              "\" \"" + std::string(folder) + "\"";
  started = std::system(command.c_str()) == 0;
#endif
  if (started) return {};
  return p3dMode ? "New P3D runway data could not be generated."
                 : "New Flight Simulator runway data could not be generated.";
}

}  // namespace vantoro
