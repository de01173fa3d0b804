#include "app/live_bridge.h"

#include <future>
#include <memory>

namespace vantoro {

void Mailbox::Post(Work work, Due due) {
  std::function<void()> wake;
  {
    std::lock_guard lock(mutex_);
    if (closed_) return;
    if (due == Due::RemoteTimer) {
      remote_.push_back(std::move(work));
      return;  // the remote timer takes it in its turn
    }
    pending_.push_back(std::move(work));
    wake = wake_;
  }
  if (wake) wake();
}

std::optional<nlohmann::json> Mailbox::Ask(Question question, std::chrono::milliseconds timeout,
                                           Due due) {
  auto answer = std::make_shared<std::promise<nlohmann::json>>();
  std::future<nlohmann::json> future = answer->get_future();
  Post(
      [question = std::move(question), answer](Instructor& instructor) {
        try {
          answer->set_value(question(instructor));
        } catch (...) {
          answer->set_exception(std::current_exception());
        }
      },
      due);
  if (future.wait_for(timeout) != std::future_status::ready) return std::nullopt;
  try {
    return future.get();
  } catch (const std::future_error&) {
    return std::nullopt;  // closed before the loop took it
  }
}

namespace {

size_t RunAll(std::mutex& mutex, std::deque<Mailbox::Work>& queue, Instructor& instructor) {
  std::deque<Mailbox::Work> work;
  {
    std::lock_guard lock(mutex);
    work.swap(queue);
  }
  for (Mailbox::Work& w : work) w(instructor);
  return work.size();
}

}  // namespace

size_t Mailbox::RunPending(Instructor& instructor) {
  return RunAll(mutex_, pending_, instructor);
}

size_t Mailbox::RunRemote(Instructor& instructor) {
  return RunAll(mutex_, remote_, instructor);
}

void Mailbox::SetWake(std::function<void()> wake) {
  std::lock_guard lock(mutex_);
  wake_ = std::move(wake);
}

void Mailbox::Close() {
  std::lock_guard lock(mutex_);
  closed_ = true;
  // The promises die with them: askers see a broken promise.
  pending_.clear();
  remote_.clear();
}

void LiveFeed::PublishEvent(std::string jsonLine) {
  {
    std::lock_guard lock(mutex_);
    lines_.push_back(FeedLine{++last_, std::move(jsonLine)});
    while (lines_.size() > kKeptLines) lines_.pop_front();
  }
  changed_.notify_all();
}

void LiveFeed::PublishState(nlohmann::json state) {
  {
    std::lock_guard lock(mutex_);
    state_ = std::move(state);
    ++stateVersion_;
  }
  changed_.notify_all();
}

std::vector<FeedLine> LiveFeed::LinesAfter(uint64_t after, std::chrono::milliseconds wait) {
  std::unique_lock lock(mutex_);
  changed_.wait_for(lock, wait, [&] { return closed_ || last_ > after; });
  std::vector<FeedLine> out;
  for (const FeedLine& line : lines_)
    if (line.number > after) out.push_back(line);
  return out;
}

uint64_t LiveFeed::LastNumber() const {
  std::lock_guard lock(mutex_);
  return last_;
}

nlohmann::json LiveFeed::State() const {
  std::lock_guard lock(mutex_);
  return state_;
}

uint64_t LiveFeed::StateVersion() const {
  std::lock_guard lock(mutex_);
  return stateVersion_;
}

void LiveFeed::Close() {
  {
    std::lock_guard lock(mutex_);
    closed_ = true;
  }
  changed_.notify_all();
}

bool LiveFeed::Closed() const {
  std::lock_guard lock(mutex_);
  return closed_;
}

}  // namespace vantoro
