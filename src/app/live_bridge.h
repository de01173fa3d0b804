// Where the loop thread, which alone owns the instructor, meets the threads of
// the app's HTTP server, which never touch it. Requests are posted to the
// loop through one mailbox and answered there; what the app shows is what the
// loop publishes: the numbered event lines of the live stream and the latest
// state document.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vantoro {

class Instructor;

class Mailbox {
 public:
  using Work = std::function<void(Instructor&)>;
  using Question = std::function<nlohmann::json(Instructor&)>;

  // When posted work runs: before the loop's next timer body (what the app
  // reads and the pages it edits), or by the remote timer, between two
  // polling ticks (what acts on the flight: Connect, Disconnect, hot keys,
  // flight plans), as the pilot's remote requests always were.
  enum class Due { Now, RemoteTimer };

  // Any thread: `work` runs on the loop thread when it is due.
  void Post(Work work, Due due = Due::Now);
  // Any thread but the loop's: runs `question` on the loop thread when it is
  // due and waits for its answer; nothing when the loop did not answer
  // within `timeout` (the program is ending). The question is dropped if it
  // had not started.
  std::optional<nlohmann::json> Ask(Question question, std::chrono::milliseconds timeout,
                                    Due due = Due::Now);
  // Loop thread: runs every waiting item due now, in the order posted; how
  // many ran.
  size_t RunPending(Instructor& instructor);
  // Loop thread, the remote timer: runs every waiting remote request in the
  // order posted; how many ran.
  size_t RunRemote(Instructor& instructor);
  // Called after each Post, so that the loop can wake at once.
  void SetWake(std::function<void()> wake);
  // No more work is taken; waiting askers return at once.
  void Close();

 private:
  std::mutex mutex_;
  std::deque<Work> pending_;
  std::deque<Work> remote_;
  std::function<void()> wake_;
  bool closed_ = false;
};

// One line of the live stream: its number (1, 2, ...) and its JSON text.
struct FeedLine {
  uint64_t number = 0;
  std::string json;
};

class LiveFeed {
 public:
  // At most this many lines are kept for a browser that reconnects.
  static constexpr size_t kKeptLines = 2000;

  // Loop thread.
  void PublishEvent(std::string jsonLine);
  void PublishState(nlohmann::json state);

  // Any thread: the kept lines numbered above `after`, waiting up to `wait`
  // for the first one to come. Empty on a time-out or after Close.
  std::vector<FeedLine> LinesAfter(uint64_t after, std::chrono::milliseconds wait);
  // The number of the last line published (0 before any).
  uint64_t LastNumber() const;
  // The latest state document (null before the first).
  nlohmann::json State() const;
  // The state document's version, raised by each PublishState.
  uint64_t StateVersion() const;
  // Program ending: every waiter returns.
  void Close();
  bool Closed() const;

 private:
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<FeedLine> lines_;
  uint64_t last_ = 0;
  nlohmann::json state_;
  uint64_t stateVersion_ = 0;
  bool closed_ = false;
};

}  // namespace vantoro
