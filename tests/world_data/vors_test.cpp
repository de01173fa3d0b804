#include "world/vors.h"

#include <gtest/gtest.h>

#include <sstream>

#include "world_fixture.h"

namespace vantoro {
namespace {

using testing::ScratchFolder;

TEST(Vors, ReadAndFindInFileOrder) {
  ScratchFolder dir;
  const std::string file = dir.Write("VNTRvors.txt",
                                     "ALD|ALDER VOR-DME|10.5|20.5|500|116.80\r\n"
                                     "ABC|ABC VOR|10.5|20.5001|510.4|113.20|1\r\n"
                                     "\r\n"
                                     "AL|ALDER NDB|12.25|21.75|0|385\n"
                                     "SHORT|only|3\r\n");
  WorldState world;
  EXPECT_EQ(ReadVorData(world, file), "");
  std::ostringstream read;
  for (const VORStation& s : world.VORStations)
    read << s.Ident << "|" << s.Name << "|" << s.Latitude << "|" << s.Longitude << "|"
         << s.Elevation << "|" << s.Frequency << "|" << s.Flag << "\n";
  EXPECT_EQ(read.str(),
            "ALD|ALDER VOR-DME|10.5|20.5|500|116.8|-1\n"
            "ABC|ABC VOR|10.5|20.5001|510|113.2|1\n"
            "AL|ALDER NDB|12.25|21.75|0|385|-1\n");
  struct Case {
    double latitude, longitude, tolerance;
    const char* found;
  };
  const Case cases[] = {
      {10.5, 20.5, 0.01, "ALD"},        // both inside: the first in the file wins
      {10.5, 20.5001, 0.00005, "ABC"},  // only the station at the point
      {10.75, 20.5, 0.25, "none"},      // on the edge of the box is not inside
  };
  for (const Case& c : cases) {
    const VORStation* s = FindVOR(world, c.latitude, c.longitude, c.tolerance);
    EXPECT_EQ(s ? s->Ident : "none", c.found) << c.latitude << " " << c.longitude;
  }
}

}  // namespace
}  // namespace vantoro
