#include <cstdio>
#include <cstring>

#include "cli/profile_cmd.h"
#include "cli/runways_cmd.h"

// vantoro-cli: one subcommand per first argument.
int main(int argc, char** argv) {
  if (argc > 1 && std::strcmp(argv[1], "profile") == 0)
    return vantoro::ProfileCommand(argc - 1, argv + 1);
  if (argc > 1 && std::strcmp(argv[1], "runways") == 0)
    return vantoro::RunwaysCommand(argc - 1, argv + 1);
  std::puts("vantoro-cli");
  return 0;
}
