#include "shell/option_fields.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>

#include "base/files.h"
#include "base/numbers.h"
#include "base/text.h"

namespace vantoro {

namespace {

using P = PilotRecord;
using S = Settings;
using R = FieldRule;

const std::array<PilotField, 31> kPilotFields = {{
    {"pilot", "name", R::Text, &P::name},
    {"pilot", "image", R::Text, &P::image},
    {"control setup", "HaveYokePressure", R::Box, &P::HaveYokePressure},
    {"control setup", "RudderController", R::Box, &P::RudderController},
    {"flight settings", "WantTaxiInWindAdvice", R::Box, &P::WantTaxiInWindAdvice},
    {"flight settings", "MonitorUseOfLights", R::Box, &P::MonitorUseOfLights},
    {"flight settings", "WantRandomFailures", R::Box, &P::WantRandomFailures},
    {"flight settings", "WantLooseWireFailures", R::Box, &P::WantLooseWireFailures},
    {"flight settings", "FailureSlider", R::Number, &P::FailureSlider, 0, kMaxFailureSlider},
    {"flight settings", "PausePointsLoss", R::Box, &P::PausePointsLoss},
    {"flight settings", "PauseWarning", R::Box, &P::PauseWarning},
    {"flight settings", "PauseGap", R::Number, &P::PauseGap, 0, INT32_MAX},
    {"logbook format", "Basic", R::Box, &P::Basic},
    {"sound setup", "DisableSound", R::Box, &P::DisableSound},
    {"sound setup", "BackgroundSounds", R::Box, &P::BackgroundSounds},
    {"sound setup", "Humour", R::Box, &P::Humour},
    {"sound setup", "Captions", R::Box, &P::Captions},
    {"sound setup", "MonGT", R::Box, &P::MonGT},
    {"sound setup", "MonAT", R::Box, &P::MonAT},
    {"sound setup", "AdviceWP", R::Box, &P::AdviceWP},
    {"sound setup", "AdviceVORNDB", R::Box, &P::AdviceVORNDB},
    {"sound setup", "MonitorVOR", R::Box, &P::MonitorVOR},
    {"sound setup", "AutoNearestAirport", R::Box, &P::AnnounceNearestAirport},
    {"sound setup", "MonitorTaxiways", R::Box, &P::MonitorTaxiways},
    {"sound setup", "Instructor", R::Text, &P::Instructor},
    {"sound setup", "InstructorNoticesFailures", R::Box, &P::InstructorNoticesFailures},
    {"auto detect setup", "AutoDetectModeCruise", R::Box, &P::AutoDetectModeCruise},
    {"auto detect setup", "AutoDetectModeLanding", R::Box, &P::AutoDetectModeLanding},
    {"auto tune setup", "AutoTuneILS", R::Box, &P::AutoTuneILS},
    {"auto tune setup", "AutoTuneATIS", R::Box, &P::AutoTuneATIS},
    {"auto tune setup", "AutoTuneVOR", R::Box, &P::AutoTuneVOR},
}};

const std::array<SettingsField, 19> kSettingsFields = {{
    {"FS Folders", "P3D", R::Folder, &S::FSXFolder, 0, 0, FieldBuild::P3D},
    {"FS Folders", "FS2002", R::Folder, &S::FS2002Folder, 0, 0, FieldBuild::FS},
    {"FS Folders", "FS2004", R::Folder, &S::FS2004Folder, 0, 0, FieldBuild::FS},
    {"FS Folders", "FSX", R::Folder, &S::FSXFolder, 0, 0, FieldBuild::FS},
    {"FS Folders", "FlightPlan", R::Folder, &S::FlightPlanFolder},
    {"Pilot", "PilotFile", R::Text, &S::PilotFile},
    {"Misc", "TransitionAltitude", R::NumberText, &S::TransitionAltitude},
    // A 0 leaves the design's choice: only 1 and 2 are honoured.
    {"Misc", "EndFlight", R::Choice, &S::EndFlight, kEndFlightWhenBrakeSet, kEndFlightWhenShutDown},
    {"Misc", "LoadFSXPlanOnConnect", R::SetOnlyBox, &S::LoadFSXPlanOnConnect},
    {"Misc", "GPSOverridesFlightPlan", R::SetOnlyBox, &S::GPSOverridesFlightPlan},
    {"Misc", "SpokenTips", R::NumericBox, &S::SpokenTips},
    {"Misc", "AviationTips", R::NumericBox, &S::AviationTips},
    {"Misc", "InstantHelp", R::NumericBox, &S::InstantHelp},
    {"Misc", "TaxiwayTips", R::NumericBox, &S::TaxiwayTips},
    {"Misc", "ReminderInterval", R::Number, &S::ReminderInterval, kShortestReminderInterval,
     kLongestReminderInterval},
    {"Voice", "Mode", R::ListIndex, &S::VoiceMode, 0, static_cast<int32_t>(kVoiceModes.size()) - 1},
    {"Simulator", "Link", R::Text, &S::Simulator, 0, 0, FieldBuild::WhenSet},
    {"Simulator", "Host", R::Text, &S::SimulatorHost, 0, 0, FieldBuild::WhenSet},
    {"Simulator", "Port", R::NumberText, &S::SimulatorPort, 0, 0, FieldBuild::WhenSet},
}};

template <class Record>
bool Present(const OptionField<Record>&, const Record&) {
  return true;
}

bool Present(const SettingsField& f, const Settings& s) {
  return f.build == FieldBuild::Any || f.build == FieldBuild::WhenSet ||
         (f.build == FieldBuild::P3D) == s.P3DMode;
}

template <class Record>
std::string Compose(std::span<const OptionField<Record>> fields, const Record& record) {
  std::string out;
  std::string_view section;
  for (const OptionField<Record>& f : fields) {
    if (!Present(f, record)) continue;
    if (f.build == FieldBuild::WhenSet && FieldValue(f, record).empty()) continue;
    if (f.section != section) {
      if (!out.empty()) out += "\r\n";
      out += "[" + std::string(f.section) + "]\r\n";
      section = f.section;
    }
    out += std::string(f.key) + "=" + FieldValue(f, record) + "\r\n";
  }
  return out;
}

// Says what was passed over in a value the row could not take as it stands.
class FieldNotes {
 public:
  FieldNotes(Notices* notices, std::string_view file) : notices_(notices), file_(file) {}
  void Note(const INIEntry& entry, std::string_view key, std::string_view what) const {
    if (notices_ == nullptr) return;
    notices_->push_back(Notice{std::string(file_), entry.Line,
                               std::string(key) + "=" + entry.Value + " " + std::string(what)});
  }

 private:
  Notices* notices_;
  std::string_view file_;
};

template <class Record>
void Read(std::span<const OptionField<Record>> fields, const std::vector<INIEntry>& entries,
          Record& record, const FieldNotes& notes) {
  for (const OptionField<Record>& f : fields) {
    if (!Present(f, record)) continue;
    const INIEntry entry = GetValueFromINI(entries, f.section, f.key);
    const std::string& value = entry.Value;
    // A key written with nothing after the "=" is an empty choice, not damage.
    const bool written = entry.Line > 0 && !value.empty();
    const std::optional<double> number = INIValueNumber(value);
    std::visit(
        [&](auto member) {
          auto& field = record.*member;
          using T = std::decay_t<decltype(field)>;
          if constexpr (std::is_same_v<T, bool>) {
            if (f.rule == R::Box && written && value != "0" && value != "1")
              notes.Note(entry, f.key, "is neither 0 nor 1; taken as 0");
            else if (f.rule != R::Box && written && !number)
              notes.Note(entry, f.key, "is not a number; left as it was");
            switch (f.rule) {
              case R::SetOnlyBox:
                if (WholeNumber(value) == 1) field = true;
                break;
              case R::NumericBox:
                if (number) field = *number == 1;
                break;
              default:
                field = value == "1";
            }
          } else if constexpr (std::is_same_v<T, int32_t>) {
            if (f.rule == R::Number) {
              if (number) {
                const int32_t taken = std::clamp(CLng(*number), f.low, f.high);
                if (written && (*number < f.low || *number > f.high))
                  notes.Note(entry, f.key,
                             "is out of range (" + std::to_string(f.low) + " to " +
                                 std::to_string(f.high) + "); " + std::to_string(taken) + " used");
                field = taken;
              } else if (written) {
                notes.Note(entry, f.key, "is not a number; " + std::to_string(field) + " kept");
              }
              return;
            }
            if (f.rule == R::ListIndex && !number) {
              if (written) notes.Note(entry, f.key, "is not a number; 0 used");
              field = 0;
              return;
            }
            const auto whole = WholeNumber(value);
            if (whole && *whole >= f.low && *whole <= f.high) {
              field = *whole;
            } else if (written && (!whole || f.rule == R::ListIndex)) {
              // A choice's 0 and the like leave the default on purpose.
              notes.Note(entry, f.key,
                         "is not one of " + std::to_string(f.low) + " to " +
                             std::to_string(f.high) + "; " + std::to_string(field) + " kept");
            }
          } else {
            if (f.rule == R::Folder) {
              field = FolderValue(value);
            } else if (f.rule != R::NumberText || number) {
              field = value;
            } else if (written) {
              notes.Note(entry, f.key, "is not a number; ignored");
            }
          }
        },
        f.member);
  }
}

}  // namespace

std::span<const PilotField> PilotFields() {
  return kPilotFields;
}

std::span<const SettingsField> SettingsFields() {
  return kSettingsFields;
}

template <class Record>
std::string FieldValue(const OptionField<Record>& field, const Record& record) {
  return std::visit(
      [&](auto member) -> std::string {
        const auto& value = record.*member;
        using T = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<T, bool>) {
          return value ? "1" : "0";
        } else if constexpr (std::is_same_v<T, int32_t>) {
          return std::to_string(value);
        } else {
          return QuoteINIValue(value);
        }
      },
      field.member);
}

template std::string FieldValue(const PilotField&, const PilotRecord&);
template std::string FieldValue(const SettingsField&, const Settings&);

std::string ComposeFields(std::span<const PilotField> fields, const PilotRecord& record) {
  return Compose(fields, record);
}

std::string ComposeFields(std::span<const SettingsField> fields, const Settings& record) {
  return Compose(fields, record);
}

void ReadFields(std::span<const PilotField> fields, const std::vector<INIEntry>& entries,
                PilotRecord& record, Notices* notices, std::string_view file) {
  Read(fields, entries, record, FieldNotes(notices, file));
}

void ReadFields(std::span<const SettingsField> fields, const std::vector<INIEntry>& entries,
                Settings& record, Notices* notices, std::string_view file) {
  Read(fields, entries, record, FieldNotes(notices, file));
}

std::string FolderValue(std::string_view value) {
  const std::string t = Trim(value);
  return t.empty() ? std::string() : TidyFolder(t);
}

std::optional<int> WholeNumber(std::string_view text) {
  const auto v = INIValueNumber(text);
  if (!v || *v != std::floor(*v) || std::fabs(*v) > 1e9) return std::nullopt;
  return static_cast<int>(*v);
}

}  // namespace vantoro
