// vantoro-app-standin: serves the pilot's app over a recording flown in real
// time by the stand-in host, for the browser tests and the screenshots.
//   vantoro-app-standin --root DIR --recording FILE [--pilot FILE]
//                       [--port N] [--tick-ms N] [--listen ADDRESS]
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <string>
#include <thread>

#include "app/web/web_server.h"
#include "standin_host.h"

int main(int argc, char** argv) {
  vantoro::StandInSetup setup;
  vantoro::WebServerOptions web;
  setup.tick = std::chrono::milliseconds(500);
  for (int i = 1; i + 1 < argc; i += 2) {
    const std::string a = argv[i];
    const std::string v = argv[i + 1];
    if (a == "--root") {
      setup.root = v;
      web.root = v;
    } else if (a == "--recording") {
      setup.recording = v;
    } else if (a == "--pilot") {
      setup.pilot = v;
    } else if (a == "--port") {
      web.port = std::atoi(v.c_str());
    } else if (a == "--tick-ms") {
      setup.tick = std::chrono::milliseconds(std::atoi(v.c_str()));
    } else if (a == "--listen") {
      web.lanAddress = v;
    } else {
      std::cerr << "vantoro-app-standin: unknown option " << a << "\n";
      return 2;
    }
  }
  vantoro::StandInHost host(setup);
  std::string error;
  if (!host.Start(error)) {
    std::cerr << error << "\n";
    return 2;
  }
  vantoro::WebServer server(web, host.mailbox, host.feed);
  if (!server.Start(error)) {
    std::cerr << error << "\n";
    return 2;
  }
  std::cout << server.Url() << std::endl;
  if (!server.PairingCode().empty())
    std::cout << "pairing code " << server.PairingCode() << std::endl;
  for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
}
