#include "shell/settings.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "world/temp_folder.h"

namespace vantoro {

// Failures show the settings as their file would hold them.
void PrintTo(const Settings& s, std::ostream* os) {
  *os << "\n" << ComposeSettings(s);
}

namespace {

class FakeRegistry final : public Registry {
 public:
  std::map<std::string, std::string> values;  // key + "|" + name
  std::string GetRegistryValue(RegistryHive, std::string_view key, std::string_view name,
                               std::string_view fallback) const override {
    auto it = values.find(std::string(key) + "|" + std::string(name));
    return it == values.end() ? std::string(fallback) : it->second;
  }
};

Settings Filled(bool p3d) {
  Settings s;
  s.P3DMode = p3d;
  if (!p3d) s.FS2004Folder = "D:\\Games\\FS9\\";
  s.FSXFolder = "C:\\Program Files (x86)\\Steam, Games\\FSX\\";
  s.PilotFile = "C:\\Vantoro\\PilotRoster\\Smith, John.plt";
  s.TransitionAltitude = "6000";
  s.EndFlight = 2;
  s.LoadFSXPlanOnConnect = true;
  s.AviationTips = s.TaxiwayTips = false;
  s.VoiceMode = 1;
  return s;
}

TEST(SettingsFile, SavedSettingsLoadUnchanged) {
  for (bool p3d : {false, true}) {
    TempFolder dir;
    ASSERT_TRUE(SaveSettingsTab(dir.Root(), Filled(p3d)));
    Settings loaded;
    loaded.P3DMode = p3d;
    const SettingsLoad result = LoadSettingsTab(dir.Root(), NoRegistry(), loaded);
    EXPECT_TRUE(result.ok);
    EXPECT_EQ(result.pilotFile, Filled(p3d).PilotFile);
    EXPECT_EQ(loaded, Filled(p3d));
    // The Prepar3D build keeps only its own folder, under its own key.
    EXPECT_EQ(dir.Read("settings.ini").find("P3D=") != std::string::npos, p3d);
    EXPECT_EQ(dir.Read("settings.ini").find("FS2002=") != std::string::npos, !p3d);
  }
}

// The file as the program has always written it: keys in their order, CRLF
// lines, a blank line between sections, and nothing after the last.
TEST(SettingsFile, WrittenByteForByte) {
  const std::string misc =
      "\r\n[Pilot]\r\nPilotFile=\r\n\r\n[Misc]\r\nTransitionAltitude=18000\r\nEndFlight=0\r\n"
      "LoadFSXPlanOnConnect=0\r\nGPSOverridesFlightPlan=0\r\nSpokenTips=1\r\nAviationTips=1\r\n"
      "InstantHelp=1\r\nTaxiwayTips=1\r\nReminderInterval=120\r\n\r\n[Voice]\r\nMode=0\r\n";
  Settings fs;
  EXPECT_EQ(ComposeSettings(fs),
            "[FS Folders]\r\nFS2002=\r\nFS2004=\r\nFSX=\r\nFlightPlan=\r\n" + misc);
  Settings p3d;
  p3d.P3DMode = true;
  EXPECT_EQ(ComposeSettings(p3d), "[FS Folders]\r\nP3D=\r\nFlightPlan=\r\n" + misc);
}

// The simulator the pilot chose is written after the other sections, and
// only once chosen: a file of a pilot who never chose reads as before.
TEST(SettingsFile, SimulatorChoiceWrittenOnlyWhenMade) {
  Settings s;
  EXPECT_EQ(ComposeSettings(s).find("[Simulator]"), std::string::npos);
  s.Simulator = "xplane";
  s.SimulatorHost = "192.168.1.20";
  s.SimulatorPort = "49000";
  const std::string text = ComposeSettings(s);
  EXPECT_TRUE(
      text.ends_with("[Voice]\r\nMode=0\r\n\r\n[Simulator]\r\nLink=xplane\r\nHost=192.168.1.20\r\n"
                     "Port=49000\r\n"));
  Settings read;
  ReadSettings(ParseINIText(text, true), read);
  EXPECT_EQ(read, s);
}

// Each key is honoured by its own rule; what is not honoured leaves the box.
TEST(SettingsFile, KeysHonouredByTheirRules) {
  struct Case {
    const char* text;
    void (*check)(const Settings&);
  };
  const Case cases[] = {
      {"[FS Folders]\nFSX = C:\\FSX \nFS2004=\n",
       [](const Settings& s) { EXPECT_EQ(s.FSXFolder + "|" + s.FS2004Folder, "C:\\FSX\\|"); }},
      {"[FS Folders]\nFSX=C:\\Steam, Games\\FSX\n",  // a comma ends the value
       [](const Settings& s) { EXPECT_EQ(s.FSXFolder, "C:\\Steam\\"); }},
      {"[Misc]\nTransitionAltitude=high\nEndFlight=0\nLoadFSXPlanOnConnect=0\n"
       "GPSOverridesFlightPlan=yes\nSpokenTips=x\nAviationTips=2\n",
       [](const Settings& s) {
         EXPECT_EQ(s.TransitionAltitude, "5000");
         EXPECT_EQ(s.EndFlight, 1);               // a 0 leaves the choice
         EXPECT_TRUE(s.LoadFSXPlanOnConnect);     // a 0 does not clear it
         EXPECT_FALSE(s.GPSOverridesFlightPlan);  // nor does "yes" set it
         EXPECT_TRUE(s.SpokenTips);               // not a number: the box stays
         EXPECT_FALSE(s.AviationTips);            // a number other than 1 clears it
         EXPECT_FALSE(s.InstantHelp);
         EXPECT_TRUE(s.TaxiwayTips);
         EXPECT_EQ(s.VoiceMode, 0);  // no mode at all: off
       }},
      {"[Misc]\nEndFlight=2\nGPSOverridesFlightPlan=1\nInstantHelp=1\n[Voice]\nMode=7\n",
       [](const Settings& s) {
         EXPECT_EQ(s.EndFlight, 2);
         EXPECT_TRUE(s.GPSOverridesFlightPlan);
         EXPECT_TRUE(s.InstantHelp);
         EXPECT_EQ(s.VoiceMode, 2);  // out of range: the list stays
       }},
      {"[Misc] extra\nEndFlight=2\n",  // another section
       [](const Settings& s) { EXPECT_EQ(s.EndFlight, 1); }},
  };
  for (const Case& c : cases) {
    Settings s;  // as the page stood before
    s.FS2004Folder = "D:\\FS9\\";
    s.TransitionAltitude = "5000";
    s.EndFlight = 1;
    s.LoadFSXPlanOnConnect = true;
    s.InstantHelp = false;
    s.VoiceMode = 2;
    ReadSettings(ParseINIText(c.text, true), s);
    SCOPED_TRACE(c.text);
    c.check(s);
  }
}

TEST(SettingsFile, FirstStartTakesTheRegistryAndTheSamplePilot) {
  TempFolder dir;
  FakeRegistry registry;
  registry.values[std::string(kFS2002RegistryKey) + "|DisplayIcon"] = "C:\\FS2002\\FS2002.EXE,0";
  registry.values[std::string(kFS2004RegistryKey) + "|InstallLocation"] = " D:\\FS9 ";
  registry.values[std::string(kFSXSteamRegistryKey) + "|Install_Path"] = "E:\\Steam\\FSX";
  registry.values[std::string(kP3DRegistryKey) + "|SetupPath"] = "F:\\P3D\\";
  Settings s;
  EXPECT_EQ(LoadSettingsTab(dir.Root(), registry, s).pilotFile,
            dir.Root() + "PilotRoster\\LightSpeed.plt");
  EXPECT_EQ(s.FS2002Folder + "|" + s.FS2004Folder + "|" + s.FSXFolder,
            "C:\\FS2002\\|D:\\FS9\\|E:\\Steam\\FSX\\");  // boxed FSX missing: Steam's
  Settings p3d;
  p3d.P3DMode = true;
  LoadSettingsTab(dir.Root(), registry, p3d);
  EXPECT_EQ(p3d.FSXFolder, "F:\\P3D\\");

  // A settings file that is there but cannot be read changes nothing.
  std::filesystem::create_directories(dir.Root() + "settings.ini");
  Settings kept = Filled(false);
  const SettingsLoad result = LoadSettingsTab(dir.Root(), registry, kept);
  EXPECT_FALSE(result.ok);
  EXPECT_NE(result.error.find("settings.ini"), std::string::npos);
  EXPECT_EQ(kept, Filled(false));
}

}  // namespace
}  // namespace vantoro
