#include "voice/sphinx_recogniser.h"

#include <pocketsphinx.h>

#include <sstream>
#include <string_view>

#include "base/text.h"

namespace vantoro {

namespace {

constexpr const char* kSearchName = "vantoro";
// The pause that ends a phrase, in 10 ms frames: short, so that the answer
// follows the pilot's words at once, yet longer than the gaps inside a
// phrase ("i l s").
constexpr const char* kPauseEndsPhraseFrames = "25";
// Words of the grammar that the dictionary does not know, as they are said.
struct ExtraWord {
  const char* word;
  const char* phones;
};
constexpr ExtraWord kExtraWords[] = {
    {"airmanship", "EH R M AH N SH IH P"},
    {"fuh", "F AH"},
    {"vantoro", "V AE N T AO R OW"},
    {"waypoint", "W EY P OY N T"},
};

}  // namespace

struct SphinxRecogniser::Decoder {
  cmd_ln_t* config = nullptr;
  ps_decoder_t* ps = nullptr;
  std::string error;
  bool grammar = false;
  bool inUtterance = false;
  bool wasInSpeech = false;

  ~Decoder() {
    if (ps != nullptr) ps_free(ps);
    if (config != nullptr) cmd_ln_free_r(config);
  }

  void Start() {
    if (ps_start_utt(ps) == 0) inUtterance = true;
    wasInSpeech = false;
  }

  // Ends the utterance under way and tells its phrase, if any.
  void Finish(const PhraseHeard& heard) {
    if (!inUtterance) return;
    ps_end_utt(ps);
    inUtterance = false;
    int32 score = 0;
    const char* hyp = ps_get_hyp(ps, &score);
    if (hyp != nullptr && *hyp != '\0' && heard) heard(hyp);
  }
};

SphinxRecogniser::SphinxRecogniser(std::string modelFolder) : d_(std::make_unique<Decoder>()) {
  if (modelFolder.empty()) modelFolder = VANTORO_SPHINX_MODELDIR "/en-us";
  const std::string hmm = modelFolder + "/en-us";
  const std::string dict = modelFolder + "/cmudict-en-us.dict";
  d_->config =
      cmd_ln_init(nullptr, ps_args(), TRUE, "-hmm", hmm.c_str(), "-dict", dict.c_str(),
                  "-vad_postspeech", kPauseEndsPhraseFrames, "-logfn", "/dev/null", nullptr);
  if (d_->config == nullptr) {
    d_->error = "the speech model could not be read from " + modelFolder;
    return;
  }
  d_->ps = ps_init(d_->config);
  if (d_->ps == nullptr) d_->error = "the speech recogniser could not start with " + modelFolder;
}

SphinxRecogniser::~SphinxRecogniser() = default;

bool SphinxRecogniser::Ready() const {
  return d_->ps != nullptr;
}
const std::string& SphinxRecogniser::Error() const {
  return d_->error;
}

bool SphinxRecogniser::LoadGrammar(const PhraseLists& lists, std::string& error) {
  if (d_->ps == nullptr) {
    error = d_->error;
    return false;
  }
  if (d_->inUtterance) {
    ps_end_utt(d_->ps);
    d_->inUtterance = false;
  }
  // Every word must have a pronunciation before the grammar is built.
  for (const std::vector<std::string>& list : lists) {
    for (const std::string& phrase : list) {
      std::istringstream words(Lower(phrase));
      std::string word;
      while (words >> word) {
        if (ps_lookup_word(d_->ps, word.c_str()) != nullptr) continue;
        bool added = false;
        for (const ExtraWord& extra : kExtraWords)
          if (word == extra.word) added = ps_add_word(d_->ps, extra.word, extra.phones, TRUE) >= 0;
        if (!added) {
          error = "no pronunciation for \"" + word + "\" of \"" + phrase + "\"";
          return false;
        }
      }
    }
  }
  const std::string jsgf = JsgfGrammar(lists);
  if (ps_set_jsgf_string(d_->ps, kSearchName, jsgf.c_str()) != 0 ||
      ps_set_search(d_->ps, kSearchName) != 0) {
    error = "the grammar of the voice commands was refused";
    return false;
  }
  d_->grammar = true;
  d_->Start();
  return true;
}

void SphinxRecogniser::Listen(std::span<const int16_t> samples, const PhraseHeard& heard) {
  if (!d_->grammar) return;
  if (!d_->inUtterance) d_->Start();
  ps_process_raw(d_->ps, samples.data(), samples.size(), FALSE, FALSE);
  const bool inSpeech = ps_get_in_speech(d_->ps) != 0;
  if (d_->wasInSpeech && !inSpeech) {
    // The pause after a phrase: the phrase is told and the next one begins.
    d_->Finish(heard);
    d_->Start();
    return;
  }
  d_->wasInSpeech = inSpeech;
}

void SphinxRecogniser::EndOfAudio(const PhraseHeard& heard) {
  if (!d_->grammar) return;
  if (d_->wasInSpeech) {
    d_->Finish(heard);
  } else if (d_->inUtterance) {
    ps_end_utt(d_->ps);
    d_->inUtterance = false;
  }
  d_->Start();
}

}  // namespace vantoro
