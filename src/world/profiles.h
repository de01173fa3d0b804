// Aircraft profiles: finding and reading the profile of the aircraft in the
// simulator from one of three sources (the simulator's aircraft.cfg, a
// profile delivered with the program, the pilot's own), the per-aircraft
// choices in "Aircraft.dat", checking and saving the pilot's profile, and the
// notices that tell the pilot which figures he is held to.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "world/aircraft.h"

namespace vantoro {

inline constexpr char kAircraftChangedNotice[] = "Aircraft changed! Using ";
inline constexpr int kAircraftChangedNoticeSeconds = 3;
inline constexpr char kUnknownAircraftNotice[] = "UNKNOWN AIRCRAFT!! - Estimating profile...";
inline constexpr int kUnknownAircraftNoticeSeconds = 8;
inline constexpr int kUnknownAircraftAfterSeconds = 10;  // of flight time

// Estimates from aircraft.cfg: the flap limit is a share of the flaps'
// damaging speed, the gear limit a little above it but never above the cap.
inline constexpr double kCfgFlapSpeedFactor = 0.92;
inline constexpr double kCfgGearSpeedFactor = 1.15;
inline constexpr int kCfgGearSpeedCap = 280;
// The estimated flap limit falls in a straight line to the clean stall speed
// this many degrees beyond the first position.
inline constexpr double kCfgFlapSpreadDegrees = 45;

// What the profile is chosen from.
struct AircraftContext {
  std::string Root;          // the program's root folder ("Aircraft\", "Aircraft.dat")
  std::string Simulator;     // the running simulator's name: "FS2002", "FS2004", "FSX", "P3D"...
  int SimulatorCode = 0;     // its code as the link reports it (9 for ESP)
  std::string FS2002Folder;  // the folder boxes of the settings, each ending in "\" or empty
  std::string FS2004Folder;
  std::string FSXFolder;
  AircraftIdentity Identity;  // aircraft file, title, ATC model
  bool HeavyAircraft = false;
};

// The file of a profile kind ("CFG", "FSR", "FSU") for the aircraft, or ""
// when the simulator is not one the kind knows or the file does not exist.
std::string FindAircraftFile(std::string_view kind, const AircraftContext& ctx);

// Reads a profile file of a kind into the page: resets it, then fills it by
// the rules of the kind (the estimates for "CFG"). `folder` is the aircraft's
// folder name, which some rules look at. False when the file cannot be read;
// the page is then as it was.
bool LoadAircraftFile(std::string_view kind, std::string_view path, std::string_view folder,
                      bool heavyAircraft, AircraftValues& a);

// Finds the file of the kind for the aircraft in the simulator and reads it.
// False when it is missing; the page is then as it was.
bool LoadAircraftData(std::string_view kind, const AircraftContext& ctx, AircraftValues& a);

// The start of a flight: restores the per-aircraft choices (into the
// monitoring boxes and `instructorVolume`), picks and loads the profile,
// forms the working values. Returns the notice to show in the simulator for
// kAircraftChangedNoticeSeconds.
std::string AircraftChanged(AircraftValues& a, const AircraftContext& ctx, int& instructorVolume);

// "Aircraft.dat" in the root folder, and the keys stored in it per aircraft.
std::string AircraftDatPath(std::string_view root);
std::string InstructorVolumeKey(std::string_view title);
std::string InstructorGPWSKey(std::string_view title);
std::string MonitorEnginesKey(std::string_view title);
std::string MonitorLightsKey(int light, std::string_view title);
std::string OptionBoxKey(int box, std::string_view title);

// The monitoring boxes restored per aircraft, in the order they are read.
// Boxes 10, 16 and 21 are left out on purpose: they keep what they hold.
inline constexpr std::array<int, 30> kRestoredOptionBoxes = {
    0,  1,  2, 3, 5, 19, 20, 22, 32, 33, 34, 35, 37, 38, 39,
    40, 11, 6, 7, 9, 8,  12, 23, 13, 14, 15, 28, 29, 30, 31};

// Restores the monitoring boxes and the volume of the aircraft `a.Title`. A
// stored value other than 1 clears a box; a volume outside 0..4 gives 2.
void RestoreAircraftSelections(AircraftValues& a, std::string_view root, int& instructorVolume);

// A change of a monitoring box, the engines or lights box, the altitude-calls
// box or the volume is stored at once, unless the aircraft has no title.
// False when "Aircraft.dat" cannot be written.
bool SaveAircraftChoice(std::string_view root, std::string_view title, std::string_view key,
                        int value);

// The pilot chooses the source by hand. Each returns the message to show, or
// "" when there is none.
std::string ChooseVantoroData(AircraftValues& a, const AircraftContext& ctx);
std::string ChooseFSData(AircraftValues& a, const AircraftContext& ctx);
std::string ChooseUserData(AircraftValues& a, const AircraftContext& ctx);
// At disconnection the page is editable again when the pilot's own profile is selected.
void RestorePageLock(AircraftValues& a);

// The errors of the page, one "* ..." line each ending in CRLF; "" when good.
std::string ValidateAircraftUserData(const RawProfile& raw);
// The text of a ".fsu" file for the page.
std::string ComposeUserProfile(const RawProfile& raw);
// "Save User Data": validates and writes root + "Aircraft\" + folder + ".fsu".
// Returns what to show: the errors, or a write failure; "" when saved.
std::string SaveAircraftUserData(std::string_view root, std::string_view folder,
                                 const RawProfile& raw);

// True when the estimated-profile notice is due: the profile came from
// aircraft.cfg, neither the product's nor the pilot's profile is selected,
// and the flight is running past its first seconds. Once a flight.
bool WantEstimatingNotice(const AircraftValues& a, double flightTimeSeconds, bool flightRunning);
// The lines added to the summary at disconnection when the profile was
// estimated (the first is empty); none otherwise.
std::vector<std::string> EstimatedProfileSummary(const AircraftValues& a);
// The data-source part of the simulator's message line.
std::string DataSourceStatus(const AircraftValues& a);

// The raw profile and the working values, one "name=value" line each.
std::string ProfileReport(const AircraftValues& a);

}  // namespace vantoro
