// What a loader noticed in a damaged or doubtful file and passed over: the
// file, the line (0 when the notice is about the whole file) and what was
// ignored or replaced by its default. Loaders keep their tolerant reading and
// add one notice per thing they had to leave out; the start-up shows them on
// the status line and in the event stream.
#pragma once

#include <string>
#include <vector>

#include "base/events.h"

namespace vantoro {

struct Notice {
  std::string file;
  int line = 0;
  std::string text;
};

using Notices = std::vector<Notice>;

// "FILE:LINE: text", or "FILE: text" without a line.
inline std::string NoticeText(const Notice& n) {
  std::string out = n.file;
  if (n.line > 0) out += ":" + std::to_string(n.line);
  out += ": " + n.text;
  return out;
}

// The "notice" event of a notice: its text, the file and, when known, the line.
inline Event NoticeEvent(int32_t tick, const Notice& n) {
  Event e{tick, "notice", {{"text", NoticeText(n)}, {"file", n.file}}};
  if (n.line > 0) e.fields.emplace_back("line", n.line);
  return e;
}

}  // namespace vantoro
