// The phrases listened for and the actions they ask for.
#include "voice/voice_commands.h"

#include <gtest/gtest.h>

#include <set>

#include "base/text.h"

namespace vantoro {
namespace {

TEST(VoiceCommands, EveryPhraseOfTheGrammarAsksForOneThing) {
  const PhraseLists& lists = VoiceGrammarLists();
  ASSERT_EQ(lists.size(), 5u);
  EXPECT_EQ(lists[0].size(), 35u);
  EXPECT_EQ(lists[1].size(), 26u);
  EXPECT_EQ(lists[2].size(), 12u);
  EXPECT_EQ(lists[3].size(), 6u);
  EXPECT_EQ(lists[4].size(), 14u);
  std::set<int32_t> actions;
  for (const std::vector<std::string>& list : lists) {
    for (const std::string& phrase : list) {
      const std::string lower = Lower(phrase);
      const int32_t action = VoiceActionOfPhrase(lower);
      const char letter = LetterOfPhrase(lower);
      if (phrase == "make runway file") {
        EXPECT_EQ(action, 0);  // in the grammar without an answer
        continue;
      }
      EXPECT_TRUE((action != 0) != (letter != 0)) << phrase;
      if (action != 0) {
        EXPECT_TRUE(actions.insert(action).second) << phrase << " repeats " << action;
      }
    }
  }
  // Keys 6 to 12, 101 to 128 but 105, 131 to 142 and 145 to 164: every
  // action of the table but "switch to vantoro", which is not in the grammar.
  EXPECT_EQ(actions.size(), 66u);
  EXPECT_EQ(actions.count(105), 0u);
  EXPECT_EQ(VoiceActionOfPhrase("switch to vantoro"), 105);
}

TEST(VoiceCommands, PhrasesAndTheirActions) {
  struct Case {
    const char* phrase;
    int32_t action;
    char letter;
  };
  const Case cases[] = {
      {"display data", 6, 0},
      {"sir kit mode", 10, 0},
      {"next check list", 12, 0},
      {"above ground level", 101, 0},
      {"i l s", 104, 0},
      {"taxi ing out", 123, 0},
      {"birds ahead of us", 128, 0},
      {"airport one a clock", 131, 0},
      {"airport twelve a clock", 142, 0},
      {"wears the airport", 147, 0},
      {"waypoint time", 161, 0},
      {"specify airport", 164, 0},
      {"al fuh", 0, 'A'},
      {"x-ray", 0, 'X'},
      {"zulu", 0, 'Z'},
      {"alpha", 0, 0},
      {"Display Data", 0, 0},  // phrases are compared trimmed and lower-cased by the caller
      {"airport thirteen a clock", 0, 0},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(VoiceActionOfPhrase(c.phrase), c.action) << c.phrase;
    EXPECT_EQ(LetterOfPhrase(c.phrase), c.letter) << c.phrase;
  }
}

TEST(VoiceCommands, GrammarHoldsEveryPhraseInLowerCase) {
  const std::string g = JsgfGrammar(VoiceGrammarLists());
  EXPECT_EQ(g.rfind("#JSGF V1.0;", 0), 0u);
  EXPECT_NE(g.find("| al fuh\n"), std::string::npos);
  EXPECT_NE(g.find("| airport seven a clock\n"), std::string::npos);
  EXPECT_NE(g.find("| waypoint time;\n"), std::string::npos);
  EXPECT_EQ(g.find("switch to vantoro"), std::string::npos);
}

}  // namespace
}  // namespace vantoro
