// Observer of what the instructor does. The core reports every visible act
// (a sound queued or spoken, a counter raised, a mode change, a message line,
// a write to the simulator...) through this one seam, so that the desktop log
// view, the replay transcript and the JSON-lines writer all see the same story.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace vantoro {

using EventValue = std::variant<int64_t, double, bool, std::string>;

struct EventField {
  std::string name;
  EventValue value;

  EventField(std::string n, int v) : name(std::move(n)), value(int64_t{v}) {}
  EventField(std::string n, int64_t v) : name(std::move(n)), value(v) {}
  EventField(std::string n, double v) : name(std::move(n)), value(v) {}
  EventField(std::string n, bool v) : name(std::move(n)), value(v) {}
  EventField(std::string n, std::string v) : name(std::move(n)), value(std::move(v)) {}
  EventField(std::string n, std::string_view v) : name(std::move(n)), value(std::string(v)) {}
  EventField(std::string n, const char* v) : name(std::move(n)), value(std::string(v)) {}
};

struct Event {
  int32_t tick = 0;
  std::string type;
  std::vector<EventField> fields;

  // The value of a field, or nullptr when the event has none of that name.
  const EventValue* Find(std::string_view name) const;
  std::string Text(std::string_view name) const;  // string field or ""
  int64_t Int(std::string_view name) const;       // integer/bool field or 0
};

class Events {
 public:
  virtual ~Events() = default;
  virtual void Emit(const Event& event) = 0;

  void Emit(int32_t tick, std::string type, std::initializer_list<EventField> fields) {
    Emit(Event{tick, std::move(type), std::vector<EventField>(fields)});
  }
};

// Swallows everything: the default when nobody is listening.
class NoEvents final : public Events {
 public:
  void Emit(const Event&) override {}
  using Events::Emit;
};

// Keeps every event, for tests.
class EventLog final : public Events {
 public:
  void Emit(const Event& event) override { events.push_back(event); }
  using Events::Emit;

  std::vector<Event> OfType(std::string_view type) const;
  std::vector<Event> events;
};

// Forwards to several observers (transcript and JSON writer at once).
class EventFanOut final : public Events {
 public:
  void Add(Events* sink) { sinks_.push_back(sink); }
  void Emit(const Event& event) override {
    for (Events* s : sinks_) s->Emit(event);
  }
  using Events::Emit;

 private:
  std::vector<Events*> sinks_;
};

}  // namespace vantoro
