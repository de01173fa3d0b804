// The speech recogniser of the voice commands: an offline decoder with the
// US English acoustic model, listening only for the phrases of the grammar.
#pragma once

#include <memory>
#include <string>

#include "voice/voice_commands.h"

namespace vantoro {

class SphinxRecogniser final : public Recogniser {
 public:
  // modelFolder: the folder holding the acoustic model ("en-us") and the
  // pronouncing dictionary; empty for the installed model. Ready() tells
  // whether the decoder could start, Error() why not.
  explicit SphinxRecogniser(std::string modelFolder = {});
  ~SphinxRecogniser() override;
  SphinxRecogniser(const SphinxRecogniser&) = delete;
  SphinxRecogniser& operator=(const SphinxRecogniser&) = delete;

  bool Ready() const;
  const std::string& Error() const;

  bool LoadGrammar(const PhraseLists& lists, std::string& error) override;
  void Listen(std::span<const int16_t> samples, const PhraseHeard& heard) override;
  void EndOfAudio(const PhraseHeard& heard) override;

 private:
  struct Decoder;
  std::unique_ptr<Decoder> d_;
};

}  // namespace vantoro
