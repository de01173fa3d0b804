// Events as JSON: the replay's JSON lines and the live program's event
// stream are the same objects, "tick" and "type" first, then the event's
// fields in their order. Texts that are not valid UTF-8 (aircraft titles in
// a Windows code page) are read as Latin-1, so every line stays valid JSON.
#pragma once

#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <string_view>

#include "base/events.h"

namespace vantoro {

// The text as valid UTF-8: valid sequences are kept, any other byte is read
// as a Latin-1 character.
std::string ValidUtf8(std::string_view text);
// A JSON string literal, quotes included.
std::string JsonString(std::string_view text);
// One event as one JSON object; a number that is not finite is null.
nlohmann::ordered_json EventObject(const Event& event);
// The same, as one line without its line break.
std::string EventJson(const Event& event);

// Writes each event as one line of JSON.
class JsonLinesWriter final : public Events {
 public:
  explicit JsonLinesWriter(std::ostream& out) : out_(out) {}
  void Emit(const Event& event) override;
  using Events::Emit;

 private:
  std::ostream& out_;
};

}  // namespace vantoro
