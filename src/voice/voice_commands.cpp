#include "voice/voice_commands.h"

#include <array>

#include "base/text.h"

namespace vantoro {

namespace {

struct PhraseAction {
  std::string_view phrase;
  int32_t action;
};

// "switch to vantoro" is answered but not in the grammar, and "make runway
// file" is in the grammar with no answer: both stand as they are.
constexpr PhraseAction kActions[] = {
    {"display data", 6},
    {"next flight mode", 7},
    {"previous flight mode", 8},
    {"airmanship test", 9},
    {"sir kit mode", 10},
    {"which check list", 11},
    {"next check list", 12},
    {"above ground level", 101},
    {"be quiet please", 102},
    {"traffic", 103},
    {"i l s", 104},
    {"switch to vantoro", 105},
    {"next way point", 106},
    {"visibility and wind", 107},
    {"destination runway", 108},
    {"ready for take off", 109},
    {"flight plan remaining", 110},
    {"runway heading", 111},
    {"flight time remaining", 112},
    {"next flap speed", 113},
    {"nav one information", 114},
    {"gear extension speed", 115},
    {"sky condition", 116},
    {"last check list", 117},
    {"let me fly by myself", 118},
    {"i want your help", 119},
    {"prepare for landing", 120},
    {"we are cruising", 121},
    {"taxi ing in", 122},
    {"taxi ing out", 123},
    {"destination airport data", 124},
    {"ground speed", 125},
    {"can you hear me", 126},
    {"executing go around", 127},
    {"birds ahead of us", 128},
    {"nearest airport", 145},
    {"descent rate to runway", 146},
    {"wears the airport", 147},
    {"airport information", 148},
    {"new destination", 149},
    {"top of descent", 150},
    {"waypoint frequency", 151},
    {"waypoint bearing", 152},
    {"waypoint radial", 153},
    {"fuel consumed", 154},
    {"fuel to destination", 155},
    {"fuel range", 156},
    {"cruise altitude", 157},
    {"cruise airspeed", 158},
    {"gross weight", 159},
    {"new runway", 160},
    {"waypoint time", 161},
    {"divert to alternate", 162},
    {"next runway", 163},
    {"specify airport", 164},
};

constexpr int32_t kFirstClockAction = 131;

constexpr std::array<std::string_view, 12> kClockWords = {"one",  "two", "three",  "four",
                                                          "five", "six", "seven",  "eight",
                                                          "nine", "ten", "eleven", "twelve"};

constexpr std::array<std::string_view, 26> kLetters = {
    "Al Fuh", "Bravo", "Charlie", "Delta",  "Echo",     "Foxtrot", "Golf",   "Hotel",  "India",
    "Juliet", "Kilo",  "Lima",    "Mike",   "November", "Oscar",   "Papa",   "Quebec", "Romeo",
    "Sierra", "Tango", "Uniform", "Victor", "Whiskey",  "X-ray",   "Yankee", "Zulu"};

PhraseLists BuildLists() {
  PhraseLists lists(5);
  lists[0] = {"executing go around",
              "birds ahead of us",
              "last check list",
              "let me fly by myself",
              "i want your help",
              "prepare for landing",
              "we are cruising",
              "taxi ing in",
              "taxi ing out",
              "destination airport data",
              "ground speed",
              "can you hear me",
              "next flight mode",
              "sky condition",
              "gear extension speed",
              "nav one information",
              "next flap speed",
              "flight time remaining",
              "runway heading",
              "flight plan remaining",
              "ready for take off",
              "airmanship test",
              "i l s",
              "sir kit mode",
              "display data",
              "make runway file",
              "which check list",
              "next check list",
              "previous flight mode",
              "above ground level",
              "visibility and wind",
              "next way point",
              "destination runway",
              "be quiet please",
              "traffic"};
  for (std::string_view letter : kLetters) lists[1].emplace_back(letter);
  for (std::string_view word : kClockWords)
    lists[2].push_back("airport " + std::string(word) + " a clock");
  lists[3] = {"specify airport",        "next runway",
              "divert to alternate",    "nearest airport",
              "descent rate to runway", "wears the airport"};
  lists[4] = {"airport information", "new destination", "top of descent",  "waypoint frequency",
              "waypoint bearing",    "waypoint radial", "fuel consumed",   "fuel to destination",
              "fuel range",          "cruise altitude", "cruise airspeed", "gross weight",
              "new runway",          "waypoint time"};
  return lists;
}

}  // namespace

const PhraseLists& VoiceGrammarLists() {
  static const PhraseLists lists = BuildLists();
  return lists;
}

int32_t VoiceActionOfPhrase(std::string_view phrase) {
  for (const PhraseAction& p : kActions)
    if (p.phrase == phrase) return p.action;
  for (size_t i = 0; i < kClockWords.size(); ++i)
    if (phrase == "airport " + std::string(kClockWords[i]) + " a clock")
      return kFirstClockAction + static_cast<int32_t>(i);
  return 0;
}

char LetterOfPhrase(std::string_view phrase) {
  for (std::string_view letter : kLetters)
    if (Lower(letter) == phrase) return letter[0];
  return 0;
}

std::string JsgfGrammar(const PhraseLists& lists) {
  std::string g = "#JSGF V1.0;\ngrammar vantoro;\npublic <command> = ";
  bool first = true;
  for (const std::vector<std::string>& list : lists) {
    for (const std::string& phrase : list) {
      g += first ? "" : "\n  | ";
      g += Lower(phrase);
      first = false;
    }
  }
  g += ";\n";
  return g;
}

}  // namespace vantoro
