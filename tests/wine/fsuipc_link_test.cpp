// The Windows link against a stand-in offset server in its own process: what
// the link answers when it opens, exchanges and fails, and that what it reads
// lands where the caller asked and what it writes lands in the simulator.
#include "link/fsuipc_link.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <string>
#include <vector>

#include "link/platform_link.h"
#include "test_server.h"

namespace vantoro {
namespace {

using testing::TestServer;
namespace ts = testserver;

// The program's timeout with almost no pause between tries: a healthy
// exchange never waits, so these tests stay fast.
constexpr FsuipcTiming kPrompt{2000, 10, 1};
// For a server that never answers: three short tries.
constexpr FsuipcTiming kImpatient{40, 2, 1};

constexpr uint32_t kFsx = 0xFADE0008;
constexpr uint32_t kVersion480 = 0x48000000;
constexpr const char* kServer = "UIPCMAIN";
constexpr const char* kWideClient = "FS98MAIN";

// What the untouched server holds; offsets past 0xFFFF read as zero.
std::vector<uint8_t> Pattern(uint32_t offset, uint32_t size) {
  std::vector<uint8_t> bytes(size);
  for (uint32_t i = 0; i < size; ++i)
    bytes[i] = offset + i < ts::kImageSize ? TestServer::PatternByte(offset + i) : 0;
  return bytes;
}

bool AtomExists(const std::string& name) {
  return GlobalFindAtomA(name.c_str()) != 0;
}

bool MappingExists(const std::string& name) {
  HANDLE h = OpenFileMappingA(FILE_MAP_READ, FALSE, name.c_str());
  if (h == nullptr) return false;
  CloseHandle(h);
  return true;
}

TEST(FsuipcLinkOpen, AnswersByServerWindowVersionAndSimulator) {
  const struct {
    const char* name;
    const char* windowClass;  // nullptr: no server at all
    uint32_t version;
    uint32_t id;
    int requestedSim;
    ts::Behaviour behaviour;
    bool nameTaken;  // the server holds the mapping name of the first open
    int expected;
    uint32_t fsId;      // on success
    uint32_t messages;  // handshake exchanges the server saw
  } cases[] = {
      {"FSX, any simulator accepted", kServer, kVersion480, kFsx, 0, ts::kAnswer, false, 0, 8, 1},
      {"FS2004 requested and running", kServer, 0x33220000, 0xFADE0007, 7, ts::kAnswer, false, 0, 7,
       1},
      {"oldest server accepted, 1.998e", kServer, 0x19980005, 0xFADE0006, 0, ts::kAnswer, false, 0,
       6, 1},
      {"Prepar3D through WideClient", kWideClient, kVersion480, 0xFADE000A, 10, ts::kAnswer, false,
       0, 10, 1},
      {"no server window", nullptr, kVersion480, kFsx, 0, ts::kAnswer, false, kLinkNoServer, 0, 0},
      {"server older than 1.998e", kServer, 0x19980004, kFsx, 0, ts::kAnswer, false,
       kLinkWrongVersion, 0, 1},
      {"older than 1.998e behind WideClient", kWideClient, 0x19980004, kFsx, 0, ts::kAnswer, false,
       kLinkWideClientNoServer, 0, 1},
      {"id word without 0xFADE", kServer, kVersion480, 0xFACE0008, 0, ts::kAnswer, false,
       kLinkWrongVersion, 0, 1},
      {"id word without 0xFADE behind WideClient", kWideClient, kVersion480, 0xFACE0008, 0,
       ts::kAnswer, false, kLinkWideClientNoServer, 0, 1},
      {"server never fills its words", kServer, 0, 0, 0, ts::kAnswer, false, kLinkWrongVersion, 0,
       5},
      {"another simulator than requested", kServer, kVersion480, kFsx, 7, ts::kAnswer, false,
       kLinkWrongSim, 0, 1},
      {"mapping name already taken", kServer, kVersion480, kFsx, 0, ts::kAnswer, true,
       kLinkMappingFailed, 0, 0},
      {"handshake answered with 0", kServer, kVersion480, kFsx, 0, ts::kAnswerZero, false,
       kLinkBadData, 0, 1},
      {"handshake reply damaged", kServer, kVersion480, kFsx, 0, ts::kCorruptId, false,
       kLinkBadData, 0, 1},
      {"handshake never answered", kServer, kVersion480, kFsx, 0, ts::kNeverAnswer, false,
       kLinkTimeout, 0, 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    TestServer server;
    server.SetWord(0x3304, c.version);
    server.SetWord(0x3308, c.id);
    server.control().behaviour = c.behaviour;
    if (c.nameTaken) {
      server.control().takenPid = GetCurrentProcessId();
      server.control().takenCounter = 1;
    }
    if (c.windowClass != nullptr) {
      ASSERT_TRUE(server.Start(c.windowClass));
    }

    FsuipcLink link(c.behaviour == ts::kNeverAnswer ? kImpatient : kPrompt);
    int result = -1;
    const bool opened = link.Open(c.requestedSim, result);
    EXPECT_EQ(result, c.expected) << LinkResultText(result);
    EXPECT_EQ(opened, c.expected == kLinkOk);
    EXPECT_EQ(link.IsOpen(), c.expected == kLinkOk);
    EXPECT_EQ(server.control().messages, c.messages);
    if (c.expected == kLinkOk) {
      EXPECT_EQ(link.FsVersion(), c.version);
      EXPECT_EQ(link.FsId(), c.fsId);
      EXPECT_EQ(link.FoundWideClientWindow(), std::string(c.windowClass) == kWideClient);
      // The handshake told the server who is asking.
      EXPECT_EQ(server.control().clientVersion, kClientVersion);
    } else {
      // A failed open leaves nothing behind: no atom, no mapping, no link.
      if (!link.MappingName().empty()) {
        EXPECT_FALSE(AtomExists(link.MappingName()));
        if (!c.nameTaken) {
          EXPECT_FALSE(MappingExists(link.MappingName()));
        }
      }
      uint32_t word = 0;
      EXPECT_FALSE(link.Read(0x3304, 4, &word, result));
      EXPECT_EQ(result, kLinkNotOpen);
    }
    link.Close();
  }
}

TEST(FsuipcLinkOpen, TakenMappingNameIsNeverReusedAndTheNextOpenTakesANewOne) {
  TestServer server;
  server.control().takenPid = GetCurrentProcessId();
  server.control().takenCounter = 1;
  ASSERT_TRUE(server.Start(kServer));
  FsuipcLink link(kPrompt);
  int result = -1;
  EXPECT_FALSE(link.Open(0, result));
  EXPECT_EQ(result, kLinkMappingFailed);
  const std::string taken = link.MappingName();
  EXPECT_TRUE(link.Open(0, result)) << LinkResultText(result);
  EXPECT_NE(link.MappingName(), taken);
  EXPECT_TRUE(AtomExists(link.MappingName()));
  link.Close();
  EXPECT_FALSE(AtomExists(link.MappingName()));
}

TEST(FsuipcLinkOpen, UsesTheSimulatorsOwnServerBeforeWideClient) {
  TestServer wide;
  wide.SetWord(0x3308, 0xFADE0007);
  ASSERT_TRUE(wide.Start(kWideClient));
  TestServer own;
  ASSERT_TRUE(own.Start(kServer));
  FsuipcLink link(kPrompt);
  int result = -1;
  ASSERT_TRUE(link.Open(0, result)) << LinkResultText(result);
  EXPECT_EQ(link.FsId(), 8u);
  EXPECT_FALSE(link.FoundWideClientWindow());
  EXPECT_EQ(wide.control().messages, 0u);
}

TEST(FsuipcLinkCalls, ClosedLinkRefusesAndOpenLinkRefusesASecondOpen) {
  TestServer server;
  ASSERT_TRUE(server.Start(kServer));
  FsuipcLink link(kPrompt);
  uint8_t bytes[4] = {};
  int result = -1;
  // Never opened, then opened and closed twice: every call is refused as closed.
  for (int round = 0; round < 2; ++round) {
    SCOPED_TRACE(round == 0 ? "never opened" : "closed twice");
    EXPECT_FALSE(link.Read(0x0560, 4, bytes, result));
    EXPECT_EQ(result, kLinkNotOpen);
    EXPECT_FALSE(link.Write(0x0BC0, 4, bytes, result));
    EXPECT_EQ(result, kLinkNotOpen);
    EXPECT_FALSE(link.Process(result));
    EXPECT_EQ(result, kLinkNotOpen);
    ASSERT_TRUE(link.Open(0, result)) << LinkResultText(result);
    const std::string name = link.MappingName();

    // A second open changes nothing: the same block, still serving.
    EXPECT_FALSE(link.Open(0, result));
    EXPECT_EQ(result, kLinkAlreadyOpen);
    EXPECT_TRUE(link.IsOpen());
    EXPECT_EQ(link.MappingName(), name);
    EXPECT_FALSE(link.Process(result));
    EXPECT_EQ(result, kLinkNothingQueued);
    ASSERT_TRUE(link.Read(0x0560, 4, bytes, result));
    ASSERT_TRUE(link.Process(result)) << LinkResultText(result);
    EXPECT_EQ(std::vector<uint8_t>(bytes, bytes + 4), Pattern(0x0560, 4));

    link.Close();
    link.Close();
    EXPECT_FALSE(link.IsOpen());
    EXPECT_FALSE(AtomExists(name));
    EXPECT_FALSE(MappingExists(name));
  }
}

TEST(FsuipcLinkExchange, ReadsLandInTheirDestinationsAndWritesInTheSimulator) {
  TestServer server;
  ASSERT_TRUE(server.Start(kServer));
  FsuipcLink link(kPrompt);
  int result = -1;
  ASSERT_TRUE(link.Open(0, result)) << LinkResultText(result);

  // Each read gets its own buffer with guard bytes past the requested size.
  constexpr uint32_t kGuard = 8;
  constexpr uint8_t kUntouched = 0xCC;
  const struct {
    bool write;
    uint32_t offset;
    uint32_t size;
    bool nullDestination;
  } requests[] = {
      {false, 0x0560, 8, false},   {true, 0x0BC0, 2, false},  {false, 0x3E00, 1, false},
      {false, 0x6000, 256, false}, {true, 0x0330, 4, false},  {false, 0x1000, 16, true},
      {false, 0x0238, 0, false},   {true, 0xF000, 1, false},  {false, 0xB800, 0x1000, false},
      {true, 0x2000, 300, false},  {false, 0x0020, 3, false},
  };
  std::vector<std::vector<uint8_t>> buffers;
  std::vector<std::vector<uint8_t>> written;
  for (const auto& r : requests) {
    buffers.emplace_back(r.size + kGuard, kUntouched);
    std::vector<uint8_t> data(r.size);
    for (uint32_t i = 0; i < r.size; ++i) data[i] = static_cast<uint8_t>(0xA0 + i * 3 + r.offset);
    written.push_back(data);
    if (r.write)
      ASSERT_TRUE(link.Write(r.offset, r.size, data.data(), result));
    else
      ASSERT_TRUE(
          link.Read(r.offset, r.size, r.nullDestination ? nullptr : buffers.back().data(), result));
  }
  ASSERT_TRUE(link.Process(result)) << LinkResultText(result);
  EXPECT_EQ(result, kLinkOk);

  for (size_t k = 0; k < std::size(requests); ++k) {
    const auto& r = requests[k];
    SCOPED_TRACE(::testing::Message() << (r.write ? "write " : "read ") << std::hex << r.offset);
    const std::vector<uint8_t>& buffer = buffers[k];
    if (r.write) {
      for (uint32_t i = 0; i < r.size; ++i) EXPECT_EQ(server.Byte(r.offset + i), written[k][i]);
      EXPECT_EQ(server.Byte(r.offset - 1), TestServer::PatternByte(r.offset - 1));
      EXPECT_EQ(server.Byte(r.offset + r.size), TestServer::PatternByte(r.offset + r.size));
    } else if (!r.nullDestination) {
      EXPECT_EQ(std::vector<uint8_t>(buffer.begin(), buffer.begin() + r.size),
                Pattern(r.offset, r.size));
    }
    for (uint32_t i = r.size; i < buffer.size(); ++i) EXPECT_EQ(buffer[i], kUntouched);
  }
}

TEST(FsuipcLinkExchange, BadRepliesAndSilenceAreReportedAndNeverCopied) {
  const struct {
    const char* name;
    ts::Behaviour behaviour;
    int expected;
  } cases[] = {
      {"answered with 0", ts::kAnswerZero, kLinkBadData},
      {"record id damaged", ts::kCorruptId, kLinkBadData},
      {"record size pointing past the block", ts::kCorruptSize, kLinkBadData},
      {"record offset moved", ts::kCorruptOffset, kLinkBadData},
      {"closing word replaced by a huge read", ts::kOverwriteEnd, kLinkBadData},
      {"never answered", ts::kNeverAnswer, kLinkTimeout},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    TestServer server;
    ASSERT_TRUE(server.Start(kServer));
    FsuipcLink link(c.behaviour == ts::kNeverAnswer ? kImpatient : kPrompt);
    int result = -1;
    ASSERT_TRUE(link.Open(0, result)) << LinkResultText(result);

    server.SetBehaviour(c.behaviour);
    uint8_t first[8];
    uint8_t second[8];
    std::memset(first, 0xCC, sizeof first);
    std::memset(second, 0xCC, sizeof second);
    const uint16_t obs = 270;
    ASSERT_TRUE(link.Read(0x0560, 8, first, result));
    ASSERT_TRUE(link.Write(0x0C4E, 2, &obs, result));
    ASSERT_TRUE(link.Read(0x0570, 8, second, result));
    EXPECT_FALSE(link.Process(result));
    EXPECT_EQ(result, c.expected) << LinkResultText(result);
    for (int i = 0; i < 8; ++i) {
      EXPECT_EQ(first[i], 0xCC);
      EXPECT_EQ(second[i], 0xCC);
    }
    // The failed batch is gone, and the link itself stays up.
    EXPECT_FALSE(link.Process(result));
    EXPECT_EQ(result, kLinkNothingQueued);
    EXPECT_TRUE(link.IsOpen());
    if (c.behaviour != ts::kNeverAnswer) {
      server.SetBehaviour(ts::kAnswer);
      ASSERT_TRUE(link.Read(0x0560, 8, first, result));
      EXPECT_TRUE(link.Process(result)) << LinkResultText(result);
      EXPECT_EQ(std::vector<uint8_t>(first, first + 8), Pattern(0x0560, 8));
    }
  }
}

TEST(FsuipcLinkExchange, ServerGoneIsASendFailure) {
  TestServer server;
  ASSERT_TRUE(server.Start(kServer));
  FsuipcLink link(kPrompt);
  int result = -1;
  ASSERT_TRUE(link.Open(0, result)) << LinkResultText(result);
  server.Stop();
  uint32_t word = 0;
  ASSERT_TRUE(link.Read(0x3304, 4, &word, result));
  EXPECT_FALSE(link.Process(result));
  EXPECT_EQ(result, kLinkSendFailed) << LinkResultText(result);
  EXPECT_EQ(word, 0u);
}

TEST(FsuipcLinkExchange, BatchStopsShortOfTheBlockLimit) {
  constexpr uint32_t kRead = 16, kWrite = 12, kEnd = 4;
  const struct {
    const char* name;
    uint32_t firstSize;  // 0: nothing before the request tried
    bool writeTried;
    uint32_t triedSize;
    int expected;
  } cases[] = {
      {"one read filling the block exactly", 0, false, kFsuipcBatchLimit - kRead - kEnd, kLinkOk},
      {"one read a byte too big", 0, false, kFsuipcBatchLimit - kRead - kEnd + 1, kLinkBatchFull},
      {"one write filling the block exactly", 0, true, kFsuipcBatchLimit - kWrite - kEnd, kLinkOk},
      {"one write a byte too big", 0, true, kFsuipcBatchLimit - kWrite - kEnd + 1, kLinkBatchFull},
      {"an empty read after a full block", kFsuipcBatchLimit - kRead - kEnd, false, 0,
       kLinkBatchFull},
      {"a write that just fits after a read", 0x4000, true,
       kFsuipcBatchLimit - kRead - 0x4000 - kWrite - kEnd, kLinkOk},
      {"a size that wraps 32 bits", 0x100, false, 0xFFFFFFF8, kLinkBatchFull},
  };
  TestServer server;
  ASSERT_TRUE(server.Start(kServer));
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    FsuipcLink link(kPrompt);
    int result = -1;
    ASSERT_TRUE(link.Open(0, result)) << LinkResultText(result);
    std::vector<uint8_t> first(c.firstSize);
    if (c.firstSize > 0) {
      ASSERT_TRUE(link.Read(0x0020, c.firstSize, first.data(), result));
    }
    const bool queued = c.expected == kLinkOk;
    std::vector<uint8_t> tried(queued ? c.triedSize : 16, 0x77);
    // Away from the handshake words, so that the next open still finds them.
    const bool ok = c.writeTried ? link.Write(0x8000, c.triedSize, tried.data(), result)
                                 : link.Read(0x8000, c.triedSize, tried.data(), result);
    EXPECT_EQ(ok, queued);
    EXPECT_EQ(result, c.expected);
    // What was queued before a refused request still goes through.
    if (c.firstSize > 0 || queued) {
      EXPECT_TRUE(link.Process(result)) << LinkResultText(result);
      if (c.firstSize > 0) {
        EXPECT_EQ(first[0], TestServer::PatternByte(0x0020));
      }
    } else {
      EXPECT_FALSE(link.Process(result));
      EXPECT_EQ(result, kLinkNothingQueued);
    }
  }
}

TEST(PlatformLinkOnWindows, IsTheSimulatorsLink) {
  TestServer server;
  ASSERT_TRUE(server.Start(kServer));
  auto link = MakePlatformLink();
  int result = -1;
  ASSERT_TRUE(link->Open(8, result)) << LinkResultText(result);
  EXPECT_EQ(link->FsVersion(), kVersion480);
  EXPECT_EQ(link->FsId(), 8u);
}

}  // namespace
}  // namespace vantoro
