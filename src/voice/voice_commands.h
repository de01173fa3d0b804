// The phrases the instructor listens for, the action each one asks for, and
// the seam of the speech recogniser that hears them. The phrases are written
// as they sound ("sir kit mode", "taxi ing out"), because that is what the
// recogniser matches.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vantoro {

// The five phrase lists of the grammar, in the order they are loaded: the
// main list, the spelling letters, the clock positions, the airport
// questions and the route questions.
using PhraseLists = std::vector<std::vector<std::string>>;
const PhraseLists& VoiceGrammarLists();

// The action a phrase asks for (trimmed, lower case), 0 for none. 1 to 15
// press the hot key of that slot, 96 and above are voice actions.
int32_t VoiceActionOfPhrase(std::string_view phrase);

// The letter a spelling phrase stands for ('A' for "al fuh"), 0 when the
// phrase (trimmed, lower case) is not one of the letters.
char LetterOfPhrase(std::string_view phrase);

// The lists as one speech grammar (JSGF): every phrase of every list is one
// alternative of the public rule, in lower case.
std::string JsgfGrammar(const PhraseLists& lists);

// Called with the text of each phrase the recogniser is sure of.
using PhraseHeard = std::function<void(const std::string& phrase)>;

// A speech recogniser with a fixed grammar. It is fed 16 kHz mono samples as
// they come and tells each phrase after the pause that ends it; nothing else.
class Recogniser {
 public:
  virtual ~Recogniser() = default;
  // The phrase lists to listen for, replacing any before; false with the
  // reason when they cannot be used.
  virtual bool LoadGrammar(const PhraseLists& lists, std::string& error) = 0;
  virtual void Listen(std::span<const int16_t> samples, const PhraseHeard& heard) = 0;
  // The audio has ended: a phrase still being spoken is finished.
  virtual void EndOfAudio(const PhraseHeard& heard) = 0;
};

}  // namespace vantoro
