#include "shell/event_json.h"

#include <cmath>
#include <variant>

namespace vantoro {

namespace {

// Length of the valid UTF-8 sequence at s[i], or 0 when it is not one.
size_t Utf8Length(std::string_view s, size_t i) {
  const auto c = static_cast<unsigned char>(s[i]);
  size_t n = 0;
  uint32_t cp = 0;
  if (c < 0x80) return 1;
  if ((c & 0xE0) == 0xC0) {
    n = 2;
    cp = c & 0x1F;
  } else if ((c & 0xF0) == 0xE0) {
    n = 3;
    cp = c & 0x0F;
  } else if ((c & 0xF8) == 0xF0) {
    n = 4;
    cp = c & 0x07;
  } else {
    return 0;
  }
  if (i + n > s.size()) return 0;
  for (size_t k = 1; k < n; ++k) {
    const auto b = static_cast<unsigned char>(s[i + k]);
    if ((b & 0xC0) != 0x80) return 0;
    cp = (cp << 6) | (b & 0x3F);
  }
  // Overlong forms, surrogates and values past the last code point are not text.
  static const uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  if (cp < kLeast[n] || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) return 0;
  return n;
}

nlohmann::ordered_json ValueObject(const EventValue& v) {
  if (const auto* i = std::get_if<int64_t>(&v)) return *i;
  if (const auto* d = std::get_if<double>(&v)) {
    // JSON has no NaN or infinity.
    if (!std::isfinite(*d)) return nullptr;
    return *d;
  }
  if (const auto* b = std::get_if<bool>(&v)) return *b;
  return ValidUtf8(std::get<std::string>(v));
}

}  // namespace

std::string ValidUtf8(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (size_t i = 0; i < text.size();) {
    if (const size_t n = Utf8Length(text, i)) {
      out.append(text.substr(i, n));
      i += n;
      continue;
    }
    const auto c = static_cast<unsigned char>(text[i]);
    out += static_cast<char>(0xC0 | (c >> 6));
    out += static_cast<char>(0x80 | (c & 0x3F));
    ++i;
  }
  return out;
}

std::string JsonString(std::string_view text) {
  return nlohmann::json(ValidUtf8(text)).dump();
}

nlohmann::ordered_json EventObject(const Event& event) {
  nlohmann::ordered_json o;
  o["tick"] = event.tick;
  o["type"] = ValidUtf8(event.type);
  for (const EventField& f : event.fields) o[ValidUtf8(f.name)] = ValueObject(f.value);
  return o;
}

std::string EventJson(const Event& event) {
  return EventObject(event).dump();
}

void JsonLinesWriter::Emit(const Event& event) {
  out_ << EventJson(event) << '\n';
}

}  // namespace vantoro
