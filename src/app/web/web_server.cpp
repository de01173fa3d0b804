#include "app/web/web_server.h"

#include <httplib.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <optional>
#include <random>
#include <utility>

#include "app/web/flight_plan_page.h"
#include "app/web/flight_plots.h"
#include "app/web/web_api.h"
#include "base/files.h"
#include "records/flight_log.h"
#include "shell/pilot.h"

namespace vantoro {

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

constexpr int kPairingDigits = 6;
constexpr size_t kServerThreads = 12;
// A live stream waits this long for news before it looks again.
constexpr std::chrono::milliseconds kStreamWait{250};
// A quiet live stream sends a comment this often, so a closed browser is noticed.
constexpr std::chrono::seconds kStreamPing{10};
constexpr size_t kMaxPathLength = 1024;

std::string Dump(const json& j) {
  return j.dump(-1, ' ', false, json::error_handler_t::replace);
}

void Reply(httplib::Response& res, int status, const json& body) {
  res.status = status;
  res.set_header("Cache-Control", "no-store");
  res.set_content(Dump(body), "application/json");
}

void Fail(httplib::Response& res, int status, std::string_view message) {
  Reply(res, status, json{{"error", std::string(message)}});
}

// The body as a JSON object; nullopt (and a 400 answer) when it is not one.
std::optional<json> Body(const httplib::Request& req, httplib::Response& res) {
  json j = json::parse(req.body, nullptr, false);
  if (j.is_discarded() || !j.is_object()) {
    Fail(res, 400, "the request body must be a JSON object");
    return std::nullopt;
  }
  return j;
}

// A file named by the request, inside `folder`: no absolute path, no "..",
// and no link leading out of it.
std::optional<fs::path> InsideFolder(const fs::path& folder, std::string_view name) {
  if (name.empty() || name.size() > kMaxPathLength || name.find('\0') != std::string_view::npos)
    return std::nullopt;
  std::string text(name);
  std::replace(text.begin(), text.end(), '\\', '/');
  const fs::path p(text);
  if (p.is_absolute() || p.has_root_name() || p.has_root_directory()) return std::nullopt;
  for (const fs::path& part : p)
    if (part == "..") return std::nullopt;
  std::error_code ec;
  const fs::path base = fs::canonical(folder, ec);
  if (ec) return std::nullopt;
  const fs::path full = fs::weakly_canonical(base / p, ec);
  if (ec) return std::nullopt;
  auto [b, f] = std::mismatch(base.begin(), base.end(), full.begin(), full.end());
  if (b != base.end()) return std::nullopt;
  return full;
}

// A path the loop gave (the pilot's files), accepted only inside the root.
std::optional<fs::path> RootFile(const fs::path& root, const std::string& path) {
  if (path.empty()) return std::nullopt;
  std::error_code ec;
  const fs::path base = fs::canonical(root, ec);
  if (ec) return std::nullopt;
  const fs::path full = fs::weakly_canonical(fs::path(path), ec);
  if (ec) return std::nullopt;
  auto [b, f] = std::mismatch(base.begin(), base.end(), full.begin(), full.end());
  if (b != base.end()) return std::nullopt;
  return full;
}

std::string ContentType(const fs::path& file) {
  std::string ext = file.extension().string();
  std::transform(ext.begin(), ext.end(), ext.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (ext == ".html" || ext == ".htm") return "text/html; charset=utf-8";
  if (ext == ".css") return "text/css";
  if (ext == ".js") return "text/javascript";
  if (ext == ".json") return "application/json";
  if (ext == ".png") return "image/png";
  if (ext == ".jpg" || ext == ".jpeg") return "image/jpeg";
  if (ext == ".gif") return "image/gif";
  if (ext == ".bmp") return "image/bmp";
  if (ext == ".svg") return "image/svg+xml";
  return "text/plain; charset=utf-8";
}

bool SendFile(httplib::Response& res, const fs::path& file) {
  std::error_code ec;
  if (!fs::is_regular_file(file, ec)) return false;
  std::optional<std::string> bytes = TryReadFile(file.string());
  if (!bytes) return false;
  res.set_content(std::move(*bytes), ContentType(file));
  return true;
}

std::string MakePairingCode() {
  std::random_device device;
  std::uniform_int_distribution<int> digit(0, 9);
  std::string code;
  for (int i = 0; i < kPairingDigits; ++i) code += static_cast<char>('0' + digit(device));
  return code;
}

std::string CookieValue(const std::string& cookies, std::string_view name) {
  size_t at = 0;
  while (at < cookies.size()) {
    size_t end = cookies.find(';', at);
    if (end == std::string::npos) end = cookies.size();
    std::string_view part(cookies.data() + at, end - at);
    while (!part.empty() && part.front() == ' ') part.remove_prefix(1);
    if (part.size() > name.size() && part.substr(0, name.size()) == name &&
        part[name.size()] == '=')
      return std::string(part.substr(name.size() + 1));
    at = end + 1;
  }
  return {};
}

bool ConstantTimeEqual(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  unsigned diff = 0;
  for (size_t i = 0; i < a.size(); ++i)
    diff |=
        static_cast<unsigned>(static_cast<unsigned char>(a[i]) ^ static_cast<unsigned char>(b[i]));
  return diff == 0;
}

// The recorded flights: those beside the pilot's log, then the shipped ones.
std::vector<fs::path> RecordingFiles(const fs::path& root, const std::string& log) {
  std::vector<fs::path> folders = {root / "Recordings"};
  if (std::optional<fs::path> file = RootFile(root, log))
    folders.insert(folders.begin(), file->parent_path());
  std::vector<fs::path> out;
  std::error_code ec;
  for (const fs::path& folder : folders) {
    std::vector<fs::path> here;
    for (const auto& entry : fs::directory_iterator(folder, ec)) {
      const std::string name = entry.path().filename().string();
      if (!(name.ends_with(".vrec") || name.ends_with(".vrec.gz")) || !entry.is_regular_file(ec))
        continue;
      std::error_code bad;
      const fs::path canonical = fs::canonical(entry.path(), bad);
      if (!bad && std::find(out.begin(), out.end(), canonical) == out.end())
        here.push_back(canonical);
    }
    std::sort(here.begin(), here.end());
    out.insert(out.end(), here.begin(), here.end());
  }
  return out;
}

constexpr char kPairingPage[] = R"(<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Vantoro - pair this device</title>
<style>body{font-family:sans-serif;background:#eef2f6;display:flex;justify-content:center;
padding-top:10vh}form{background:#fff;padding:2em;border-radius:8px;box-shadow:0 2px 8px #0002}
input{font-size:1.6em;width:7em;letter-spacing:.2em}button{font-size:1.2em;margin-left:.5em}
#msg{color:#b00020}</style></head><body>
<form id="f"><h1>Pair this device</h1>
<p>Type the pairing code Vantoro printed when it started.</p>
<input id="code" inputmode="numeric" autocomplete="off" autofocus><button>Pair</button>
<p id="msg"></p></form>
<script>
document.getElementById('f').onsubmit = async (e) => {
  e.preventDefault();
  const r = await fetch('/api/pair', {method: 'POST', headers: {'Content-Type': 'application/json'},
    body: JSON.stringify({code: document.getElementById('code').value.trim()})});
  if (r.ok) location.href = '/'; else document.getElementById('msg').textContent =
    (await r.json()).error;
};
</script></body></html>
)";

}  // namespace

struct WebServer::Listener {
  std::string address;
  httplib::Server server;
  std::thread thread;
};

WebServer::WebServer(WebServerOptions options, Mailbox& mailbox, LiveFeed& feed)
    : options_(std::move(options)), mailbox_(mailbox), feed_(feed) {
  if (options_.webFolder.empty()) options_.webFolder = (fs::path(options_.root) / "web").string();
  if (!options_.lanAddress.empty() && options_.pairingCode.empty())
    options_.pairingCode = MakePairingCode();
}

WebServer::~WebServer() {
  Stop();
}

std::string WebServer::Url() const {
  return "http://127.0.0.1:" + std::to_string(port_) + "/";
}

bool WebServer::Paired(const httplib::Request& req) const {
  if (options_.lanAddress.empty()) return true;
  const std::string& code = options_.pairingCode;
  return ConstantTimeEqual(req.get_header_value(kPairingHeader), code) ||
         ConstantTimeEqual(CookieValue(req.get_header_value("Cookie"), kPairingCookie), code);
}

void WebServer::AskLoop(httplib::Response& res, Mailbox::Question question, Mailbox::Due due) {
  std::optional<json> answer = mailbox_.Ask(std::move(question), options_.answerTimeout, due);
  if (!answer) {
    Fail(res, 503, "the instructor did not answer; it may be closing");
    return;
  }
  int status = 200;
  if (answer->is_object() && answer->contains("status") && (*answer)["status"].is_number()) {
    status = (*answer)["status"].get<int>();
    answer->erase("status");
  }
  Reply(res, status, *answer);
}

json WebServer::Flight(const std::string& path) {
  std::error_code ec;
  const auto size = fs::file_size(path, ec);
  const auto time = fs::last_write_time(path, ec).time_since_epoch().count();
  const std::string stamp = std::to_string(size) + "/" + std::to_string(time);
  {
    std::lock_guard lock(flightsMutex_);
    auto it = flights_.find(path);
    if (it != flights_.end() && it->second.first == stamp) return it->second.second;
  }
  json flight = RecordedFlight(path, options_.root);
  std::lock_guard lock(flightsMutex_);
  flights_[path] = {stamp, flight};
  return flight;
}

bool WebServer::Start(std::string& error) {
  std::vector<std::string> addresses = {kDefaultListenAddress};
  const std::string& lan = options_.lanAddress;
  if (lan == "0.0.0.0" || lan == "::") {
    addresses = {lan};  // every address, the loopback included
  } else if (!lan.empty() && lan != kDefaultListenAddress) {
    addresses.push_back(lan);
  }
  int port = options_.port;
  for (const std::string& address : addresses) {
    auto l = std::make_unique<Listener>();
    l->address = address;
    l->server.new_task_queue = [] { return new httplib::ThreadPool(kServerThreads); };
    l->server.set_payload_max_length(options_.maxUpload);
    Routes(l->server);
    if (port == 0) {
      port = l->server.bind_to_any_port(address);
      if (port < 0) {
        error = "the app cannot listen on " + address;
        Stop();
        return false;
      }
    } else if (!l->server.bind_to_port(address, port)) {
      error = "the app cannot listen on " + address + " port " + std::to_string(port) +
              " (is another Vantoro running?)";
      Stop();
      return false;
    }
    listeners_.push_back(std::move(l));
  }
  port_ = port;
  for (auto& l : listeners_) {
    httplib::Server* server = &l->server;
    l->thread = std::thread([server] { server->listen_after_bind(); });
  }
  return true;
}

void WebServer::Stop() {
  stopping_ = true;
  for (auto& l : listeners_) l->server.stop();
  for (auto& l : listeners_)
    if (l->thread.joinable()) l->thread.join();
  listeners_.clear();
}

void WebServer::Routes(httplib::Server& server) {
  using httplib::Request;
  using httplib::Response;
  const fs::path root = options_.root;
  const fs::path web = options_.webFolder;

  server.set_pre_routing_handler([this](const Request& req, Response& res) {
    if (Paired(req) || req.path == "/pair" || req.path == "/api/pair")
      return httplib::Server::HandlerResponse::Unhandled;
    if (req.method == "GET" && req.path.rfind("/api/", 0) != 0) {
      res.status = 303;
      res.set_header("Location", "/pair");
    } else {
      Fail(res, 401, "this device is not paired: give the pairing code Vantoro printed at start");
    }
    return httplib::Server::HandlerResponse::Handled;
  });
  server.set_error_handler(httplib::Server::HandlerWithResponse([](const Request&, Response& res) {
    if (!res.body.empty()) return httplib::Server::HandlerResponse::Unhandled;
    switch (res.status) {
      case 404:
        Fail(res, 404, "no such page or file");
        break;
      case 413:
        Fail(res, 413, "the upload is too large");
        break;
      default:
        Fail(res, res.status, "the request cannot be served");
    }
    return httplib::Server::HandlerResponse::Handled;
  }));

  server.Get("/pair", [](const Request&, Response& res) {
    res.set_content(kPairingPage, "text/html; charset=utf-8");
  });
  server.Post("/api/pair", [this](const Request& req, Response& res) {
    auto body = Body(req, res);
    if (!body) return;
    const json& code = (*body)["code"];
    if (options_.lanAddress.empty()) {
      Reply(res, 200, json{{"ok", true}});
    } else if (code.is_string() &&
               ConstantTimeEqual(code.get<std::string>(), options_.pairingCode)) {
      res.set_header("Set-Cookie", std::string(kPairingCookie) + "=" + options_.pairingCode +
                                       "; Path=/; HttpOnly; SameSite=Strict");
      Reply(res, 200, json{{"ok", true}});
    } else {
      Fail(res, 403, "that is not the pairing code");
    }
  });

  // The live view.
  server.Get("/api/state", [this](const Request&, Response& res) {
    json state = feed_.State();
    if (state.is_null()) state = json::object();
    Reply(res, 200, state);
  });
  server.Get("/api/events", [this](const Request& req, Response& res) {
    uint64_t after = 0;
    std::string from = req.get_header_value("Last-Event-ID");
    if (from.empty() && req.has_param("after")) from = req.get_param_value("after");
    if (!from.empty()) {
      auto [p, ec] = std::from_chars(from.data(), from.data() + from.size(), after);
      if (ec != std::errc() || p != from.data() + from.size()) {
        Fail(res, 400, "Last-Event-ID must be the number of an event");
        return;
      }
    }
    struct Cursor {
      uint64_t after;
      uint64_t stateVersion = 0;
      std::chrono::steady_clock::time_point lastWrite = std::chrono::steady_clock::now();
    };
    auto cursor = std::make_shared<Cursor>(Cursor{after});
    res.set_header("Cache-Control", "no-store");
    res.set_header("X-Accel-Buffering", "no");
    res.set_chunked_content_provider(
        "text/event-stream", [this, cursor](size_t, httplib::DataSink& sink) {
          if (stopping_ || feed_.Closed()) {
            sink.done();
            return true;
          }
          std::string out;
          if (cursor->stateVersion == 0) out += "retry: 1000\n\n";
          const uint64_t version = feed_.StateVersion();
          if (version != cursor->stateVersion) {
            cursor->stateVersion = version;
            json state = feed_.State();
            if (!state.is_null()) out += "event: state\ndata: " + Dump(state) + "\n\n";
          }
          const auto wait = out.empty() ? kStreamWait : std::chrono::milliseconds(0);
          for (const FeedLine& line : feed_.LinesAfter(cursor->after, wait)) {
            out += "id: " + std::to_string(line.number) + "\ndata: " + line.json + "\n\n";
            cursor->after = line.number;
          }
          const auto now = std::chrono::steady_clock::now();
          if (out.empty() && now - cursor->lastWrite > kStreamPing) out = ": still here\n\n";
          if (out.empty()) return true;
          cursor->lastWrite = now;
          return sink.write(out.data(), out.size());
        });
  });
  // What acts on the flight waits for the remote timer, between two ticks.
  constexpr Mailbox::Due kRemote = Mailbox::Due::RemoteTimer;
  server.Post("/api/connect", [this](const Request&, Response& res) {
    AskLoop(
        res, [](Instructor& in) { return web::ConnectAction(in); }, kRemote);
  });
  server.Post("/api/disconnect", [this](const Request&, Response& res) {
    AskLoop(
        res, [](Instructor& in) { return web::DisconnectAction(in); }, kRemote);
  });

  // Pages that read and change the instructor, each through the loop.
  using Action = json (*)(Instructor&, const json&);
  auto post = [this, &server](const char* path, Action action,
                              Mailbox::Due due = Mailbox::Due::Now) {
    server.Post(path, [this, action, due](const Request& req, Response& res) {
      auto body = Body(req, res);
      if (!body) return;
      AskLoop(
          res, [action, b = std::move(*body)](Instructor& in) { return action(in, b); }, due);
    });
  };
  post("/api/key", web::PressKeyAction, kRemote);
  using Page = json (*)(Instructor&);
  auto get = [this, &server](const char* path, Page page) {
    server.Get(path, [this, page](const Request&, Response& res) {
      AskLoop(res, [page](Instructor& in) { return page(in); });
    });
  };
  get("/api/pilot", web::PilotPage);
  post("/api/pilot", web::EditPilot);
  server.Post("/api/pilot/new", [this](const Request&, Response& res) {
    AskLoop(res, [](Instructor& in) { return web::NewPilotAction(in); });
  });
  post("/api/pilot/load", web::LoadPilotAction);
  post("/api/pilot/save", web::SavePilotAction);
  server.Post("/api/pilot/listen", [this](const Request&, Response& res) {
    AskLoop(res, [](Instructor& in) { return web::ListenAction(in); });
  });
  server.Post("/api/pilot/picture", [this, root](const Request& req, Response& res) {
    if (req.body.empty()) {
      Fail(res, 400, "the request body must be the picture's bytes");
      return;
    }
    if (req.body.size() > options_.maxUpload) {
      Fail(res, 413, "the upload is too large");
      return;
    }
    std::optional<ImageSize> size = ReadImageSize(req.body);
    if (!size) {
      Fail(res, 415, "the picture must be a PNG, JPEG, GIF or BMP image");
      return;
    }
    static constexpr std::array<std::pair<const char*, const char*>, 4> kKinds = {
        {{"\x89PNG", ".png"}, {"\xFF\xD8", ".jpg"}, {"GIF8", ".gif"}, {"BM", ".bmp"}}};
    std::string ext = ".img";
    for (const auto& [magic, e] : kKinds)
      if (req.body.rfind(magic, 0) == 0) ext = e;
    const std::string file = (root / "PilotRoster" / "Pictures" / ("pilot" + ext)).string();
    AskLoop(res, [bytes = req.body, file](Instructor& in) {
      return web::SetPictureAction(in, bytes, file);
    });
  });
  server.Get("/api/pilot/picture", [this, root](const Request&, Response& res) {
    std::optional<json> answer =
        mailbox_.Ask([](Instructor& in) { return web::PicturePath(in); }, options_.answerTimeout);
    if (!answer) {
      Fail(res, 503, "the instructor did not answer; it may be closing");
      return;
    }
    std::optional<fs::path> file = RootFile(root, (*answer)["path"].get<std::string>());
    if (!file || !SendFile(res, *file)) Fail(res, 404, "the pilot has no picture");
  });
  get("/api/settings", web::SettingsPage);
  post("/api/settings", web::EditSettings);
  get("/api/aircraft", web::AircraftPage);
  post("/api/aircraft/source", web::ChooseSourceAction);
  post("/api/aircraft/profile", web::SaveProfileAction);
  post("/api/aircraft/monitoring", web::MonitoringAction);
  get("/api/flightplan", web::FlightPlanPage);
  post("/api/flightplan/upload", web::UploadFlightPlanAction, kRemote);
  post("/api/flightplan/load", web::LoadFolderFlightPlanAction, kRemote);
  post("/api/flightplan/read", web::ReadSimulatorFlightPlanAction, kRemote);
  post("/api/flightplan/clear", web::ClearFlightPlanAction, kRemote);

  // The log book: the pilot's files, read here, never written.
  auto pilotFiles = [this](Response& res) -> std::optional<json> {
    std::optional<json> answer =
        mailbox_.Ask([](Instructor& in) { return web::PilotFiles(in); }, options_.answerTimeout);
    if (!answer) Fail(res, 503, "the instructor did not answer; it may be closing");
    return answer;
  };
  server.Get("/api/logbook", [pilotFiles, root](const Request& req, Response& res) {
    std::optional<json> files = pilotFiles(res);
    if (!files) return;
    const std::string filter =
        req.has_param("aircraft") ? req.get_param_value("aircraft") : std::string(kAllAircraft);
    json out;
    out["pilot"] = (*files)["name"];
    const std::string log = (*files)["log"].get<std::string>();
    std::optional<FlightLog> read;
    if (RootFile(root, log)) read = ReadFlightLog(log, filter);
    if (!read) {
      out["message"] = kNoLoggedFlights;
      out["header"] = json::array();
      out["rows"] = json::array();
      out["aircraft"] = json::array();
      Reply(res, 200, out);
      return;
    }
    out["header"] = read->Header;
    json rows = json::array();
    for (const LogEntry& e : read->Rows) rows.push_back(e.Columns);
    out["rows"] = rows;
    std::vector<std::string> titles;
    if (std::optional<FlightLog> all = ReadFlightLog(log, kAllAircraft)) {
      for (const LogEntry& e : all->Rows) {
        const std::string& t = e.Columns[kLogAircraftColumn];
        if (!t.empty() && std::find(titles.begin(), titles.end(), t) == titles.end())
          titles.push_back(t);
      }
    }
    out["aircraft"] = titles;
    Reply(res, 200, out);
  });
  server.Get("/api/logbook/html", [pilotFiles, root](const Request&, Response& res) {
    std::optional<json> files = pilotFiles(res);
    if (!files) return;
    std::optional<fs::path> file = RootFile(root, (*files)["logBook"].get<std::string>());
    if (!file || !SendFile(res, *file)) Fail(res, 404, "this pilot has no log book yet");
  });
  server.Get("/api/recordings", [pilotFiles, root](const Request&, Response& res) {
    std::optional<json> files = pilotFiles(res);
    if (!files) return;
    std::error_code ec;
    const fs::path base = fs::canonical(root, ec);
    json list = json::array();
    for (const fs::path& file : RecordingFiles(root, (*files)["log"].get<std::string>()))
      list.push_back({{"file", file.lexically_relative(base).generic_string()},
                      {"size", fs::file_size(file, ec)}});
    Reply(res, 200, json{{"recordings", list}});
  });
  // The touchdowns of every recorded flight, for the plot of touchdown rates.
  server.Get("/api/touchdowns", [this, pilotFiles, root](const Request&, Response& res) {
    std::optional<json> files = pilotFiles(res);
    if (!files) return;
    std::error_code ec;
    const fs::path base = fs::canonical(root, ec);
    json list = json::array();
    for (const fs::path& file : RecordingFiles(root, (*files)["log"].get<std::string>())) {
      const json flight = Flight(file.string());
      if (flight.contains("error")) continue;
      for (const json& landing : flight["landings"]) {
        const json& card = landing["card"];
        list.push_back({{"file", file.lexically_relative(base).generic_string()},
                        {"start", flight["start"]},
                        {"time", card["time"]},
                        {"rate", card["rate"]},
                        {"g", card["g"]}});
      }
    }
    Reply(res, 200, json{{"touchdowns", list}});
  });
  server.Get("/api/recording", [this, root](const Request& req, Response& res) {
    std::optional<fs::path> file = InsideFolder(root, req.get_param_value("file"));
    const std::string name = file ? file->filename().string() : std::string();
    if (!file || !(name.ends_with(".vrec") || name.ends_with(".vrec.gz"))) {
      Fail(res, 400, "\"file\" must name a recording (.vrec or .vrec.gz) inside the data folder");
      return;
    }
    std::error_code ec;
    if (!fs::is_regular_file(*file, ec)) {
      Fail(res, 404, "no such recording");
      return;
    }
    json flight = Flight(file->string());
    if (flight.contains("error")) {
      Reply(res, 422, flight);
      return;
    }
    Reply(res, 200, flight);
  });
  server.Get("/api/file", [root](const Request& req, Response& res) {
    std::optional<fs::path> file = InsideFolder(root, req.get_param_value("path"));
    if (!file) {
      Fail(res, 400, "\"path\" must name a file inside the data folder");
      return;
    }
    if (!SendFile(res, *file)) Fail(res, 404, "no such file");
  });

  // The pages themselves.
  server.Get(R"(/(.*))", [web](const Request& req, Response& res) {
    std::string name = req.matches[1];
    if (name.empty()) name = "index.html";
    std::optional<fs::path> file = InsideFolder(web, name);
    if (!file) {
      Fail(res, 400, "a page is named by a path inside the app's folder");
      return;
    }
    if (!SendFile(res, *file)) Fail(res, 404, "no such page or file");
  });
}

}  // namespace vantoro
