#include <cstdio>
#include <string_view>

#include "cli/runways_cmd.h"

// vantoro-cli: built next.
int main(int argc, char** argv) {
  if (argc > 1 && std::string_view(argv[1]) == "runways")
    return vantoro::RunwaysCommand(argc - 1, argv + 1);
  std::puts("vantoro-cli");
  return 0;
}
