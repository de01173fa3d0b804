#include "base/events.h"

namespace vantoro {

const EventValue* Event::Find(std::string_view name) const {
  for (const EventField& f : fields)
    if (f.name == name) return &f.value;
  return nullptr;
}

std::string Event::Text(std::string_view name) const {
  const EventValue* v = Find(name);
  if (v == nullptr) return {};
  if (const auto* s = std::get_if<std::string>(v)) return *s;
  return {};
}

int64_t Event::Int(std::string_view name) const {
  const EventValue* v = Find(name);
  if (v == nullptr) return 0;
  if (const auto* i = std::get_if<int64_t>(v)) return *i;
  if (const auto* b = std::get_if<bool>(v)) return *b ? 1 : 0;
  if (const auto* d = std::get_if<double>(v)) return static_cast<int64_t>(*d);
  return 0;
}

std::vector<Event> EventLog::OfType(std::string_view type) const {
  std::vector<Event> out;
  for (const Event& e : events)
    if (e.type == type) out.push_back(e);
  return out;
}

}  // namespace vantoro
