// The pilot's app: an HTTP server that serves the pages of data/web/ and the
// JSON API behind them, over 127.0.0.1 (and a LAN address when asked, then
// with a pairing code).
//
// How the live loop wires it:
//
//   Mailbox mailbox;                  // loop: mailbox.RunPending(instructor)
//   LiveFeed feed;                    //   before each timer body
//   WebServerOptions o;
//   o.root = dataRoot;                // the program's data root
//   o.port = port;                    // --port (0: any free port)
//   o.lanAddress = listen;            // --listen, "" for none
//   WebServer web(o, mailbox, feed);
//   std::string error;
//   if (!web.Start(error)) ...        // binds now, serves on its own threads;
//                                     // print web.Url() and, with a LAN
//                                     // listener, web.PairingCode()
//   each event of the instructor:     feed.PublishEvent(EventJson(event))
//   after each tick (and after each
//   mailbox item that changed state): feed.PublishState(LiveState(instructor))
//   a standard failure report:        the "error" event and a state whose
//                                     "failure" holds the report's text
//   sound devices: the server asks the loop through the mailbox and reads
//                  the instructor's audio seam there; nothing else to do.
//   at the end:  mailbox.Close(); feed.Close(); web.Stop();
//
// The server's threads never touch the instructor: every question and every
// change goes through Mailbox::Ask and runs on the loop thread; the live view
// is only what the loop has published into the LiveFeed.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <string>
#include <thread>
#include <vector>

#include "app/live_bridge.h"

namespace httplib {
class Server;
class Request;
class Response;
}  // namespace httplib

namespace vantoro {

class Instructor;

// An upload (the pilot's picture, a flight plan) may be at most this large.
inline constexpr size_t kMaxUploadBytes = 512 * 1024;
// How long a request waits for the loop to answer before it gives up.
inline constexpr std::chrono::milliseconds kLoopAnswerTimeout{3000};
inline constexpr char kDefaultListenAddress[] = "127.0.0.1";
// The pairing code: a header, or the cookie the pairing page sets.
inline constexpr char kPairingHeader[] = "X-Vantoro-Pairing";
inline constexpr char kPairingCookie[] = "vantoro_pairing";

struct WebServerOptions {
  std::string root;         // the data root: pages under "web/", pilots, logs
  std::string webFolder;    // the pages; root + "web/" when empty
  int port = 0;             // on 127.0.0.1; 0 takes any free port
  std::string lanAddress;   // also listen here; every request then needs the code
  std::string pairingCode;  // made up at start when empty and a LAN listener is asked
  size_t maxUpload = kMaxUploadBytes;
  std::chrono::milliseconds answerTimeout = kLoopAnswerTimeout;
};

class WebServer {
 public:
  WebServer(WebServerOptions options, Mailbox& mailbox, LiveFeed& feed);
  ~WebServer();
  WebServer(const WebServer&) = delete;
  WebServer& operator=(const WebServer&) = delete;

  // Binds the listeners and starts serving on threads of its own. False with
  // `error` set when an address cannot be bound.
  bool Start(std::string& error);
  // Stops serving; the live streams end. Safe to call twice.
  void Stop();

  int Port() const { return port_; }
  // "http://127.0.0.1:PORT/".
  std::string Url() const;
  // The code a LAN browser must give; "" without a LAN listener.
  const std::string& PairingCode() const { return options_.pairingCode; }

 private:
  struct Listener;
  void Routes(httplib::Server& server);
  bool Paired(const httplib::Request& req) const;
  // Runs `question` on the loop thread and answers with its JSON; the
  // question's "status" field, when present, is the HTTP status.
  void AskLoop(httplib::Response& res, Mailbox::Question question,
               Mailbox::Due due = Mailbox::Due::Now);
  // A recorded flight read back for the plots, kept while its file is unchanged.
  nlohmann::json Flight(const std::string& path);

  WebServerOptions options_;
  Mailbox& mailbox_;
  LiveFeed& feed_;
  std::vector<std::unique_ptr<Listener>> listeners_;
  std::atomic<bool> stopping_{false};
  int port_ = 0;
  std::mutex flightsMutex_;
  std::map<std::string, std::pair<std::string, nlohmann::json>> flights_;  // path: (stamp, flight)
};

// The state document the loop publishes after each tick: status line,
// simulator, aircraft, flight mode, live values, leg, read errors, scores and
// reports. What the Fly page shows.
nlohmann::json LiveState(const Instructor& instructor);

// What the app shows that changes slowly, looked at by the web timer: the
// stamp (size and time) of the pilot's flight log, so that an open Log book
// page reads it again when a flight has been logged.
nlohmann::json SlowAppState(const Instructor& instructor);

}  // namespace vantoro
