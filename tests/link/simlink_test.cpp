// What the status line shows of the link: result texts, simulator names, the
// server version, and the platform link when no simulator can be reached.
#include "link/simlink.h"

#include <gtest/gtest.h>

#include <string>

#include "link/platform_link.h"

namespace vantoro {
namespace {

TEST(LinkTexts, ResultTextsReadAsTheStatusLineShowsThem) {
  const struct {
    int code;
    const char* text;
  } cases[] = {
      {0, "Okay"},
      {1, "Attempt to Open when already Open"},
      {2, "Cannot link to FSUIPC or WideClient"},
      {3, "Failed to Register common message with Windows"},
      {4, "Failed to create Atom for mapping filename"},
      {5, "Failed to create a file mapping object"},
      {6, "Failed to open a view to the file map"},
      {7, "Incorrect version of FSUIPC, or not FSUIPC"},
      {8, "Sim is not version requested"},
      {9, "Call cannot execute, link not Open"},
      {10, "Call cannot execute: no requests accumulated"},
      {11, "IPC timed out all retries"},
      {12, "IPC sendmessage failed all retries"},
      {13, "IPC request contains bad data"},
      {14, "Maybe running on WideClient, but FS not running on Server, or wrong FSUIPC"},
      {15, "Read or Write request cannot be added, memory for Process is full"},
      {-1, ""},
      {16, ""},
  };
  for (const auto& c : cases) EXPECT_STREQ(LinkResultText(c.code), c.text) << "code " << c.code;
}

TEST(LinkTexts, SimulatorNamesAndThePrepar3DRow) {
  const struct {
    int code;
    bool p3dMode;
    const char* name;
  } cases[] = {
      {0, false, "Any"},  {1, false, "FS98"}, {2, false, "FS2K"},   {3, false, "CFS2"},
      {4, false, "CFS1"}, {5, false, "FLY"},  {6, false, "FS2002"}, {7, false, "FS2004"},
      {8, false, "FSX"},  {9, false, "ESP"},  {10, false, ""},      {10, true, "P3D"},
      {8, true, "FSX"},   {11, true, ""},     {-1, false, ""},
  };
  for (const auto& c : cases)
    EXPECT_STREQ(SimulatorName(c.code, c.p3dMode), c.name)
        << "code " << c.code << " p3d " << c.p3dMode;
}

TEST(LinkTexts, ServerVersionAsShownBesideTheStatus) {
  const struct {
    uint32_t word;
    char separator;
    const char* text;
  } cases[] = {
      {0x19980005, '.', "1.998e"},  // the oldest server the link accepts
      {0x48000000, '.', "4.800"},   // the Prepar3D and FSX floor
      {0x32200000, '.', "3.220"},   // the floor of the older simulators
      {0x49740000, ',', "4,974"},   // the system's own decimal separator
      {0x3999001A, '.', "3.999z"}, {0x60000001, '.', "6.000a"}, {0x00000000, '.', "0.000"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(FsuipcVersionText(c.word, c.separator), c.text) << std::hex << c.word;
}

// With no simulator server running, the link of this platform refuses to open
// with the words the status line shows, and refuses everything else as closed.
TEST(PlatformLink, WithoutASimulatorOpenSaysSoAndTheRestIsClosed) {
  auto link = MakePlatformLink();
  ASSERT_NE(link, nullptr);
  int result = -1;
  EXPECT_FALSE(link->Open(0, result));
  EXPECT_EQ(result, kLinkNoServer);
  EXPECT_STREQ(LinkResultText(result), "Cannot link to FSUIPC or WideClient");
  EXPECT_FALSE(link->IsOpen());

  uint8_t buffer[4] = {1, 2, 3, 4};
  const struct {
    const char* call;
    bool (*run)(SimLink&, uint8_t*, int&);
  } calls[] = {
      {"Read", [](SimLink& l, uint8_t* b, int& r) { return l.Read(0x0560, 4, b, r); }},
      {"Write", [](SimLink& l, uint8_t* b, int& r) { return l.Write(0x0BC0, 4, b, r); }},
      {"Process", [](SimLink& l, uint8_t*, int& r) { return l.Process(r); }},
  };
  for (const auto& c : calls) {
    result = -1;
    EXPECT_FALSE(c.run(*link, buffer, result)) << c.call;
    EXPECT_EQ(result, kLinkNotOpen) << c.call;
  }
  EXPECT_EQ(buffer[0], 1);
  link->Close();
  link->Close();
  EXPECT_FALSE(link->IsOpen());
}

}  // namespace
}  // namespace vantoro
