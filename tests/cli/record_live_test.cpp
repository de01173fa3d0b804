#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "cli/record_cmd.h"
#include "link/image_link.h"
#include "link/recording.h"
#include "world/temp_folder.h"

namespace vantoro {
namespace {

namespace fs = std::filesystem;

TEST(RecordLive, EveryEndLeavesACompleteRecordingThatReplaysTheFlight) {
  struct Row {
    std::string name;
    std::string file;   // output name
    int stopAfter = 0;  // the pilot presses Ctrl+C before this sample; 0: never
    int goneAfter = 0;  // the simulator stops answering after this many samples; 0: never
    int64_t ticks = 0;  // ticks in the recording
    bool wentAway = false;
  };
  const std::vector<Row> rows = {
      {"Ctrl+C", "a.vrec", 4, 0, 3, false},
      {"simulator gone", "b.vrec", 0, 5, 5, true},
      {"compressed", "c.vrec.gz", 3, 0, 2, false},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    TempFolder dir(row.file);
    const std::string out = dir.Root() + row.file;
    OffsetImage sim;
    ImageLink link(sim);
    FixedClock clock;
    int calls = 0;
    RecordPacing pacing;
    pacing.nextTick = [&] {
      ++calls;
      // The aircraft climbs a metre a tick; the simulator may go away.
      sim.SetU16(0x31E6, static_cast<uint16_t>(100 + calls));
      if (row.goneAfter > 0 && calls > row.goneAfter) link.failProcessWith = kLinkTimeout;
      // Each sample is on disk before the next one is taken.
      if (row.goneAfter == 0 || calls <= row.goneAfter + 1) {
        const std::string part = ReadWhole(out + ".part");
        int onDisk = 0;
        for (size_t at = part.find("\ntick"); at != std::string::npos;
             at = part.find("\ntick", at + 1))
          ++onDisk;
        EXPECT_EQ(onDisk, calls - 1);
      }
      return row.stopAfter == 0 || calls < row.stopAfter;
    };
    std::ostringstream err;
    ASSERT_EQ(RecordLive(link, clock, out, pacing, err), 0) << err.str();
    EXPECT_FALSE(dir.Exists(row.file + ".part"));
    EXPECT_FALSE(link.IsOpen());

    Recording recording;
    std::string error;
    ASSERT_TRUE(LoadRecording(out, recording, error)) << error;
    EXPECT_EQ(recording.TotalTicks(), row.ticks);
    OffsetImage replayed;
    for (const RecordingStep& step : recording.steps)
      if (step.kind == RecordingStep::Kind::Write) ApplyWrite(replayed, step);
    EXPECT_EQ(replayed.U16(0x31E6), 100 + row.ticks);
    const std::string text = row.file.ends_with(".gz") ? "" : dir.Read(row.file);
    EXPECT_EQ(text.find("The simulator went away: IPC timed out all retries") != std::string::npos,
              row.wentAway);
  }
}

}  // namespace
}  // namespace vantoro
