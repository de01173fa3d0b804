#include "shell/simulators.h"

#include <gtest/gtest.h>

#include "link/image_link.h"
#include "world/temp_folder.h"

namespace vantoro {
namespace {

TEST(Simulators, ThePrepar3DBuildNamesItsOwnSimulator) {
  SimulatorCaptions p3d;
  SetP3DTexts(p3d);
  const SimulatorCaptions expected{"Auto-Read P3D Flight Plan", "Read P3D's Plan",
                                   "Load P3D folder location from the Registry",
                                   "Generate runway data for P3D", "P3D Folder:"};
  EXPECT_EQ(p3d, expected);
  EXPECT_EQ(SimulatorCaptions().FolderLabel, "FSX Folder:");
}

TEST(Simulators, TheModuleIsCopiedIntoTheSimulatorsModulesFolder) {
  const std::string kModule = std::string("MZ\0\x90module", 9);
  struct Row {
    std::string name;
    bool delivered = true;     // the module lies in the program's root
    std::string before = "";   // what the simulator's folder holds: "Modules", "modules file"
    std::string landsIn = "";  // where the copy is found; "" when none is made
  };
  const std::vector<Row> rows = {
      {"modules folder made", true, "", "FS9/modules/fsuipc.dll"},
      {"its own folder kept, old copy replaced", true, "Modules", "FS9/Modules/FSUIPC.DLL"},
      {"nothing to copy", false, "", ""},
      {"a file in the way", true, "modules file", ""},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    TempFolder dir(row.name.substr(0, 5));
    if (row.delivered) dir.Write("fsuipc.dll", kModule);
    dir.Write("FS9/fs9.exe", "");
    if (row.before == "Modules") dir.Write("FS9/Modules/FSUIPC.DLL", "old");
    if (row.before == "modules file") dir.Write("FS9/modules", "");
    const std::string sim = dir.Root() + "FS9\\";
    const InstallOutcome outcome = InstallFSUIPC(dir.Root(), sim);
    EXPECT_EQ(outcome.Installed, !row.landsIn.empty());
    if (!row.landsIn.empty()) {
      EXPECT_EQ(outcome.Message,
                "Vantoro is now configured to communicate with Flight Simulator 2004. Please "
                "restart");
      EXPECT_EQ(dir.Read(row.landsIn), kModule);
    } else {
      EXPECT_EQ(outcome.Message, "Vantoro could not write a copy of the file FSUIPC.DLL into " +
                                     sim + "modules\\\n" +
                                     "This operation is necessary if you are using FS2004 or "
                                     "FS2002.");
    }
  }
}

TEST(Simulators, ClosingAsksForUnsavedDataWritesTheSettingsAndClosesTheLink) {
  PilotTab pilot;
  EXPECT_TRUE(CloseQuestion(pilot).empty());
  pilot.Unsaved = true;
  EXPECT_EQ(CloseQuestion(pilot),
            (std::vector<std::string>{
                "The current pilot data has not been saved!",
                "Are you sure you want to close the program without saving the data?"}));

  TempFolder dir;
  OffsetImage image;
  ImageLink link(image);
  int result = 0;
  ASSERT_TRUE(link.Open(0, result));
  Settings settings;
  settings.FSXFolder = "E:\\FSX\\";
  settings.VoiceMode = 2;
  EXPECT_EQ(CloseProgram(dir.Root(), settings, link), "");
  EXPECT_FALSE(link.IsOpen());
  Settings read;
  ASSERT_TRUE(LoadSettingsTab(dir.Root(), NoRegistry(), read).ok);
  EXPECT_EQ(read, settings);
}

}  // namespace
}  // namespace vantoro
