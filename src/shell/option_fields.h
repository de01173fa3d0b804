// The option tables: one row per key of settings.ini and of the pilot file,
// naming its section, key, the field it fills, how a value read is taken and
// its range. Reading, writing, the app's forms and the refresh of what the
// tick reads all go through these rows, so a new option is one field in its
// struct and one row here. The defaults are the struct's own initialisers.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "base/ini.h"
#include "base/notices.h"
#include "shell/pilot.h"
#include "shell/settings.h"

namespace vantoro {

// How a value read from the file is taken.
enum class FieldRule {
  Box,         // "1" checks; anything else, a missing key too, clears
  Number,      // a number, clamped to the range; anything else keeps the value
  Text,        // as it stands; a missing key empties it
  Folder,      // trimmed and ending in "\"; empty empties it
  NumberText,  // text kept only when it is a number
  Choice,      // a whole number within the range is taken; anything else keeps the value
  SetOnlyBox,  // a 1 checks; anything else leaves the box as it is
  NumericBox,  // a number: 1 checks, any other clears; not a number keeps the box
  ListIndex,   // not a number selects 0; a whole number within the range is taken
};

// Which build of the settings page writes and reads a row.
// WhenSet rows are read always and written only when they hold a value.
enum class FieldBuild { Any, P3D, FS, WhenSet };

template <class Record>
struct OptionField {
  using Member = std::variant<bool Record::*, int32_t Record::*, std::string Record::*>;
  std::string_view section;
  std::string_view key;
  FieldRule rule;
  Member member;
  int32_t low = 0;  // range of a number or a choice
  int32_t high = 0;
  FieldBuild build = FieldBuild::Any;
};

using PilotField = OptionField<PilotRecord>;
using SettingsField = OptionField<Settings>;

// The rows in the order the files are written.
std::span<const PilotField> PilotFields();
std::span<const SettingsField> SettingsFields();

// "box", "number" or "text": what the app's form shows for a row.
template <class Record>
std::string_view FieldType(const OptionField<Record>& field) {
  static constexpr std::string_view kTypes[] = {"box", "number", "text"};
  return kTypes[field.member.index()];
}
// A row's value as the file writes it.
template <class Record>
std::string FieldValue(const OptionField<Record>& field, const Record& record);

// The file's text: the rows in order, "KEY=VALUE" lines ended by CRLF, a
// blank line between sections.
std::string ComposeFields(std::span<const PilotField> fields, const PilotRecord& record);
std::string ComposeFields(std::span<const SettingsField> fields, const Settings& record);
// Takes each row's key from the parsed file by the row's rule. A value the
// row cannot take as written (not a number, out of its range, a box that is
// neither 0 nor 1) adds a notice naming `file`, the line and what was used.
void ReadFields(std::span<const PilotField> fields, const std::vector<INIEntry>& entries,
                PilotRecord& record, Notices* notices = nullptr, std::string_view file = {});
void ReadFields(std::span<const SettingsField> fields, const std::vector<INIEntry>& entries,
                Settings& record, Notices* notices = nullptr, std::string_view file = {});

// A folder box's value: trimmed, and ending in "\" unless empty.
std::string FolderValue(std::string_view value);
// A whole number, or nullopt for text that is not one.
std::optional<int> WholeNumber(std::string_view text);

}  // namespace vantoro
