// vantoro-cli hear FILE.wav [--root DIR]
// Runs a recorded wave file (any rate, any channels) through the recogniser
// of the voice commands, with the same grammar, and prints each phrase heard
// with its action number, or "nothing heard". A pilot checks a microphone
// recording with it.
#include <CLI/CLI.hpp>
#include <filesystem>

#include "base/files.h"
#include "cli/commands.h"
#include "voice/sphinx_recogniser.h"
#include "voice/voice_commands.h"
#include "voice/wav.h"

namespace vantoro {

namespace {

// The samples go in as a microphone would give them.
constexpr size_t kChunkSamples = 1024;

}  // namespace

std::vector<std::string> HearSamples(Recogniser& recogniser, const std::vector<int16_t>& samples) {
  std::vector<std::string> heard;
  const PhraseHeard tell = [&heard](const std::string& phrase) { heard.push_back(phrase); };
  for (size_t i = 0; i < samples.size(); i += kChunkSamples) {
    const size_t n = std::min(kChunkSamples, samples.size() - i);
    recogniser.Listen(std::span<const int16_t>(samples.data() + i, n), tell);
  }
  recogniser.EndOfAudio(tell);
  return heard;
}

int HearCommand(const CommandArgs& args, CliContext& cli) {
  std::string file;
  std::string root;
  CLI::App app("Prints the phrases the voice commands' recogniser hears in a wave file.",
               "vantoro-cli hear");
  app.add_option("FILE", file, "the wave file (any rate; resampled to 16 kHz mono)")->required();
  app.add_option("--root", root,
                 "program root folder; a speech model in its Speech folder is used instead of "
                 "the installed one");
  int status = kExitOk;
  if (!ParseCommandLine(app, args, cli, status)) return status;

  std::string why;
  const std::optional<std::string> bytes = TryReadFile(file, &why);
  if (!bytes) {
    cli.err << "vantoro-cli hear: " << file << ": " << why << '\n';
    return kExitBadInput;
  }
  std::vector<int16_t> samples;
  if (!DecodeSpeechSamples(*bytes, samples, why)) {
    cli.err << "vantoro-cli hear: " << file << ": " << why << '\n';
    return kExitBadInput;
  }

  std::string model;
  if (!root.empty() && std::filesystem::is_directory(root + "/Speech/en-us"))
    model = root + "/Speech";
  SphinxRecogniser recogniser(model);
  if (!recogniser.LoadGrammar(VoiceGrammarLists(), why)) {
    cli.err << "vantoro-cli hear: " << why << '\n';
    return kExitFailure;
  }
  const std::vector<std::string> heard = HearSamples(recogniser, samples);
  if (heard.empty()) cli.out << "nothing heard\n";
  for (const std::string& phrase : heard) {
    cli.out << phrase << '\t' << VoiceActionOfPhrase(phrase);
    if (const char letter = LetterOfPhrase(phrase); letter != 0) cli.out << '\t' << letter;
    cli.out << '\n';
  }
  return kExitOk;
}

}  // namespace vantoro
