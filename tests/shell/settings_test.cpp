#include "shell/settings.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "world/temp_folder.h"

namespace vantoro {

// Failures show the record as its file would hold it.
void PrintTo(const Settings& r, std::ostream* os) {
  *os << "\n" << ComposeSettings(r);
}

namespace {

// A registry holding a few values.
class FakeRegistry final : public Registry {
 public:
  std::map<std::string, std::string> values;  // key + "|" + name
  std::string GetRegistryValue(RegistryHive hive, std::string_view key, std::string_view name,
                               std::string_view fallback) const override {
    EXPECT_EQ(hive, RegistryHive::LocalMachine);
    auto it = values.find(std::string(key) + "|" + std::string(name));
    return it == values.end() ? std::string(fallback) : it->second;
  }
};

Settings Filled(bool p3d) {
  Settings s;
  s.P3DMode = p3d;
  if (!p3d) {
    s.FS2002Folder = "C:\\FS2002\\";
    s.FS2004Folder = "D:\\Games\\FS9\\";
  }
  s.FSXFolder = "C:\\Program Files (x86)\\Steam, Games\\FSX\\";
  s.FlightPlanFolder = "C:\\Users\\pilot\\Documents\\Flight Simulator X Files\\";
  s.PilotFile = "C:\\Vantoro\\PilotRoster\\Smith, John.plt";
  s.TransitionAltitude = "6000";
  s.EndFlight = 2;
  s.LoadFSXPlanOnConnect = true;
  s.SpokenTips = {true, false, true, false};
  s.VoiceMode = 1;
  return s;
}

TEST(SettingsFile, SavedSettingsLoadUnchanged) {
  for (bool p3d : {false, true}) {
    TempFolder dir;
    const Settings saved = Filled(p3d);
    ASSERT_TRUE(SaveSettingsTab(dir.Root(), saved));
    Settings loaded;
    loaded.P3DMode = p3d;
    const SettingsLoad result = LoadSettingsTab(dir.Root(), NoRegistry(), loaded);
    EXPECT_TRUE(result.ok);
    EXPECT_EQ(result.pilotFile, saved.PilotFile);
    EXPECT_EQ(loaded, saved) << "P3D mode " << p3d;
  }
}

TEST(SettingsFile, WrittenInKeyOrder) {
  Settings s;
  s.FSXFolder = "C:\\FSX\\";
  EXPECT_EQ(ComposeSettings(s),
            "[FS Folders]\r\nFS2002=\r\nFS2004=\r\nFSX=C:\\FSX\\\r\nFlightPlan=\r\n\r\n"
            "[Pilot]\r\nPilotFile=\r\n\r\n"
            "[Misc]\r\nTransitionAltitude=18000\r\nEndFlight=0\r\nLoadFSXPlanOnConnect=0\r\n"
            "GPSOverridesFlightPlan=0\r\nSpokenTips=1\r\nAviationTips=1\r\nInstantHelp=1\r\n"
            "TaxiwayTips=1\r\n\r\n"
            "[Voice]\r\nMode=0\r\n");
  s.P3DMode = true;
  EXPECT_TRUE(ComposeSettings(s).starts_with("[FS Folders]\r\nP3D=C:\\FSX\\\r\nFlightPlan=\r\n"));
}

// Each key is honoured by its own rule; what is not honoured leaves the box.
TEST(SettingsFile, KeysHonouredByTheirRules) {
  struct Case {
    const char* text;
    void (*check)(const Settings&);
  };
  const Case cases[] = {
      {"[FS Folders]\nFSX = C:\\FSX \nFS2004=\n",
       [](const Settings& s) {
         EXPECT_EQ(s.FSXFolder, "C:\\FSX\\");
         EXPECT_EQ(s.FS2004Folder, "");
       }},
      {"[FS Folders]\nFSX=C:\\Steam, Games\\FSX\n",  // comma ends the value
       [](const Settings& s) { EXPECT_EQ(s.FSXFolder, "C:\\Steam\\"); }},
      {"[Misc]\nTransitionAltitude=high\nEndFlight=0\nLoadFSXPlanOnConnect=0\n"
       "GPSOverridesFlightPlan=yes\nSpokenTips=x\nAviationTips=2\n",
       [](const Settings& s) {
         EXPECT_EQ(s.TransitionAltitude, "5000");
         EXPECT_EQ(s.EndFlight, 1);
         EXPECT_TRUE(s.LoadFSXPlanOnConnect);     // a 0 does not clear it
         EXPECT_FALSE(s.GPSOverridesFlightPlan);  // nor does "yes" set it
         EXPECT_EQ(s.SpokenTips, (std::array<bool, 4>{true, false, false, true}));
       }},
      {"[Misc]\nEndFlight=2\nGPSOverridesFlightPlan=1\nInstantHelp=1\n[Voice]\nMode=7\n",
       [](const Settings& s) {
         EXPECT_EQ(s.EndFlight, 2);
         EXPECT_TRUE(s.GPSOverridesFlightPlan);
         EXPECT_TRUE(s.SpokenTips[2]);
         EXPECT_EQ(s.VoiceMode, 2);  // out of range: the list stays
       }},
      {"[Voice]\nMode=on\n", [](const Settings& s) { EXPECT_EQ(s.VoiceMode, 0); }},
      {"[Misc] extra\nEndFlight=2\n",  // another section: nothing read
       [](const Settings& s) { EXPECT_EQ(s.EndFlight, 1); }},
  };
  for (const Case& c : cases) {
    Settings s;  // as the page stood before
    s.FS2004Folder = "D:\\FS9\\";
    s.TransitionAltitude = "5000";
    s.EndFlight = 1;
    s.LoadFSXPlanOnConnect = true;
    s.SpokenTips = {true, true, false, true};
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
  SettingsLoad result = LoadSettingsTab(dir.Root(), registry, s);
  EXPECT_TRUE(result.ok);
  EXPECT_EQ(result.pilotFile, dir.Root() + "PilotRoster\\LightSpeed.plt");
  EXPECT_EQ(s.FS2002Folder, "C:\\FS2002\\");
  EXPECT_EQ(s.FS2004Folder, "D:\\FS9\\");
  EXPECT_EQ(s.FSXFolder, "E:\\Steam\\FSX\\");  // boxed FSX missing: its Steam edition

  Settings p3d;
  p3d.P3DMode = true;
  LoadSettingsTab(dir.Root(), registry, p3d);
  EXPECT_EQ(p3d.FSXFolder, "F:\\P3D\\");
  EXPECT_EQ(p3d.FS2002Folder, "");
}

TEST(SettingsFile, AFileThatCannotBeReadChangesNothing) {
  TempFolder dir;
  std::filesystem::create_directories(dir.Root() + "settings.ini");  // a folder, not a file
  Settings s = Filled(false);
  FakeRegistry registry;
  registry.values[std::string(kFSXRegistryKey) + "|SetupPath"] = "C:\\Other\\";
  const SettingsLoad result = LoadSettingsTab(dir.Root(), registry, s);
  EXPECT_FALSE(result.ok);
  EXPECT_NE(result.error.find("settings.ini"), std::string::npos);
  EXPECT_EQ(s, Filled(false));
}

TEST(SettingsFile, AppliedToWhatTheTickReads) {
  EngineOptions o;
  ApplySettings(Filled(false), o);
  EXPECT_EQ(o.TransitionAltitude, 6000);
  EXPECT_EQ(o.EndFlightWhen, 2);
  EXPECT_EQ(o.FSXFolder, "C:\\Program Files (x86)\\Steam, Games\\FSX\\");
  EXPECT_TRUE(o.SpokenTips);
  EXPECT_FALSE(o.AviationTips);
  EXPECT_TRUE(o.SpokenTipsSwitches);
  EXPECT_FALSE(o.TaxiwayTips);
  EXPECT_EQ(o.VoiceMode, 1);
}

}  // namespace
}  // namespace vantoro
