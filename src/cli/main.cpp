#include <cstdio>
#include <string>

#include "cli/voices_cmd.h"

// vantoro-cli: built next.
int main(int argc, char** argv) {
  if (argc > 1 && std::string(argv[1]) == "voices")
    return vantoro::VoicesCommand(argc - 1, argv + 1);
  std::puts("vantoro-cli");
  return 0;
}
